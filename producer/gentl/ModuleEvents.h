#pragma once

#include "producer/gentl/Module.h"

#include <atomic>
#include <cstdint>
#include <string>

namespace zqgentl {

/// The events of a module's own node map: EventSelector and EventNotification, at the same addresses in every
/// module, and what EVENT_MODULE sends of those that are switched on. Any thread may call any member.
class ModuleEvents {
public:
    /// Whether the events of a module say which frame they belong to.
    enum class Frames { No, Yes };
    /// The ids follow each other from the first; the module outlives this.
    ModuleEvents(Module& module, uint16_t firstId, uint32_t count, Frames frames = Frames::No)
        : m_module(module), m_firstId(firstId), m_count(count), m_frames(frames) {}
    ModuleEvents(const ModuleEvents&) = delete;
    ModuleEvents& operator=(const ModuleEvents&) = delete;

    void BindTo(RegisterMap& map);

    /// Sends an event, by its number in the enumeration EventSelector, if it is switched on. The time is now.
    template <class Number>
    void Send(Number number, uint64_t frameId = 0) {
        const auto event = static_cast<uint32_t>(number);
        if (((m_mask.load(std::memory_order_acquire) >> event) & 1) != 0)
            SendNow(event, frameId);
    }

    [[nodiscard]] int64_t Selected() const noexcept { return m_selected; }
    void Select(int64_t event);
    [[nodiscard]] bool Notifies() const noexcept { return ((m_mask >> m_selected) & 1) != 0; }
    void SetNotifies(int64_t notification);

private:
    void SendNow(uint32_t event, uint64_t frameId);

    Module& m_module;
    const uint16_t m_firstId;
    const uint32_t m_count;
    const Frames m_frames;
    std::atomic<uint32_t> m_selected{0};
    std::atomic<uint32_t> m_mask{0};
};

} // namespace zqgentl
