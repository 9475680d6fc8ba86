#include "ZqApi_TL/ZqEvent.h"

#include <algorithm>
#include <cxxabi.h>

#include "ZqApi_TL/Teardown.h"
#include "ZqGenTLCommon/ZqGenTLError.h"
#include "ZqSDKCommon/Error.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqEvent";

constexpr size_t DEFAULT_BUFFER_SIZE = 4096;
// What a producer may plausibly want for one event; an answer beyond it is not believed.
constexpr size_t LARGEST_BUFFER_SIZE = 16u << 20;

} // namespace

CZqEvent::CZqEvent(CZqGenTLLib* pGenTL, EVENTSRC_HANDLE hEventSrc, EVENT_TYPE eventType, const char* name)
    : CWorker(name), m_pCZqGenTL(pGenTL), m_hEventSrc(hEventSrc), m_EventType(eventType),
      m_ErrorEvent(nullptr, true, false, nullptr) {
    ZQ_ASSERT(UNIT, m_pCZqGenTL != NULL);
    ZQ_ASSERT(UNIT, hEventSrc != NULL);
    ConvertBadAlloc(UNIT, __LINE__, [this] { RegisterEvent(); });
    m_ReceiveBufferSize = QueryReceiveBufferSize();
}

void CZqEvent::RegisterEvent() {
    if (m_pCZqGenTL->GCRegisterEvent == nullptr)
        throw ProducerError(m_pCZqGenTL, UNIT, __LINE__, GC_ERR_NOT_IMPLEMENTED, "GCRegisterEvent",
                            "\"GCRegisterEvent\" is not implemented.");
    const GC_ERROR result = m_pCZqGenTL->GCRegisterEvent(m_hEventSrc, m_EventType, &m_hEvent);
    // A refusing producer may leave anything in the handle, even that of the event's true owner.
    if (result != GC_ERR_SUCCESS)
        m_hEvent = nullptr;
    if (result == GC_ERR_NOT_IMPLEMENTED)
        throw ProducerError(m_pCZqGenTL, UNIT, __LINE__, result, "GCRegisterEvent",
                            "%d = GCRegisterEvent(0x%p, %d, 0x%p)", result, m_hEventSrc, m_EventType,
                            &m_hEvent);
}

size_t CZqEvent::QueryReceiveBufferSize() const {
    if (m_EventType == EVENT_NEW_BUFFER)
        return sizeof(EVENT_NEW_BUFFER_DATA);
    if (m_hEvent == nullptr)
        return DEFAULT_BUFFER_SIZE;
    uint64_t bufferSize = 0;
    size_t size = sizeof(bufferSize);
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    const EVENT_INFO_CMD command = EVENT_SIZE_MAX;
    const GC_ERROR result =
        CallProducer(m_pCZqGenTL->EventGetInfo, m_hEvent, command, &type, &bufferSize, &size);
    const bool usable = result == GC_ERR_SUCCESS && bufferSize > 0 && bufferSize <= LARGEST_BUFFER_SIZE;
    return usable ? static_cast<size_t>(bufferSize) : DEFAULT_BUFFER_SIZE;
}

CZqEvent::~CZqEvent() {
    Teardown steps;
    steps.Run([this] { CZqEvent::Stop(); });
    steps.Run([this] { UnregisterEvent(); });
}

std::unique_lock<std::recursive_mutex> CZqEvent::LockControl() {
    // The event's own thread may be waited for by who holds the lock; it changes nothing that the lock
    // guards.
    std::unique_lock<std::recursive_mutex> lock(m_ControlMutex, std::defer_lock);
    if (!IsOwnThread())
        lock.lock();
    return lock;
}

void CZqEvent::Start() {
    const std::unique_lock<std::recursive_mutex> control = LockControl();
    if (m_hEvent == nullptr || HasThread())
        return;
    m_ReceiveBuffer = ConvertBadAlloc(
        UNIT, __LINE__, [this] { return std::unique_ptr<uint8_t[]>(new uint8_t[m_ReceiveBufferSize]()); });
    CWorker::Start();
    if (!HasThread())
        m_ReceiveBuffer.reset();
}

void CZqEvent::Stop() {
    const std::unique_lock<std::recursive_mutex> control = LockControl();
    if (!HasThread())
        return;
    RequestStop();
    if (IsOwnThread())
        return;
    // Reported before the join: the producer's last error belongs to the call that just failed.
    Teardown kill;
    kill.Run([this] {
        const GC_ERROR result = CallProducer(m_pCZqGenTL->EventKill, m_hEvent);
        CheckProducer(m_pCZqGenTL, UNIT, __LINE__, result, "EventKill", "%d = EventKill(0x%p)", result,
                      m_hEvent);
    });
    CWorker::Stop();
    m_ReceiveBuffer.reset();
    kill.RethrowFirst();
}

void CZqEvent::UnregisterEvent() {
    if (m_hEvent == nullptr)
        return;
    m_hEvent = nullptr;
    const GC_ERROR result = CallProducer(m_pCZqGenTL->GCUnregisterEvent, m_hEventSrc, m_EventType);
    if (result != GC_ERR_SUCCESS)
        throw ProducerError(m_pCZqGenTL, UNIT, __LINE__, result, "GCUnregisterEvent",
                            "%d = GCUnregisterEvent(0x%p, %d)", result, m_hEventSrc, m_EventType);
}

CZqEvent::LastError CZqEvent::TakeLastError() {
    const GenApi::AutoLock lock(m_ErrorLock);
    m_ErrorEvent.ResetEvent();
    return m_LastError;
}

void CZqEvent::RecordError(GC_ERROR result) {
    const GenApi::AutoLock lock(m_ErrorLock);
    // What the call was made with: who reports it may do so while the event is being stopped.
    m_LastError = {result, m_hEvent, m_ReceiveBuffer.get()};
    m_ErrorEvent.SetEvent();
}

void CZqEvent::Deliver(size_t size) {
    try {
        OnRcvEvent(m_ReceiveBuffer.get(), std::min(size, m_ReceiveBufferSize));
    } catch (abi::__forced_unwind&) {
        throw; // a thread that is being cancelled must unwind to its end
    } catch (...) {
        // What a handler throws is its own event's loss; the next one is still delivered.
    }
}

unsigned int CZqEvent::mWork() {
    while (!IsStopRequest(0)) {
        size_t size = m_ReceiveBufferSize;
        const GC_ERROR result = CallProducer(m_pCZqGenTL->EventGetData, m_hEvent, m_ReceiveBuffer.get(),
                                             &size, m_ReceiveTimeoutMs);
        if (result == GC_ERR_TIMEOUT || result == GC_ERR_ABORT)
            continue;
        if (result == GC_ERR_SUCCESS) {
            Deliver(size);
            continue;
        }
        // Kept: no pause and no end, but for a producer that denies access.
        RecordError(result);
        if (result == GC_ERR_ACCESS_DENIED)
            return 0;
    }
    return 0;
}

} // namespace ZqApi
