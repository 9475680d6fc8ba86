#pragma once

#include <memory>
#include <mutex>

#include <ZqApi/Types.h>

#include "ZqGenTLCommon/ZqGenTLLib.h"
#include "ZqSDKCommon/EventObject.h"
#include "ZqSDKCommon/Worker.h"

namespace ZqApi {

/// A thread that waits on one event of the producer and hands what it receives to its subclass.
///
/// Constructed registered, not started. Start, Stop and destruction belong to the owning module's thread;
/// OnRcvEvent runs on the event's own thread. Every concrete class is final and stops in its destructor,
/// while its OnRcvEvent still exists.
class CZqEvent : public CWorker {
public:
    /// Registers the event. Throws CZqGenTLErrorException when the producer does not implement it (-1003,
    /// function name "GCRegisterEvent"); after any other refusal the event exists but never starts.
    CZqEvent(CZqGenTLLib* pGenTL, EVENTSRC_HANDLE hEventSrc, EVENT_TYPE eventType, const char* name);
    ~CZqEvent() override;

    void Start();
    /// Kills the producer's wait and joins the thread. Throws CZqGenTLErrorException, after the join, when
    /// the producer could not be told; the thread then ended by its own time-out. On the event's own thread
    /// it only asks for the stop.
    void Stop() override;
    void UnregisterEvent();

    /// A failed EventGetData: its result, and what it was called with.
    struct LastError {
        GC_ERROR code = GC_ERR_SUCCESS;
        EVENT_HANDLE hEvent = nullptr;
        void* pBuffer = nullptr;
    };

    /// Set whenever waiting failed; manual reset. Taking the last error resets it. Any thread.
    CEventObject& GetErrorEvent() { return m_ErrorEvent; }
    LastError TakeLastError();

    EVENT_HANDLE GetEventHandle() const { return m_hEvent; }
    void* GetReceiveBuffer() const { return m_ReceiveBuffer.get(); }
    size_t GetReceiveBufferSize() const { return m_ReceiveBufferSize; }
    uint64_t GetReceiveTimeout() const { return m_ReceiveTimeoutMs; }

protected:
    unsigned int mWork() override;
    virtual void OnRcvEvent(void* pBuffer, size_t iSize) = 0;

    CZqGenTLLib* const m_pCZqGenTL;

private:
    /// Excludes other starts and stops; nobody on the event's own thread.
    std::unique_lock<std::recursive_mutex> LockControl();
    void RegisterEvent();
    size_t QueryReceiveBufferSize() const;
    void Deliver(size_t size);
    void RecordError(GC_ERROR result);

    const EVENTSRC_HANDLE m_hEventSrc;
    EVENT_HANDLE m_hEvent = nullptr;
    const EVENT_TYPE m_EventType;
    size_t m_ReceiveBufferSize = 0;
    const uint64_t m_ReceiveTimeoutMs = 500;
    std::unique_ptr<uint8_t[]> m_ReceiveBuffer;
    // Recursive: starting a worker stops an earlier thread first.
    std::recursive_mutex m_ControlMutex;
    GenApi::CLock m_ErrorLock;
    LastError m_LastError;
    CEventObject m_ErrorEvent;
};

} // namespace ZqApi
