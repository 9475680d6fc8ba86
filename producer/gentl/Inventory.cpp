#include "producer/gentl/Inventory.h"

namespace zqgentl {

namespace {

constexpr GenTL::INFO_DATATYPE String = GenTL::INFO_DATATYPE_STRING;

constexpr InfoRow<SimulatedDevice> deviceRows[] = {
    {GenTL::DEVICE_INFO_ID, String,
     [](const SimulatedDevice& d) { return InfoValue(d.camera.Model().deviceId); }},
    {GenTL::DEVICE_INFO_VENDOR, String, [](const SimulatedDevice&) { return InfoValue(vendorName); }},
    {GenTL::DEVICE_INFO_MODEL, String,
     [](const SimulatedDevice& d) { return InfoValue(d.camera.Model().modelName); }},
    {GenTL::DEVICE_INFO_TLTYPE, String,
     [](const SimulatedDevice& d) { return InfoValue(d.camera.Model().tlType); }},
    {GenTL::DEVICE_INFO_DISPLAYNAME, String,
     [](const SimulatedDevice& d) { return InfoValue(DeviceDisplayName(d.camera.Model())); }},
    {GenTL::DEVICE_INFO_ACCESS_STATUS, GenTL::INFO_DATATYPE_INT32,
     [](const SimulatedDevice& d) { return InfoValue(d.AccessStatus()); }},
    {GenTL::DEVICE_INFO_USER_DEFINED_NAME, String,
     [](const SimulatedDevice& d) { return InfoValue(d.camera.UserId()); }},
    {GenTL::DEVICE_INFO_SERIAL_NUMBER, String,
     [](const SimulatedDevice& d) { return InfoValue(d.camera.Model().serialNumber); }},
    {GenTL::DEVICE_INFO_VERSION, String, [](const SimulatedDevice&) { return InfoValue(cameraVersion); }},
    {GenTL::DEVICE_INFO_TIMESTAMP_FREQUENCY, GenTL::INFO_DATATYPE_UINT64,
     [](const SimulatedDevice&) { return InfoValue(uint64_t{1000000000}); }},
};

constexpr InfoRow<BusModel> interfaceRows[] = {
    {GenTL::INTERFACE_INFO_ID, String, [](const BusModel& m) { return InfoValue(m.interfaceId); }},
    {GenTL::INTERFACE_INFO_DISPLAYNAME, String, [](const BusModel& m) { return InfoValue(m.interfaceName); }},
    {GenTL::INTERFACE_INFO_TLTYPE, String, [](const BusModel& m) { return InfoValue(m.tlType); }},
};

} // namespace

SimulatedInterface::SimulatedInterface(const BusModel& model, uint32_t cameras) : m_model(model) {
    for (uint32_t number = 1; number <= cameras; ++number)
        m_devices.push_back(std::make_unique<SimulatedDevice>(CameraModelOf(model, number)));
    for (const auto& device : m_devices)
        device->camera.ConnectTo(*this);
}

std::vector<size_t> SimulatedInterface::PresentDevices() const {
    std::vector<size_t> present;
    for (size_t i = 0; i < m_devices.size(); ++i) {
        if (!m_devices[i]->camera.Away())
            present.push_back(i);
    }
    return present;
}

template <class Call>
void SimulatedInterface::Tell(Call call) {
    std::lock_guard<std::mutex> guard(m_listenerLock);
    if (m_listener != nullptr)
        call(*m_listener);
}

void SimulatedInterface::TellDeviceList() {
    Tell([](InterfaceListener& listener) { listener.OnDeviceListChanged(); });
}

void SimulatedInterface::TellInterfaceList() {
    std::lock_guard<std::mutex> guard(m_listenerLock);
    if (m_systemListener != nullptr)
        m_systemListener->OnInterfaceListChanged();
}

void SimulatedInterface::Lose(std::chrono::milliseconds absence) {
    m_absence.Begin(absence);
    for (const auto& device : m_devices)
        device->camera.Lose();
    Tell([](InterfaceListener& listener) { listener.OnInterfaceLost(); });
    TellInterfaceList();
    if (absence.count() != 0)
        m_agenda.At(Agenda::Clock::now() + absence, [this] { TellInterfaceList(); });
}

void SimulatedInterface::OnCameraAway(std::chrono::milliseconds absence) {
    TellDeviceList();
    m_agenda.At(Agenda::Clock::now() + absence, [this] { TellDeviceList(); });
}

void SimulatedInterface::Release() {
    if (m_absence.Release())
        TellInterfaceList();
}

void SimulatedInterface::SetListener(InterfaceListener* listener) {
    std::lock_guard<std::mutex> guard(m_listenerLock);
    m_listener = listener;
}

void SimulatedInterface::SetSystemListener(SystemListener* listener) {
    std::lock_guard<std::mutex> guard(m_listenerLock);
    m_systemListener = listener;
}

Inventory::Inventory(const Population& population) {
    for (size_t i = 0; i < busCount; ++i) {
        if (population[i].has_value())
            m_interfaces.push_back(std::make_unique<SimulatedInterface>(BusModelAt(i), *population[i]));
    }
}

std::vector<size_t> Inventory::PresentInterfaces() const {
    std::vector<size_t> present;
    for (size_t i = 0; i < m_interfaces.size(); ++i) {
        if (!m_interfaces[i]->Away())
            present.push_back(i);
    }
    return present;
}

void AnswerDeviceInfo(const SimulatedDevice& device, GenTL::DEVICE_INFO_CMD command,
                      const InfoTarget& target) {
    AnswerInfo(deviceRows, device, command, target);
}

void AnswerInterfaceInfo(const BusModel& model, GenTL::INTERFACE_INFO_CMD command, const InfoTarget& target) {
    AnswerInfo(interfaceRows, model, command, target);
}

std::string DeviceDisplayName(const CameraModel& model) {
    return std::string(vendorName) + " " + model.modelName + " (" + model.serialNumber + ")";
}

} // namespace zqgentl
