#include "producer/gentl/ModuleEvents.h"

#include "producer/sim/Camera.h"
#include "producer/sim/Failure.h"

namespace zqgentl {

namespace {

using Value = RegisterValue;

constexpr RegisterRow<ModuleEvents> rows[] = {
    {0x0A00, 4, RegisterKind::Integer, [](const ModuleEvents& e) { return Value(e.Selected()); },
     [](ModuleEvents& e, const Value& v) { e.Select(std::get<int64_t>(v)); }},
    {0x0A04, 4, RegisterKind::Integer,
     [](const ModuleEvents& e) { return Value(static_cast<int64_t>(e.Notifies())); },
     [](ModuleEvents& e, const Value& v) { e.SetNotifies(std::get<int64_t>(v)); }},
};

} // namespace

void ModuleEvents::BindTo(RegisterMap& map) {
    map.Bind(*this, rows);
}

void ModuleEvents::Select(int64_t event) {
    if (event < 0 || event >= int64_t{m_count})
        throw Failure(GenTL::GC_ERR_INVALID_VALUE, "this module has no event " + std::to_string(event));
    m_selected = static_cast<uint32_t>(event);
}

void ModuleEvents::SetNotifies(int64_t notification) {
    if (notification < 0 || notification > static_cast<int64_t>(Notification::Once))
        throw Failure(GenTL::GC_ERR_INVALID_VALUE, "EventNotification can only be Off, On or Once");
    const uint32_t bit = uint32_t{1} << m_selected;
    const auto set = [&](std::atomic<uint32_t>& mask, Notification meant) {
        if (notification == static_cast<int64_t>(meant))
            mask |= bit;
        else
            mask &= ~bit;
    };
    set(m_once, Notification::Once);
    set(m_on, Notification::On);
}

Notification ModuleEvents::NotificationOf(uint32_t event) const noexcept {
    const auto has = [&](const std::atomic<uint32_t>& mask) {
        return ((mask.load(std::memory_order_acquire) >> event) & 1) != 0;
    };
    if (has(m_on))
        return Notification::On;
    return has(m_once) ? Notification::Once : Notification::Off;
}

bool ModuleEvents::Takes(uint32_t event) noexcept {
    const Notification notification = NotificationOf(event);
    const uint32_t bit = uint32_t{1} << event;
    return notification == Notification::On ||
           (notification == Notification::Once && (m_once.fetch_and(~bit) & bit) != 0);
}

void ModuleEvents::SendNow(uint32_t event, uint64_t frameId) {
    const auto id = static_cast<uint16_t>(m_firstId + event);
    // What the event ports of the descriptions show, each number in 8 bytes.
    const uint64_t numbers[] = {id, static_cast<uint64_t>(SteadyNow()), frameId};
    uint8_t bytes[sizeof numbers];
    for (size_t i = 0; i < std::size(numbers); ++i)
        StoreBytes(bytes + 8 * i, numbers[i], 8, ByteOrder::Little);
    const size_t size = m_frames == Frames::Yes ? 24 : 16;
    m_module.Fire(EventData::Module(id, std::string(reinterpret_cast<const char*>(bytes), size)));
}

} // namespace zqgentl
