#include "Rig.h"

#include <cstdlib>
#include <cstring>
#include <map>

using namespace GenTL;

namespace {

void Check(GC_ERROR result, const char* what) {
    if (result != GC_ERR_SUCCESS)
        throw std::runtime_error(std::string(what) + ": " + std::to_string(result));
}

/// The description of a port, made once for each file.
GenApi::CNodeMapFactory& FactoryOf(void* port) {
    static std::map<std::string, GenApi::CNodeMapFactory> factories;
    char url[256] = "";
    size_t size = sizeof url;
    INFO_DATATYPE type = 0;
    Check(Producer().GCGetPortURLInfo(port, 0, URL_INFO_URL, &type, url, &size), url);
    const std::string text = url;
    const auto known = factories.find(text);
    if (known != factories.end())
        return known->second;
    const size_t first = text.find(';');
    const size_t second = text.find(';', first + 1);
    std::string bytes(std::stoull(text.substr(second + 1), nullptr, 16), '\0');
    size = bytes.size();
    Check(Producer().GCReadPort(port, std::stoull(text.substr(first + 1), nullptr, 16), bytes.data(), &size),
          url);
    return factories
        .emplace(text, GenApi::CNodeMapFactory(GenApi::ContentType_Xml, bytes.data(), bytes.size(),
                                               GenApi::CacheUsage_Ignore))
        .first->second;
}

std::string PortName(void* port) {
    char name[64] = "";
    size_t size = sizeof name;
    INFO_DATATYPE type = 0;
    Check(Producer().GCGetPortInfo(port, PORT_INFO_PORTNAME, &type, name, &size), "PORTNAME");
    return name;
}

} // namespace

void HandlePort::Read(void* buffer, int64_t address, int64_t length) {
    auto size = static_cast<size_t>(length);
    Check(Producer().GCReadPort(m_handle, static_cast<uint64_t>(address), buffer, &size), "GCReadPort");
}

void HandlePort::Write(const void* buffer, int64_t address, int64_t length) {
    auto size = static_cast<size_t>(length);
    Check(Producer().GCWritePort(m_handle, static_cast<uint64_t>(address), buffer, &size), "GCWritePort");
}

Rig::Rig(const Flavour& chosen) : flavour(chosen) {
    setenv("ZQGENTL_SIM", "U3V=3,GEV=3,CXP=3", 1);
    Check(gentl.GCInitLib(), "GCInitLib");
    Check(gentl.TLOpen(&system), "TLOpen");
    Check(gentl.TLOpenInterface(system, flavour.interfaceId, &interface), flavour.interfaceId);
    OpenDevice();
}

Rig::~Rig() {
    m_chunks.reset();
    gentl.GCCloseLib();
}

void Rig::OpenDevice() {
    Check(gentl.IFOpenDevice(interface, flavour.deviceId, DEVICE_ACCESS_CONTROL, &device), flavour.deviceId);
    Check(gentl.DevGetPort(device, &remote), "DevGetPort");
    Check(gentl.DevOpenDataStream(device, "Stream0", &stream), "DevOpenDataStream");
    Check(gentl.GCRegisterEvent(stream, EVENT_NEW_BUFFER, &m_newBuffer), "GCRegisterEvent");
}

GC_ERROR Rig::Reopen() {
    m_chunks.reset();
    for (Module module : {Module::Device, Module::Stream, Module::Camera, Module::Buffer})
        m_maps[static_cast<size_t>(module)] = Mapped();
    m_buffers.clear();
    gentl.DevClose(device);
    void* again = nullptr;
    const GC_ERROR result = gentl.IFOpenDevice(interface, flavour.deviceId, DEVICE_ACCESS_CONTROL, &again);
    if (result == GC_ERR_SUCCESS) {
        gentl.DevClose(again);
        OpenDevice();
    }
    return result;
}

bool Rig::Lost() {
    DEVICE_ACCESS_STATUS status = 0;
    size_t size = sizeof status;
    INFO_DATATYPE type = 0;
    Check(gentl.DevGetInfo(device, DEVICE_INFO_ACCESS_STATUS, &type, &status, &size), "ACCESS_STATUS");
    return status == DEVICE_ACCESS_STATUS_NOACCESS;
}

void* Rig::HandleOf(Module module) const {
    void* const handles[] = {system, interface, device, stream, m_filled, remote};
    return handles[static_cast<size_t>(module)];
}

GenApi::INodeMap& Rig::Map(Module module) {
    Mapped& mapped = m_maps[static_cast<size_t>(module)];
    if (mapped.map._Ptr == nullptr) {
        void* handle = HandleOf(module);
        mapped.port = std::make_unique<HandlePort>(handle);
        mapped.map = FactoryOf(handle).CreateNodeMap("Device", false);
        if (!mapped.map._Connect(mapped.port.get(), PortName(handle).c_str()))
            throw std::runtime_error("the port is not in its description");
    }
    return *mapped.map._Ptr;
}

GenApi::INode& Rig::Node(Module module, const std::string& name) {
    GenApi::INode* node = Map(module).GetNode(name.c_str());
    if (node == nullptr)
        throw std::runtime_error("there is no node " + name);
    return *node;
}

void Rig::SetWhole(Module module, const std::string& name, int64_t value) {
    GenApi::INode& node = Node(module, name);
    if (auto* integer = dynamic_cast<GenApi::IInteger*>(&node))
        integer->SetValue(value);
    else if (auto* entries = dynamic_cast<GenApi::IEnumeration*>(&node))
        entries->SetIntValue(value);
    else
        dynamic_cast<GenApi::IBoolean&>(node).SetValue(value != 0);
}

void Rig::SetText(Module module, const std::string& name, const char* value) {
    As<GenApi::IValue>(module, name).FromString(value);
}

void Rig::SetReal(const std::string& name, double value) {
    As<GenApi::IFloat>(Module::Camera, name).SetValue(value);
}

void Rig::SetBytes(const std::string& name, const std::string& bytes) {
    As<GenApi::IRegister>(Module::Camera, name)
        .Set(reinterpret_cast<const uint8_t*>(bytes.data()), static_cast<int64_t>(bytes.size()));
}

void Rig::Do(Module module, const std::string& name) {
    As<GenApi::ICommand>(module, name).Execute();
}

int64_t Rig::Get(Module module, const std::string& name) {
    GenApi::INode& node = Node(module, name);
    if (auto* integer = dynamic_cast<GenApi::IInteger*>(&node))
        return integer->GetValue(false, true);
    if (auto* entries = dynamic_cast<GenApi::IEnumeration*>(&node))
        return entries->GetIntValue(false, true);
    return dynamic_cast<GenApi::IBoolean&>(node).GetValue(false, true) ? 1 : 0;
}

double Rig::Real(const std::string& name) {
    return As<GenApi::IFloat>(Module::Camera, name).GetValue(false, true);
}

std::string Rig::Text(Module module, const std::string& name) {
    return As<GenApi::IValue>(module, name).ToString(false, true).c_str();
}

std::string Rig::Bytes(const std::string& name) {
    auto& node = As<GenApi::IRegister>(Module::Camera, name);
    std::string bytes(static_cast<size_t>(node.GetLength()), '\0');
    node.Get(reinterpret_cast<uint8_t*>(bytes.data()), static_cast<int64_t>(bytes.size()), false, true);
    return bytes;
}

bool Rig::Writable(const std::string& name) {
    Map(Module::Camera).InvalidateNodes();
    return GenApi::IsWritable(&Node(Module::Camera, name));
}

void Rig::SmallAndFast() {
    Set("Width", 16);
    Set("Height", 8);
    GoFast();
}

void Rig::StartStream(size_t buffers) {
    for (size_t i = 0; i < buffers; ++i) {
        void* buffer = nullptr;
        Check(
            gentl.DSAllocAndAnnounceBuffer(stream, static_cast<size_t>(Get("PayloadSize")), nullptr, &buffer),
            "DSAllocAndAnnounceBuffer");
        Check(gentl.DSQueueBuffer(stream, buffer), "DSQueueBuffer");
        m_buffers.push_back(buffer);
    }
    Check(gentl.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE), "DSStartAcquisition");
}

void Rig::Begin(size_t buffers) {
    StartStream(buffers);
    Do("AcquisitionStart");
}

void Rig::End() {
    Do("AcquisitionStop");
    gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_KILL);
    gentl.DSFlushQueue(stream, ACQ_QUEUE_ALL_DISCARD);
    for (void* buffer : m_buffers)
        gentl.DSRevokeBuffer(stream, buffer, nullptr, nullptr);
    m_buffers.clear();
}

template <class T>
T Rig::Info(void* buffer, BUFFER_INFO_CMD command) {
    T value{};
    size_t size = sizeof value;
    INFO_DATATYPE type = 0;
    gentl.DSGetBufferInfo(stream, buffer, command, &type, &value, &size);
    return value;
}

Frame Rig::Look(void* buffer) {
    Frame frame;
    frame.id = Info<uint64_t>(buffer, BUFFER_INFO_FRAMEID);
    frame.timestampNs = Info<uint64_t>(buffer, BUFFER_INFO_TIMESTAMP_NS);
    frame.width = Info<size_t>(buffer, BUFFER_INFO_WIDTH);
    frame.height = Info<size_t>(buffer, BUFFER_INFO_HEIGHT);
    frame.incomplete = Info<bool8_t>(buffer, BUFFER_INFO_IS_INCOMPLETE) != 0;
    frame.larger = Info<bool8_t>(buffer, BUFFER_INFO_DATA_LARGER_THAN_BUFFER) != 0;
    frame.hasChunks = Info<bool8_t>(buffer, BUFFER_INFO_CONTAINS_CHUNKDATA) != 0;
    const auto* base = Info<const uint8_t*>(buffer, BUFFER_INFO_BASE);
    frame.bytes.assign(base, base + Info<size_t>(buffer, BUFFER_INFO_SIZE_FILLED));
    uint32_t parts = 0;
    if (gentl.DSGetNumBufferParts(stream, buffer, &parts) == GC_ERR_SUCCESS)
        frame.parts = parts;
    frame.chunks.resize(32);
    size_t count = frame.chunks.size();
    frame.chunkResult = gentl.DSGetBufferChunkData(stream, buffer, frame.chunks.data(), &count);
    frame.chunks.resize(frame.chunkResult == GC_ERR_SUCCESS ? count : 0);
    return frame;
}

std::optional<Frame> Rig::Next(uint64_t timeoutMs) {
    EVENT_NEW_BUFFER_DATA data{};
    size_t size = sizeof data;
    if (gentl.EventGetData(m_newBuffer, &data, &size, timeoutMs) != GC_ERR_SUCCESS)
        return std::nullopt;
    Frame frame = Look(data.BufferHandle);
    m_filled = data.BufferHandle;
    gentl.DSQueueBuffer(stream, data.BufferHandle);
    return frame;
}

std::vector<Frame> Rig::Grab(size_t count) {
    Begin(count);
    std::vector<Frame> frames;
    while (frames.size() < count) {
        std::optional<Frame> frame = Next();
        if (!frame.has_value())
            throw std::runtime_error("frame " + std::to_string(frames.size()) + " did not come");
        frames.push_back(std::move(*frame));
    }
    End();
    return frames;
}

Frame Rig::One() {
    return Grab(1).front();
}

void Rig::Attach(Frame& frame) {
    std::vector<GenApi::SingleChunkData_t> chunks;
    for (const SINGLE_CHUNK_DATA& chunk : frame.chunks)
        chunks.push_back({chunk.ChunkID, chunk.ChunkOffset, chunk.ChunkLength});
    if (m_chunks == nullptr)
        m_chunks = std::make_unique<GenApi::CChunkAdapterGeneric>(&Map(Module::Camera));
    m_chunks->AttachBuffer(frame.bytes.data(), chunks.data(), static_cast<int64_t>(chunks.size()));
}

void Rig::EnableChunk(const char* name) {
    Set("ChunkModeActive", 1);
    Set("ChunkSelector", name);
    Set("ChunkEnable", 1);
}

void Rig::Listen(Module module, EVENT_TYPE type) {
    m_eventModule = module;
    Check(gentl.GCRegisterEvent(module == Module::Camera ? device : HandleOf(module), type, &m_event),
          "GCRegisterEvent");
}

void Rig::SwitchOn(const char* event) {
    Set("EventSelector", event);
    Set("EventNotification", "On");
}

std::string Rig::NextEvent(uint64_t timeoutMs) {
    uint8_t bytes[512];
    size_t size = sizeof bytes;
    if (gentl.EventGetData(m_event, bytes, &size, timeoutMs) != GC_ERR_SUCCESS)
        return "";
    char id[256] = "";
    uint8_t value[256];
    size_t idSize = sizeof id;
    size_t valueSize = sizeof value;
    INFO_DATATYPE type = 0;
    Check(gentl.EventGetDataInfo(m_event, bytes, size, EVENT_DATA_ID, &type, id, &idSize), "EVENT_DATA_ID");
    Check(gentl.EventGetDataInfo(m_event, bytes, size, EVENT_DATA_VALUE, &type, value, &valueSize),
          "EVENT_DATA_VALUE");
    if (type == INFO_DATATYPE_BUFFER)
        GenApi::CEventAdapterGeneric(&Map(m_eventModule))
            .DeliverMessage(value, static_cast<uint32_t>(valueSize), GenICam::gcstring(id));
    return id;
}

void Rig::Pulse(int line) {
    const std::string name = "SimulationLine" + std::to_string(line);
    Set(name, 1);
    Set(name, 0);
}
