#pragma once

#include "producer/gentl/Module.h"
#include "producer/sim/CameraEvents.h"

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
        if (Takes(event))
            SendNow(event, frameId);
    }
    /// Whether the next such event would be sent.
    template <class Number>
    [[nodiscard]] bool Wants(Number number) const noexcept {
        return NotificationOf(static_cast<uint32_t>(number)) != Notification::Off;
    }

    [[nodiscard]] int64_t Selected() const noexcept { return m_selected; }
    void Select(int64_t event);
    /// Of the event that is selected.
    [[nodiscard]] Notification Notifies() const noexcept { return NotificationOf(m_selected); }
    void SetNotifies(int64_t notification);

private:
    [[nodiscard]] Notification NotificationOf(uint32_t event) const noexcept;
    /// Whether an event that happens now is to be sent; of one that is sent once, to one thread alone.
    [[nodiscard]] bool Takes(uint32_t event) noexcept;
    void SendNow(uint32_t event, uint64_t frameId);

    Module& m_module;
    const uint16_t m_firstId;
    const uint32_t m_count;
    const Frames m_frames;
    std::atomic<uint32_t> m_selected{0};
    std::atomic<uint32_t> m_on{0};
    std::atomic<uint32_t> m_once{0};
};

} // namespace zqgentl
