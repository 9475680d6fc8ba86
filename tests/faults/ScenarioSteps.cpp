// What the steps of a scenario do.
#include "tests/faults/Scenario.h"

#include "tests/support/AllocationFailure.h"
#include "tests/support/ChunkNodes.h"

namespace ZqTest {

using namespace GenTL;

void Scenario::Open() {
    m_pSystem = CreateIZqSystem(ZqSystemVendor_Default, ZqInterfaceType_All);
}

void Scenario::List() {
    m_pSystem->UpdateInterfaceList();
    m_pSystem->GetIZqSystemInfo()->GetVendor();
    m_pSystem->GetIZqSystemInfo()->GetGenTLVersionMajor();
    IZqInterface* const pInterface = m_pSystem->GetIZqInterface(0);
    pInterface->GetIZqInterfaceInfo()->GetDisplayName();
    pInterface->UpdateDeviceList();
    const IZqDeviceInfo* const pDevice = pInterface->GetIZqDeviceInfo(0);
    pDevice->GetModel();
    pDevice->GetAccessStatus();
}

void Scenario::StartEvents() {
    m_pSystem->StartEventAcquisitionThread();
    m_pSystem->GetIZqInterface(0)->StartEventAcquisitionThread();
}

void Scenario::OpenDevice() {
    m_pDevice = m_Way.firstDevice
                    ? m_pSystem->CreateFirstIZqDevice(DEVICE_ACCESS_CONTROL)
                    : m_pSystem->GetIZqInterface(0)->CreateIZqDevice(size_t{0}, DEVICE_ACCESS_CONTROL);
    m_Outcome.lost = m_pDevice->IsDeviceLost();
}

void Scenario::ReadFeatures() {
    IZqPort* const pPort = m_pDevice->GetRemoteIZqPort();
    pPort->GetPortURLCount();
    pPort->GetIZqPortURLInfo()->GetFileSize();
    pPort->GetIZqPortInfo()->GetVersion();
    pPort->GetIZqPortInfo()->IsAccessRead();
    m_pDevice->GetIZqDeviceInfo()->GetSerialNumber();
    m_pDevice->GetIZqDeviceInfo()->GetTimestampFrequency();
    m_pSystem->GetIZqPort()->GetINodeMap();
    m_pDevice->GetLocalIZqPort()->GetINodeMap();
    INodeMap* const pNodeMap = pPort->GetINodeMap();
    const GenApi::CIntegerPtr pWidth = pNodeMap->GetNode("Width");
    pWidth->SetValue(pWidth->GetValue());
    GenApi::CEnumerationPtr(pNodeMap->GetNode("PixelFormat"))->FromString("Mono8");
}

void Scenario::SaveFeatures() {
    IZqFeatureBagReleasable* const pBag = CreateIZqFeatureBag();
    const Failure failure = FailureOf([&] {
        INodeMap* const pNodeMap = m_pDevice->GetRemoteIZqPort()->GetINodeMap();
        pBag->StoreNodeMapToBag(pNodeMap, -1);
        gcstring text;
        pBag->SaveToString(text);
    });
    pBag->Release();
    if (!failure.kind.empty())
        throw failure;
}

void Scenario::OpenStream() {
    m_pStream = m_pDevice->CreateIZqDataStream(0, m_Way.ownMemory ? &m_Memory : nullptr);
    m_pStream->SetStreamBufferCount(2);
    m_pStream->StartEventAcquisitionThread();
}

void Scenario::Start() {
    m_pStream->StartAcquisition(GENTL_INFINITE, ACQ_START_FLAGS_DEFAULT);
    m_pDevice->AcquisitionStart();
    m_pStream->IsGrabbing();
    WaitForEventThreads();
}

void Scenario::PushFrame() {
    const SparedAllocations own;
    const std::vector<Chunk> chunks = {{1, "imageimage"}, {0x1001, Number(++m_nFrame, 8)}};
    const bool ethernet = std::string(m_Way.tlType) == "GEV";
    Frame frame(ethernet ? BigEndianChunks(chunks) : LittleEndianChunks(chunks));
    frame.Info<size_t>(BUFFER_INFO_PAYLOADTYPE, INFO_DATATYPE_SIZET, PAYLOAD_TYPE_CHUNK_DATA);
    (void)m_Producer.PushFrame("DS1", frame);
    WaitForEventThreads();
}

void Scenario::Read(IZqStreamBufferReleasable* pBuffer) {
    pBuffer->GetIZqStreamBufferInfo()->GetFrameID();
    IZqImage* const pImage = pBuffer->GetIZqImage();
    pImage->GetImageBuffer();
    pImage->GetImageHeight();
    pImage->GetImageLinePitch();
    const GenApi::CIntegerPtr pTimestamp = pBuffer->GetChunkINodeMap()->GetNode("ChunkTimestamp");
    if (GenApi::IsReadable(pTimestamp))
        pTimestamp->GetValue();
}

void Scenario::Retrieve(int& frames) {
    IZqStreamBufferReleasable* const pBuffer = m_pStream->RetrieveBuffer(0, ZqTimeoutHandling_ReturnNull);
    if (pBuffer == nullptr)
        return;
    ++frames;
    const Failure failure = FailureOf([&] { Read(pBuffer); });
    if (failure.kind.empty())
        return pBuffer->Release();
    FailureOf([&] { pBuffer->Release(); });
    throw failure;
}

void Scenario::GrabByWaiting() {
    for (int frame = 0; frame < 2; ++frame) {
        PushFrame();
        Retrieve(m_Outcome.framesRetrieved);
    }
    // Nothing is left; what the event thread met shows here at the latest.
    m_pStream->RetrieveBuffer(0, ZqTimeoutHandling_ReturnNull);
    m_pStream->GetIZqDataStreamInfo()->GetNumUnderrun();
    m_pStream->GetCurrentFPS();
}

void Scenario::OnNewBuffer() {
    const Failure failure = FailureOf([this] { Retrieve(m_Outcome.framesInCallback); });
    if (m_Outcome.inCallback.kind.empty())
        m_Outcome.inCallback = failure;
}

void Scenario::Callback::Invoke(IZqCallbackParamBase* pParam) {
    if (pParam->GetCallbackType() == ZqCallbackType_GenTLEventNewBuffer)
        m_Scenario.OnNewBuffer();
    else
        static_cast<IZqCallbackParamGenTLEventErrorDS*>(pParam)->GetDescription();
}

void Scenario::GrabByCallback() {
    void* const hCallback = m_pStream->RegisterCallback(&m_Callback);
    for (int frame = 0; frame < framesToCallback; ++frame) {
        PushFrame();
    }
    const SparedAllocations own;
    (void)m_Producer.PushError("DS1", GC_ERR_IO, "reported");
    WaitForEventThreads();
    m_pStream->DeregisterCallback(hCallback);
}

void Scenario::DeviceEvents() {
    const SparedAllocations own;
    const auto named = [](const char* name, const char* value) {
        PushedEvent event;
        event.id = std::string(name) + std::string(1, 0);
        event.value = std::string(value) + std::string(1, 0);
        event.valueType = INFO_DATATYPE_STRING;
        return event;
    };
    (void)m_Producer.Push("DEV1", EVENT_FEATURE_INVALIDATE, named("Width", ""));
    WaitForEventThreads();
    (void)m_Producer.Push("DEV1", EVENT_FEATURE_CHANGE, named("Height", "48"));
    WaitForEventThreads();
    (void)m_Producer.Push("DEV1", EVENT_REMOTE_DEVICE, named("0002", "bytes"));
    WaitForEventThreads();
    for (const char* const module : {"IF1", "DEV1"}) {
        (void)m_Producer.Push(module, EVENT_MODULE, named("0003", "bytes"));
        WaitForEventThreads();
    }
    for (const char* const module : {"TL1", "IF1", "DEV1"}) {
        (void)m_Producer.PushError(module, GC_ERR_IO, "reported");
        WaitForEventThreads();
    }
}

void Scenario::Stop() {
    m_pDevice->AcquisitionStop();
    m_pStream->StopAcquisition(ACQ_STOP_FLAGS_DEFAULT);
}

void Scenario::StopEvents() {
    m_pDevice->StopEventAcquisitionThread();
    m_pSystem->StopEventAcquisitionThread();
}

void Scenario::Release() {
    if (m_pStream != nullptr)
        Step("release stream", [this] { m_pStream->Release(); });
    if (m_pDevice != nullptr)
        Step("release device", [this] { m_pDevice->Release(); });
    if (m_pSystem != nullptr)
        Step("release system", [this] { m_pSystem->Release(); });
    m_pStream = nullptr;
    m_pDevice = nullptr;
    m_pSystem = nullptr;
}

} // namespace ZqTest
