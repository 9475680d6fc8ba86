#include "producer/gentl/ModuleEvents.h"

#include "producer/sim/Camera.h"
#include "producer/sim/Failure.h"

namespace zqgentl {

namespace {

using Value = RegisterValue;

constexpr RegisterRow<ModuleEvents> rows[] = {
    {0x0A00, 4, RegisterKind::Integer, [](const ModuleEvents& e) { return Value(e.Selected()); },
     [](ModuleEvents& e, const Value& v) { e.Select(std::get<int64_t>(v)); }},
    {0x0A04, 4, RegisterKind::Integer, [](const ModuleEvents& e) { return Value(int64_t{e.Notifies()}); },
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
    if (notification != 0 && notification != 1)
        throw Failure(GenTL::GC_ERR_INVALID_VALUE, "EventNotification can only be Off or On");
    const uint32_t bit = uint32_t{1} << m_selected;
    if (notification == 1)
        m_mask |= bit;
    else
        m_mask &= ~bit;
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
