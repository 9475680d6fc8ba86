#include "producer/gentl/InterfaceModule.h"

#include "producer/gentl/SystemModule.h"

namespace zqgentl {

namespace {

using Value = RegisterValue;
constexpr RegisterKind Integer = RegisterKind::Integer;
constexpr RegisterKind Text = RegisterKind::Text;

template <class Text>
Value SelectedText(const InterfaceModule& interface, Text CameraModel::*text) {
    const SimulatedDevice* device = interface.Selected();
    return Value(device == nullptr ? std::string() : std::string(device->camera.Model().*text));
}

Value Selected(const InterfaceModule& interface, int64_t value) {
    return Value(interface.Selected() == nullptr ? 0 : value);
}

template <auto Address>
Value SelectedAddress(const InterfaceModule& interface) {
    const SimulatedDevice* device = interface.Selected();
    return Value(device == nullptr ? int64_t{0} : int64_t{device->network.*Address});
}

constexpr RegisterRow<InterfaceModule> commonRows[] = {
    {0x0100, 64, Text, [](const InterfaceModule& i) { return Value(std::string(i.Model().interfaceId)); },
     nullptr},
    {0x0140, 64, Text, [](const InterfaceModule& i) { return Value(std::string(i.Model().interfaceName)); },
     nullptr},
    {0x0300, 4, Integer,
     [](const InterfaceModule& i) { return Value(static_cast<int64_t>(i.Model().technology)); }, nullptr},
    {0x0304, 4, Integer, [](const InterfaceModule&) { return Value(int64_t{1}); }, nullptr},
    {0x0308, 4, Integer, [](const InterfaceModule&) { return Value(int64_t{0}); }, nullptr},
    {0x0410, 4, Integer, [](const InterfaceModule& i) { return Value(static_cast<int64_t>(i.Selector())); },
     [](InterfaceModule& interface, const Value& value) { interface.Select(std::get<int64_t>(value)); }},
    {0x0414, 4, Integer,
     [](const InterfaceModule& i) {
         return Value(static_cast<int64_t>(i.ListedCount() == 0 ? 0 : i.ListedCount() - 1));
     },
     nullptr},
    {0x0500, 64, Text, [](const InterfaceModule& i) { return SelectedText(i, &CameraModel::deviceId); },
     nullptr},
    {0x0540, 64, Text,
     [](const InterfaceModule& i) {
         return Value(i.Selected() == nullptr ? std::string() : std::string(vendorName));
     },
     nullptr},
    {0x0580, 64, Text, [](const InterfaceModule& i) { return SelectedText(i, &CameraModel::modelName); },
     nullptr},
    {0x05C0, 64, Text, [](const InterfaceModule& i) { return SelectedText(i, &CameraModel::serialNumber); },
     nullptr},
    {0x0600, 4, Integer,
     [](const InterfaceModule& i) {
         return Value(int64_t{i.Selected() == nullptr ? GenTL::DEVICE_ACCESS_STATUS_UNKNOWN
                                                      : i.Selected()->AccessStatus()});
     },
     nullptr},
    {0x0640, 64, Text,
     [](const InterfaceModule& i) {
         return Value(i.Selected() == nullptr ? std::string() : i.Selected()->camera.UserId());
     },
     nullptr},
    {0x0680, 128, Text,
     [](const InterfaceModule& i) {
         return Value(i.Selected() == nullptr ? std::string()
                                              : DeviceDisplayName(i.Selected()->camera.Model()));
     },
     nullptr},
    {0x0604, 4, Integer, [](const InterfaceModule& i) { return Selected(i, 1); }, nullptr},
    {0x0608, 4, Integer, [](const InterfaceModule& i) { return Selected(i, 0); }, nullptr},
};

template <auto Key>
Value GetKey(const InterfaceModule& interface) {
    return Value((interface.Action().*Key).load());
}

template <auto Key>
void SetKey(InterfaceModule& interface, const Value& value) {
    interface.Action().*Key = std::get<int64_t>(value);
}

using Keys = InterfaceModule::ActionKeys;

void SetScheduled(InterfaceModule& interface, const Value& value) {
    if (std::get<int64_t>(value) != 0 && std::get<int64_t>(value) != 1)
        throw Failure(GenTL::GC_ERR_INVALID_VALUE, "ActionScheduledTimeEnable can only be on or off");
    SetKey<&Keys::scheduled>(interface, value);
}

using Forced = InterfaceModule::ForcedAddress;

template <auto Part>
Value GetForced(const InterfaceModule& interface) {
    return Value((interface.Forced().*Part).load());
}

template <auto Part>
void SetForced(InterfaceModule& interface, const Value& value) {
    interface.Forced().*Part = std::get<int64_t>(value);
}

constexpr RegisterRow<InterfaceModule> gevRows[] = {
    {0x0800, 4, Integer, GetKey<&Keys::device>, SetKey<&Keys::device>},
    {0x0804, 4, Integer, GetKey<&Keys::group>, SetKey<&Keys::group>},
    {0x0808, 4, Integer, GetKey<&Keys::mask>, SetKey<&Keys::mask>},
    {0x080C, 4, Integer, nullptr, [](InterfaceModule& interface, const Value&) { interface.SendAction(); }},
    {0x0810, 4, Integer, GetKey<&Keys::scheduled>, SetScheduled},
    {0x0818, 8, Integer, GetKey<&Keys::timeNs>, SetKey<&Keys::timeNs>},
    {0x0700, 8, Integer, [](const InterfaceModule&) { return Value(simulatedMacAddress); }, nullptr},
    {0x0708, 4, Integer, [](const InterfaceModule&) { return Value(simulatedInterfaceIp); }, nullptr},
    {0x070C, 4, Integer, [](const InterfaceModule&) { return Value(simulatedSubnetMask); }, nullptr},
    {0x0710, 4, Integer, [](const InterfaceModule&) { return Value(int64_t{0}); }, nullptr},
    {0x0718, 8, Integer, SelectedAddress<&NetworkAddress::mac>, nullptr},
    {0x0720, 4, Integer, SelectedAddress<&NetworkAddress::ip>, nullptr},
    {0x0724, 4, Integer, SelectedAddress<&NetworkAddress::mask>, nullptr},
    {0x0728, 4, Integer, SelectedAddress<&NetworkAddress::gateway>, nullptr},
    {0x0740, 4, Integer, GetForced<&Forced::ip>, SetForced<&Forced::ip>},
    {0x0744, 4, Integer, GetForced<&Forced::mask>, SetForced<&Forced::mask>},
    {0x0748, 4, Integer, GetForced<&Forced::gateway>, SetForced<&Forced::gateway>},
    {0x074C, 4, Integer, nullptr, [](InterfaceModule& interface, const Value&) { interface.ForceAddress(); }},
    {0x0820, 4, Integer, GetKey<&Keys::destination>, SetKey<&Keys::destination>},
};

/// Numbered as the enumeration EventSelector numbers them.
enum class InterfaceEvent { InterfaceLost, DeviceListChanged };
constexpr uint16_t firstInterfaceEvent = 0x9010;

} // namespace

InterfaceModule::InterfaceModule(std::shared_ptr<SystemModule> parent, SimulatedInterface& bus)
    : Module(kind), m_parent(std::move(parent)), m_bus(bus), m_moduleEvents(*this, firstInterfaceEvent, 2),
      m_port({Model().interfaceId, Model().interfaceName, Model().tlType, "TLInterface", ZQGENTL_VERSION,
              "InterfacePort", false, true},
             m_registers, *Model().interfaceDescription) {
    m_registers.Bind(*this, commonRows);
    m_registers.Bind(*this, updateRows<InterfaceModule>);
    m_moduleEvents.BindTo(m_registers);
    if (Model().technology == Technology::GigEVision)
        m_registers.Bind(*this, gevRows);
    const Description& description = *Model().interfaceDescription;
    m_registers.AddMemory(descriptionAddress, description.data, description.size);
    m_bus.SetListener(this);
}

const SimulatedDevice& InterfaceModule::Listed(uint32_t index) const {
    const std::optional<size_t> listed = m_list.At(index);
    if (!listed.has_value())
        throw Failure(GenTL::GC_ERR_INVALID_INDEX,
                      "device " + std::to_string(index) + " of " + std::to_string(ListedCount()));
    return m_bus.DeviceAt(*listed);
}

SimulatedDevice& InterfaceModule::Find(const std::string& id) const {
    for (size_t i = 0; i < m_bus.DeviceCount(); ++i) {
        if (id == m_bus.DeviceAt(i).camera.Model().deviceId)
            return m_bus.DeviceAt(i);
    }
    throw Failure(GenTL::GC_ERR_INVALID_ID,
                  std::string("there is no device '") + id + "' on " + Model().interfaceId);
}

const SimulatedDevice& InterfaceModule::WithId(const std::string& id) const {
    return Find(id);
}

void* InterfaceModule::OpenDevice(const std::string& id, GenTL::DEVICE_ACCESS_FLAGS access) {
    SimulatedDevice& device = Find(id);
    if (access < GenTL::DEVICE_ACCESS_READONLY || access > GenTL::DEVICE_ACCESS_EXCLUSIVE)
        throw Failure(GenTL::GC_ERR_INVALID_PARAMETER,
                      "access " + std::to_string(access) + " is not read only, control or exclusive");
    return m_devices.Open(id, [&] {
        if (m_bus.Away() || device.camera.Away())
            throw Failure(GenTL::GC_ERR_IO, "the device '" + id + "' is gone");
        return std::make_shared<DeviceModule>(shared_from_this(), device, access);
    });
}

const SimulatedDevice* InterfaceModule::Selected() const {
    const std::optional<size_t> listed = m_list.At(m_selector);
    return listed.has_value() ? &m_bus.DeviceAt(*listed) : nullptr;
}

void InterfaceModule::Select(int64_t index) {
    if (index < 0 || static_cast<uint64_t>(index) >= ListedCount())
        throw Failure(GenTL::GC_ERR_INVALID_VALUE, "there is no device " + std::to_string(index));
    m_selector = static_cast<size_t>(index);
}

void InterfaceModule::SendAction() {
    const int64_t destination = m_action.destination;
    for (size_t i = 0; i < m_bus.DeviceCount(); ++i) {
        SimulatedDevice& device = m_bus.DeviceAt(i);
        if (device.network.Hears(destination))
            device.camera.Act(m_action.device, m_action.group, m_action.mask,
                              m_action.scheduled != 0 ? m_action.timeNs.load() : 0);
    }
}

void InterfaceModule::ForceAddress() {
    const std::optional<size_t> listed = m_list.At(m_selector);
    if (!listed.has_value())
        throw Failure(GenTL::GC_ERR_ACCESS_DENIED, "no device is selected");
    SimulatedDevice& device = m_bus.DeviceAt(*listed);
    if (device.AccessStatus() != GenTL::DEVICE_ACCESS_STATUS_READWRITE)
        throw Failure(GenTL::GC_ERR_ACCESS_DENIED, "the device is open, or gone");
    device.network.Force(m_forced.ip, m_forced.mask, m_forced.gateway);
}

void InterfaceModule::OnInterfaceLost() {
    const EventData error =
        EventData::Error(GenTL::GC_ERR_IO, std::string("the interface ") + Model().interfaceId + " is gone");
    m_moduleEvents.Send(InterfaceEvent::InterfaceLost);
    Fire(error);
    m_parent->Fire(error);
}

void InterfaceModule::OnDeviceListChanged() {
    m_moduleEvents.Send(InterfaceEvent::DeviceListChanged);
}

void InterfaceModule::Close() {
    m_devices.CloseAll();
    m_bus.SetListener(nullptr);
    UnregisterEvents();
    m_bus.Release();
    m_parent->Forget(*this);
}

} // namespace zqgentl
