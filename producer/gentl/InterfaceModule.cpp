#include "producer/gentl/InterfaceModule.h"

#include "producer/gentl/SystemModule.h"

namespace zqgentl {

namespace {

using Value = RegisterValue;
constexpr RegisterKind Integer = RegisterKind::Integer;
constexpr RegisterKind Text = RegisterKind::Text;

Value SelectedText(const InterfaceModule& interface, const char* CameraModel::*text) {
    const SimulatedDevice* device = interface.Selected();
    return Value(device == nullptr ? std::string() : std::string(device->camera.Model().*text));
}

Value Selected(const InterfaceModule& interface, int64_t value) {
    return Value(interface.Selected() == nullptr ? 0 : value);
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
    // A command that is done as soon as it is written, so it always reads as done.
    {0x0400, 4, Integer, [](const InterfaceModule&) { return Value(int64_t{0}); },
     [](InterfaceModule& interface, const Value&) { interface.UpdateList(); }},
    // With one device there is nothing to select but the first.
    {0x0410, 4, Integer, [](const InterfaceModule&) { return Value(int64_t{0}); },
     [](InterfaceModule&, const Value& value) {
         if (std::get<int64_t>(value) != 0)
             throw Failure(GenTL::GC_ERR_INVALID_VALUE, "DeviceSelector can only be 0");
     }},
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
    {0x0604, 4, Integer, [](const InterfaceModule& i) { return Selected(i, 1); }, nullptr},
    {0x0608, 4, Integer, [](const InterfaceModule& i) { return Selected(i, 0); }, nullptr},
};

constexpr RegisterRow<InterfaceModule> gevRows[] = {
    {0x0700, 8, Integer, [](const InterfaceModule&) { return Value(simulatedMacAddress); }, nullptr},
    {0x0708, 4, Integer, [](const InterfaceModule&) { return Value(simulatedInterfaceIp); }, nullptr},
    {0x070C, 4, Integer, [](const InterfaceModule&) { return Value(simulatedSubnetMask); }, nullptr},
    {0x0710, 4, Integer, [](const InterfaceModule&) { return Value(int64_t{0}); }, nullptr},
    {0x0718, 8, Integer, [](const InterfaceModule& i) { return Selected(i, simulatedMacAddress + 1); },
     nullptr},
    {0x0720, 4, Integer, [](const InterfaceModule& i) { return Selected(i, simulatedDeviceIp); }, nullptr},
    {0x0724, 4, Integer, [](const InterfaceModule& i) { return Selected(i, simulatedSubnetMask); }, nullptr},
};

} // namespace

InterfaceModule::InterfaceModule(std::shared_ptr<SystemModule> parent, SimulatedDevice& device)
    : Module(kind), m_parent(std::move(parent)), m_device(device),
      m_port({Model().interfaceId, Model().interfaceName, Model().tlType, "TLInterface", ZQGENTL_VERSION,
              "InterfacePort", false, true},
             m_registers, *Model().interfaceDescription) {
    m_registers.Bind(*this, commonRows);
    if (Model().technology == Technology::GigEVision)
        m_registers.Bind(*this, gevRows);
    const Description& description = *Model().interfaceDescription;
    m_registers.AddMemory(descriptionAddress, description.data, description.size);
}

const SimulatedDevice& InterfaceModule::Listed(uint32_t index) const {
    if (index >= ListedCount())
        throw Failure(GenTL::GC_ERR_INVALID_INDEX,
                      "device " + std::to_string(index) + " of " + std::to_string(ListedCount()));
    return m_device;
}

void InterfaceModule::RequireId(const std::string& id) const {
    if (id != Model().deviceId)
        throw Failure(GenTL::GC_ERR_INVALID_ID,
                      std::string("there is no device '") + id + "' on " + Model().interfaceId);
}

const SimulatedDevice& InterfaceModule::WithId(const std::string& id) const {
    RequireId(id);
    return m_device;
}

void* InterfaceModule::OpenDevice(const std::string& id, GenTL::DEVICE_ACCESS_FLAGS access) {
    RequireId(id);
    if (access < GenTL::DEVICE_ACCESS_READONLY || access > GenTL::DEVICE_ACCESS_EXCLUSIVE)
        throw Failure(GenTL::GC_ERR_INVALID_PARAMETER,
                      "access " + std::to_string(access) + " is not read only, control or exclusive");
    return m_devices.Open(
        id, [&] { return std::make_shared<DeviceModule>(shared_from_this(), m_device, access); });
}

const SimulatedDevice* InterfaceModule::Selected() const noexcept {
    return ListedCount() > 0 ? &m_device : nullptr;
}

void InterfaceModule::Close() {
    m_devices.CloseAll();
    UnregisterEvents();
    m_parent->Forget(*this);
}

} // namespace zqgentl
