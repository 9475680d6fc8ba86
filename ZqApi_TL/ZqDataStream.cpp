#include "ZqApi_TL/ZqDataStream.h"

#include <chrono>
#include <thread>

#include "ZqApi_TL/OptionalEvent.h"
#include "ZqApi_TL/Teardown.h"
#include "ZqGenTLCommon/ZqGenTLError.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqDataStream";
constexpr int64_t LARGEST_BUFFER_COUNT = 65535;

} // namespace

CZqDataStream::CZqDataStream(CZqGenTLLib* pGenTL, IZqDeviceInside* pDevice, DS_HANDLE hDataStream,
                             IZqAllocator* pAllocator)
    : m_pCZqGenTL(pGenTL), m_pIZqDeviceInside(pDevice),
      m_pKeptGenTL((ZQ_ASSERT(UNIT, m_pCZqGenTL != NULL), pGenTL->shared_from_this())),
      m_pDeviceLostEvent((ZQ_ASSERT(UNIT, m_pIZqDeviceInside != NULL), pDevice->GetDeviceLostEvent())),
      m_pStreamToken(pDevice->GetStreamToken()), m_hDataStream(hDataStream),
      m_DataStreamInfo(pGenTL, hDataStream, pDevice, &m_Delivered), m_Pool(pGenTL, this, pAllocator) {
    ConvertBadAlloc(UNIT, __LINE__, [this] { Construct(); });
}

void CZqDataStream::Construct() {
    m_Acquisition.stopped = std::make_shared<CEventObject>(nullptr, true, true, nullptr);
    const gcstring deviceID = m_pIZqDeviceInside->GetIZqDeviceInfo()->GetID();
    m_pCZqPort = std::make_unique<CZqPort>(m_pCZqGenTL, m_hDataStream, GenApi::RW,
                                           gcstring("DataStream_0_") + deviceID);
    m_pErrorEvent = MakeEventIfImplemented<CZqEventErrorDS>(
        m_pCZqGenTL, m_hDataStream, static_cast<IZqDataStream*>(this), &m_CallbackManager,
        ZqCallbackType_GenTLEventErrorDS, "ZqApi_TL_EventError_DS");
}

CZqDataStream::~CZqDataStream() = default;

void* CZqDataStream::RegisterCallback(IZqCallback* pCallback) {
    return m_CallbackManager.RegisterCallback(pCallback);
}

void CZqDataStream::DeregisterCallback(void* hCallback) {
    m_CallbackManager.DeregisterCallback(hCallback);
}

IZqDevice* CZqDataStream::GetIZqDevice() {
    return m_pIZqDeviceInside;
}

IZqPort* CZqDataStream::GetIZqPort() {
    return m_pCZqPort.get();
}

const IZqDataStreamInfo* CZqDataStream::GetIZqDataStreamInfo() {
    return &m_DataStreamInfo;
}

size_t CZqDataStream::GetStreamBufferCount() {
    return m_nStreamBufferCount;
}

void CZqDataStream::SetStreamBufferCount(size_t nCount) {
    const auto minimum = static_cast<int64_t>(m_DataStreamInfo.GetBufAnnounceMin());
    CheckMin(UNIT, __LINE__, "nCount", static_cast<int64_t>(nCount), minimum);
    CheckMax(UNIT, __LINE__, "nCount", static_cast<int64_t>(nCount), LARGEST_BUFFER_COUNT);
    m_nStreamBufferCount = nCount;
}

bool CZqDataStream::IsGrabbing() {
    return m_DataStreamInfo.IsGrabbing() || m_DataStreamInfo.GetNumAwaitDelivery() != 0;
}

double CZqDataStream::GetCurrentFPS() {
    return m_FPS.GetFPS();
}

double CZqDataStream::GetCurrentBPS() {
    return m_BPS.GetBPS();
}

IZqDeviceInside* CZqDataStream::GetIZqDeviceInside() {
    return m_pIZqDeviceInside;
}

DS_HANDLE CZqDataStream::GetDataStreamHandle() {
    return m_hDataStream;
}

void* CZqDataStream::GetIsFilledStreamBufferEventHandle() {
    CEventObject& filled = m_Delivered.GetFilledEvent();
    return filled.IsClosing() ? nullptr : &filled;
}

void CZqDataStream::StartEventAcquisitionThread() {
    if (m_pErrorEvent)
        m_pErrorEvent->Start();
}

void CZqDataStream::StopEventAcquisitionThread() {
    RefuseInsideCallback(__LINE__);
    if (m_pErrorEvent)
        m_pErrorEvent->Stop();
}

bool CZqDataStream::IsInsideCallback() const {
    return m_CallbackManager.IsInsideRunCallback() || StreamCallbackScope::IsInside(this);
}

void CZqDataStream::RefuseInsideCallback(int line) const {
    // It would wait for a thread that is running the callback, or that waits for the callbacks' lock.
    if (IsInsideCallback())
        throw ReportError<GenICam::LogicalErrorException>(
            UNIT, line, "A data stream can't be stopped or released inside one of its own callbacks.");
}

void CZqDataStream::DeleteInsideObjects() {
    Teardown steps;
    if (m_pErrorEvent)
        steps.Run([this] { m_pErrorEvent->Stop(); });
    steps.Run([this] { DeallocateBuffers(); });
    steps.RethrowFirst();
}

void CZqDataStream::Release() {
    RefuseInsideCallback(__LINE__);
    m_bReleasing = true;
    Teardown steps;
    {
        const std::lock_guard<std::mutex> control(m_Control);
        steps.Run([this] { StopGrabbing(ACQ_STOP_FLAGS_DEFAULT); });
        m_Acquisition.stopped->SetEvent();
    }
    // Asleep, not yielding: a caller of real-time priority would keep a reader from ever leaving.
    while (m_nReaders.load() != 0)
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    steps.Run([this] { DeleteInsideObjects(); });
    m_pErrorEvent.reset();
    m_pCZqPort.reset();
    CallProducer(m_pCZqGenTL->DSClose, m_hDataStream);
    m_Pool.OnStreamClosed();
    delete this;
}

} // namespace ZqApi
