#pragma once

#include "tests/support/scripted_producer/Call.h"
#include "tests/support/scripted_producer/Control.h"
#include "tests/support/scripted_producer/Plan.h"

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Scripted {

/// Something that a handle stands for.
struct Module {
    virtual ~Module() = default;
    void* handle = nullptr;
    std::string symbol;
    Module* parent = nullptr;
};

struct SystemModule final : Module {
    bool updated = false;
    std::vector<std::shared_ptr<InterfacePlan>> listed;
};

struct InterfaceModule final : Module {
    std::shared_ptr<InterfacePlan> plan;
    bool updated = false;
    std::vector<std::shared_ptr<DevicePlan>> listed;
};

struct DeviceModule final : Module {
    std::shared_ptr<DevicePlan> plan;
    std::string tlType;
    bool readOnly = false;
    void* remotePort = nullptr;
};

struct RemotePortModule final : Module {};

struct BufferModule final : Module {
    std::vector<uint8_t> owned;
    uint8_t* base = nullptr;
    size_t size = 0;
    void* userPointer = nullptr;
    bool isQueued = false;
    bool awaitsDelivery = false;
    bool newData = false;
    bool incomplete = false;
    bool largerThanBuffer = false;
    size_t filled = 0;
    uint64_t frameId = 0;

    struct Info {
        GenTL::GC_ERROR result;
        int32_t type;
        std::vector<uint8_t> value;
    };
    std::map<int32_t, Info> infos; ///< what the test says of this frame
};

struct StreamModule final : Module {
    std::string id;
    std::string tlType;
    std::vector<BufferModule*> announced;
    std::deque<BufferModule*> input;
    bool grabbing = false;
    bool stopOwed = false;
    uint64_t framesLeft = 0;
    uint64_t autoFramesLeft = 0;
    uint64_t delivered = 0;
    uint64_t started = 0;
    uint64_t underrun = 0;
};

struct EventEntry {
    std::vector<uint8_t> block;
    std::optional<std::vector<uint8_t>> id;
    int32_t idType = GenTL::INFO_DATATYPE_STRING;
    std::optional<std::vector<uint8_t>> value;
    int32_t valueType = GenTL::INFO_DATATYPE_BUFFER;
    std::optional<uint64_t> numId;
    BufferModule* buffer = nullptr;
};

struct EventModule final : Module {
    int32_t type = 0;
    std::deque<EventEntry> queue;
    std::deque<EventEntry> delivered; ///< kept for EventGetDataInfo
    uint64_t fired = 0;
    uint64_t kills = 0;
    uint32_t waiting = 0; ///< threads inside EventGetData
    bool unregistered = false;
};

/// All open modules by handle. A handle is never used twice.
class Modules {
public:
    template <class T>
    std::shared_ptr<T> Open(const std::string& symbol, Module* parent) {
        auto module = std::make_shared<T>();
        module->handle = reinterpret_cast<void*>(m_lastHandle += 16);
        module->symbol = symbol;
        module->parent = parent;
        m_modules[module->handle] = module;
        return module;
    }

    /// The open module of that handle when it is of that class, or null.
    template <class T>
    std::shared_ptr<T> Find(const void* handle) const {
        const auto found = m_modules.find(const_cast<void*>(handle));
        return found == m_modules.end() ? nullptr : std::dynamic_pointer_cast<T>(found->second);
    }

    /// The open module of that class for which the predicate holds, or null.
    template <class T, class Predicate>
    std::shared_ptr<T> FindIf(Predicate predicate) const {
        for (const auto& [handle, module] : m_modules)
            if (const auto typed = std::dynamic_pointer_cast<T>(module);
                typed != nullptr && predicate(*typed))
                return typed;
        return nullptr;
    }

    template <class T, class Action>
    void ForEach(Action action) const {
        for (const auto& [handle, module] : m_modules)
            if (const auto typed = std::dynamic_pointer_cast<T>(module))
                action(*typed);
    }

    /// Closes the module and all below it; waits on their events end with ABORT.
    void Close(const void* handle);
    void CloseAll();

    [[nodiscard]] std::string SymbolOf(const void* handle) const;

private:
    std::map<void*, std::shared_ptr<Module>> m_modules;
    uintptr_t m_lastHandle = 0x1000;
};

} // namespace Scripted
