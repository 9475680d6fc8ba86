#pragma once

#include "tests/unit/producer/Functions.h"

#include <GenApi/GenApi.h>
#include <chrono>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

/// The modules that have a description.
enum class Module { System, Interface, Device, Stream, Buffer, Camera };
constexpr const char* moduleNames[] = {"System", "Interface", "Device", "Stream", "Buffer", "Camera"};

/// One camera of each description that cameras have.
struct Flavour {
    const char* name;
    const char* interfaceId;
    const char* deviceId;
};
constexpr Flavour flavours[] = {
    {"U3V", "ZQ-U3V-0", "ZQ-U3V-0:SIM-U3V-0001"},         {"GEV", "ZQ-GEV-0", "ZQ-GEV-0:SIM-GEV-0001"},
    {"GEVSchema10", "ZQ-GEV-0", "ZQ-GEV-0:SIM-GEV-0002"}, {"CXP", "ZQ-CXP-0", "ZQ-CXP-0:SIM-CXP-0001"},
    {"CXPNative", "ZQ-CXP-0", "ZQ-CXP-0:SIM-CXP-0002"},
};

/// A frame as it was delivered.
struct Frame {
    std::vector<uint8_t> bytes;
    uint64_t id = 0;
    uint64_t timestampNs = 0;
    uint64_t width = 0;
    uint64_t height = 0;
    size_t parts = 0;
    bool incomplete = false;
    bool larger = false;
    bool hasChunks = false;
    GenTL::GC_ERROR chunkResult = GenTL::GC_ERR_SUCCESS;
    std::vector<GenTL::SINGLE_CHUNK_DATA> chunks;

    [[nodiscard]] uint8_t operator[](size_t index) const { return bytes.at(index); }
};

/// A register space behind a handle of the producer.
class HandlePort final : public GenApi::IPort {
public:
    explicit HandlePort(void* handle = nullptr) : m_handle(handle) {}
    void Read(void* buffer, int64_t address, int64_t length) override;
    void Write(const void* buffer, int64_t address, int64_t length) override;
    [[nodiscard]] GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }

private:
    void* m_handle;
};

/// A whole library, freshly initialised, with one camera opened down to its stream, and the small language
/// that the rows of the table are written in. Names are those of the camera's features, or, with the module
/// in front, of another's.
class Rig {
public:
    explicit Rig(const Flavour& flavour);
    Rig(const Rig&) = delete;
    Rig& operator=(const Rig&) = delete;
    ~Rig();

    const Functions& gentl = Producer();
    const Flavour& flavour;
    void* system = nullptr;
    void* interface = nullptr;
    void* device = nullptr;
    void* remote = nullptr;
    void* stream = nullptr;

    [[nodiscard]] bool IsGev() const { return std::string(flavour.interfaceId) == "ZQ-GEV-0"; }
    [[nodiscard]] GenApi::INodeMap& Map(Module module);
    [[nodiscard]] GenApi::INode& Node(Module module, const std::string& name);
    template <class T>
    [[nodiscard]] T& As(Module module, const std::string& name) {
        return dynamic_cast<T&>(Node(module, name));
    }

    /// A number, also of an entry or a switch, or a text.
    template <class Value>
    void Set(const std::string& name, Value value) {
        Set(Module::Camera, name, value);
    }
    template <class Value>
    void Set(Module module, const std::string& name, Value value) {
        if constexpr (std::is_integral_v<Value>)
            SetWhole(module, name, value);
        else
            SetText(module, name, value);
    }
    void SetReal(const std::string& name, double value);
    void SetBytes(const std::string& name, const std::string& bytes);
    void Do(const std::string& name) { Do(Module::Camera, name); }
    void Do(Module module, const std::string& name);
    /// Values as they are in the device now, whatever is cached.
    [[nodiscard]] int64_t Get(const std::string& name) { return Get(Module::Camera, name); }
    [[nodiscard]] int64_t Get(Module module, const std::string& name);
    [[nodiscard]] double Real(const std::string& name);
    [[nodiscard]] std::string Text(const std::string& name) { return Text(Module::Camera, name); }
    [[nodiscard]] std::string Text(Module module, const std::string& name);
    [[nodiscard]] std::string Bytes(const std::string& name);
    [[nodiscard]] bool Writable(const std::string& name);

    /// As fast as it goes.
    void GoFast() { Set("AcquisitionFrameRateEnable", 0); }
    void SmallAndFast();
    /// Buffers, queued, and the stream started; Begin also starts the camera.
    void StartStream(size_t buffers = 4);
    void Begin(size_t buffers = 4);
    /// The next frame, if there is one in time; its buffer is queued again.
    [[nodiscard]] std::optional<Frame> Next(uint64_t timeoutMs = 5000);
    [[nodiscard]] bool Nothing(uint64_t timeoutMs = 40) { return !Next(timeoutMs).has_value(); }
    void End();
    /// The first frames of an acquisition.
    [[nodiscard]] std::vector<Frame> Grab(size_t count);
    [[nodiscard]] Frame One();
    /// Makes the frame's chunks the ones that the node map shows.
    void Attach(Frame& frame);
    void EnableChunk(const char* name);

    /// Events of a module that come from now on.
    void Listen(Module module, GenTL::EVENT_TYPE type);
    void SwitchOn(const char* event);
    /// Its id, after it has been given to the node map; empty when none came.
    [[nodiscard]] std::string NextEvent(uint64_t timeoutMs = 5000);

    void Pulse(int line);
    /// Closes the camera and opens it anew.
    [[nodiscard]] GenTL::GC_ERROR Reopen();
    [[nodiscard]] bool Lost();

    [[nodiscard]] void* HandleOf(Module module) const;

private:
    void OpenDevice();
    void SetWhole(Module module, const std::string& name, int64_t value);
    void SetText(Module module, const std::string& name, const char* value);
    [[nodiscard]] Frame Look(void* buffer);
    template <class T>
    [[nodiscard]] T Info(void* buffer, GenTL::BUFFER_INFO_CMD command);

    struct Mapped {
        std::unique_ptr<HandlePort> port;
        GenApi::CNodeMapRef map;
    };
    Mapped m_maps[6];
    void* m_newBuffer = nullptr;
    void* m_event = nullptr;
    Module m_eventModule = Module::Camera;
    void* m_filled = nullptr;
    std::vector<void*> m_buffers;
    std::unique_ptr<GenApi::CChunkAdapterGeneric> m_chunks;
};

/// Waits until the condition holds; false after five seconds.
template <class Condition>
bool Soon(Condition condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
    }
    return true;
}
