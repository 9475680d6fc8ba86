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

constexpr InfoRow<CameraModel> interfaceRows[] = {
    {GenTL::INTERFACE_INFO_ID, String, [](const CameraModel& m) { return InfoValue(m.interfaceId); }},
    {GenTL::INTERFACE_INFO_DISPLAYNAME, String,
     [](const CameraModel& m) { return InfoValue(m.interfaceName); }},
    {GenTL::INTERFACE_INFO_TLTYPE, String, [](const CameraModel& m) { return InfoValue(m.tlType); }},
};

} // namespace

void AnswerDeviceInfo(const SimulatedDevice& device, GenTL::DEVICE_INFO_CMD command,
                      const InfoTarget& target) {
    AnswerInfo(deviceRows, device, command, target);
}

void AnswerInterfaceInfo(const CameraModel& model, GenTL::INTERFACE_INFO_CMD command,
                         const InfoTarget& target) {
    AnswerInfo(interfaceRows, model, command, target);
}

std::string DeviceDisplayName(const CameraModel& model) {
    return std::string(vendorName) + " " + model.modelName + " (" + model.serialNumber + ")";
}

} // namespace zqgentl
