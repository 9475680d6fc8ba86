#include "producer/gentl/DeviceModule.h"

#include "producer/gentl/InterfaceModule.h"

#include <cstring>

namespace zqgentl {

namespace {

using Value = RegisterValue;
constexpr RegisterKind Integer = RegisterKind::Integer;
constexpr RegisterKind Text = RegisterKind::Text;

const CameraModel& ModelOf(const DeviceModule& device) {
    return device.Device().camera.Model();
}

Value OfText(const std::string& text) {
    return Value(text);
}

/// A selector with one entry.
void SelectOnly(DeviceModule&, const Value& value) {
    if (std::get<int64_t>(value) != 0)
        throw Failure(GenTL::GC_ERR_INVALID_VALUE, "this selector can only be 0");
}

/// Numbered as the enumeration EventSelector numbers them.
enum class DeviceEvent { DeviceLost };
constexpr uint16_t deviceLostEvent = 0x9001;

void SetMechanism(DeviceModule& device, const Value& value) {
    const int64_t mechanism = std::get<int64_t>(value);
    if (mechanism != 0 && mechanism != 1)
        throw Failure(GenTL::GC_ERR_INVALID_VALUE, "DeviceEndianessMechanism can only be Legacy or Standard");
    device.SetEndianessMechanism(mechanism);
}

template <auto Address>
Value Get(const DeviceModule& device) {
    return Value((device.Device().network.*Address).load());
}

void SetLinkTimeout(DeviceModule& device, const Value& value) {
    const double timeout = std::get<double>(value);
    if (!(timeout >= linkTimeoutMinUs && timeout <= linkTimeoutMaxUs))
        throw Failure(GenTL::GC_ERR_INVALID_VALUE, "LinkCommandTimeout is from 1000 to 60000000 us");
    device.Link().timeoutUs = timeout;
}

void SetLinkRetries(DeviceModule& device, const Value& value) {
    if (std::get<int64_t>(value) > linkRetriesMax)
        throw Failure(GenTL::GC_ERR_INVALID_VALUE, "LinkCommandRetryCount is from 0 to 10");
    device.Link().retries = std::get<int64_t>(value);
}

constexpr RegisterRow<DeviceModule> commonRows[] = {
    {0x0100, 64, Text, [](const DeviceModule& d) { return OfText(ModelOf(d).deviceId); }, nullptr},
    {0x0140, 64, Text, [](const DeviceModule&) { return OfText(vendorName); }, nullptr},
    {0x0180, 64, Text, [](const DeviceModule& d) { return OfText(ModelOf(d).modelName); }, nullptr},
    {0x01C0, 64, Text, [](const DeviceModule& d) { return OfText(ModelOf(d).serialNumber); }, nullptr},
    {0x0200, 64, Text, [](const DeviceModule&) { return OfText(cameraVersion); }, nullptr},
    {0x0240, 64, Text, [](const DeviceModule& d) { return Value(d.Device().camera.UserId()); }, nullptr},
    {0x0280, 128, Text, [](const DeviceModule& d) { return Value(DeviceDisplayName(ModelOf(d))); }, nullptr},
    {0x0300, 4, Integer,
     [](const DeviceModule& d) { return Value(static_cast<int64_t>(ModelOf(d).technology)); }, nullptr},
    {0x0304, 4, Integer, [](const DeviceModule& d) { return Value(int64_t{d.Device().AccessStatus()}); },
     nullptr},
    {0x0308, 8, Integer, [](const DeviceModule&) { return Value(int64_t{1000000000}); }, nullptr},
    {0x0400, 4, Integer, [](const DeviceModule&) { return Value(int64_t{0}); }, SelectOnly},
    {0x0440, 64, Text, [](const DeviceModule&) { return OfText(StreamModule::id); }, nullptr},
    {0x0500, 64, Text, [](const DeviceModule&) { return OfText("ZqApi simulated cameras"); }, nullptr},
    {0x0540, 64, Text, [](const DeviceModule&) { return OfText("exists in memory only"); }, nullptr},
    {0x0580, 8, RegisterKind::Float, [](const DeviceModule& d) { return Value(d.Link().timeoutUs.load()); },
     SetLinkTimeout},
    {0x0588, 4, Integer, [](const DeviceModule& d) { return Value(d.Link().retries.load()); },
     SetLinkRetries},
};

constexpr RegisterRow<DeviceModule> gevRows[] = {
    {0x0700, 8, Integer, [](const DeviceModule& d) { return Value(d.Device().network.mac); }, nullptr},
    {0x0708, 4, Integer, Get<&NetworkAddress::ip>, nullptr},
    {0x070C, 4, Integer, Get<&NetworkAddress::mask>, nullptr},
    {0x0710, 4, Integer, Get<&NetworkAddress::gateway>, nullptr},
    // The registers of the simulated camera are big endian by either mechanism.
    {0x0714, 4, Integer, [](const DeviceModule& d) { return Value(d.EndianessMechanism()); }, SetMechanism},
    {0x0718, 4, Integer, [](const DeviceModule&) { return Value(int64_t{1500}); }, nullptr},
};

} // namespace

DeviceModule::DeviceModule(std::shared_ptr<InterfaceModule> parent, SimulatedDevice& device,
                           GenTL::DEVICE_ACCESS_FLAGS access)
    : Module(kind), m_parent(std::move(parent)), m_device(device), m_moduleEvents(*this, deviceLostEvent, 1),
      m_port({device.camera.Model().deviceId, device.camera.Model().modelName, device.camera.Model().tlType,
              "TLDevice", ZQGENTL_VERSION, "DevicePort", false, true},
             m_registers, *device.camera.Model().deviceDescription) {
    m_registers.Bind(*this, commonRows);
    m_moduleEvents.BindTo(m_registers);
    if (ModelOf(*this).technology == Technology::GigEVision)
        m_registers.Bind(*this, gevRows);
    const Description& description = *ModelOf(*this).deviceDescription;
    m_registers.AddMemory(descriptionAddress, description.data, description.size);

    const bool writable = access != GenTL::DEVICE_ACCESS_READONLY;
    m_remotePort = Publish(std::make_shared<RemotePort>(m_parent, m_device.camera, writable));
    m_device.camera.PowerOn(*this);
    m_device.openStatus =
        writable ? GenTL::DEVICE_ACCESS_STATUS_OPEN_READWRITE : GenTL::DEVICE_ACCESS_STATUS_OPEN_READONLY;
}

void* DeviceModule::OpenStream(const std::string& id) {
    if (id != StreamModule::id)
        throw Failure(GenTL::GC_ERR_INVALID_ID, "there is no data stream '" + id + "'");
    if (m_device.camera.Lost())
        throw Failure(GenTL::GC_ERR_IO, "the camera is lost");
    return m_streams.Open(
        id, [&] { return std::make_shared<StreamModule>(shared_from_this(), m_device.camera); });
}

std::shared_ptr<Event> DeviceModule::MakeEvent(GenTL::EVENT_TYPE type) {
    switch (type) {
    case GenTL::EVENT_FEATURE_INVALIDATE:
    case GenTL::EVENT_FEATURE_CHANGE:
    case GenTL::EVENT_REMOTE_DEVICE:
        return std::make_shared<QueuedEvent>(type);
    default:
        return Module::MakeEvent(type);
    }
}

void DeviceModule::OnCameraChanged() {
    m_streams.ForEach([](StreamModule& stream) { stream.Engine().Wake(); });
}

void DeviceModule::OnCameraLost() {
    const EventData error =
        EventData::Error(GenTL::GC_ERR_IO, "the camera " + ModelOf(*this).serialNumber + " is lost");
    m_streams.ForEach([&](StreamModule& stream) {
        stream.Engine().Lose();
        stream.Fire(error);
    });
    m_moduleEvents.Send(DeviceEvent::DeviceLost);
    Fire(error);
}

void DeviceModule::OnCameraEvent(const CameraEvent& event) {
    const Technology technology = ModelOf(*this).technology;
    const std::string item = EventItem(technology, event);
    if (technology == Technology::CoaXPress) {
        Fire(EventData::Remote(EventIdOf(event.kind), item));
        return;
    }
    // 0 is no request id.
    uint16_t requestId = ++m_requestId;
    if (requestId == 0)
        requestId = ++m_requestId;
    Fire(GenTL::EVENT_REMOTE_DEVICE, EventPacket(technology, item, EventHasData(event.kind), requestId));
}

void DeviceModule::OnFeatureInvalidated(const char* feature) {
    Fire(EventData::FeatureInvalidated(feature));
}

void DeviceModule::OnFeatureChanged(const char* feature, const std::string& value) {
    Fire(EventData::FeatureChanged(feature, value));
}

void DeviceModule::Close() {
    m_device.camera.StopAcquisition();
    m_streams.CloseAll();
    m_device.camera.PowerOff();
    HandleRegistry::Instance().Remove(Kind::RemotePort, m_remotePort->Handle());
    UnregisterEvents();
    m_device.openStatus = GenTL::DEVICE_ACCESS_STATUS_READWRITE;
    m_parent->Forget(*this);
}

} // namespace zqgentl
