#include "ZqSDKCommon/EventObject.h"

#include <cerrno>

#include "ZqSDKCommon/Error.h"
#include "ZqSDKCommon/MultiWait.h"
#include "ZqSDKCommon/MutexLock.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqSDKCommon/EventObject";
constexpr long NANOSECONDS_PER_SECOND = 1000000000;
constexpr long NANOSECONDS_PER_MILLISECOND = 1000000;

} // namespace

SZqEventSignal_::SZqEventSignal_() {
    if (pthread_cond_init(&cond, nullptr) != 0)
        throw ReportError<GenICam::BadAllocException>(UNIT, __LINE__, "");
    if (pthread_mutex_init(&mutex, nullptr) != 0) {
        pthread_cond_destroy(&cond);
        throw ReportError<GenICam::BadAllocException>(UNIT, __LINE__, "");
    }
}

SZqEventSignal_::~SZqEventSignal_() {
    pthread_cond_destroy(&cond);
    pthread_mutex_destroy(&mutex);
}

CEventObject::CEventObject(void* attributes, bool manualReset, bool initialState, const char* name)
    : m_ManualReset(manualReset), m_Attributes(attributes), m_Name(name) {
    if (initialState)
        SetEvent();
}

CEventObject::~CEventObject() {
    Close();
}

void CEventObject::Close() {
    const MutexLock lock(mutex);
    m_Closing.store(1);
}

void CEventObject::SetEvent() {
    if (IsClosing())
        return;
    const MutexLock lock(mutex);
    m_Signalled.store(true);
    for (_SZqMultiEventsWaiter* record = m_FirstWaiter; record != nullptr; record = record->next)
        record->waiter->Notify(*record);
    // One waiter for this event alone, even when it is a manual-reset event with several.
    pthread_cond_signal(&cond);
}

void CEventObject::ResetEvent() {
    if (IsClosing())
        return;
    const MutexLock lock(mutex);
    m_Signalled.store(false);
}

bool CEventObject::Take() {
    if (!m_Signalled.load())
        return false;
    return m_ManualReset || m_Signalled.exchange(false);
}

uint32_t CEventObject::WaitUnderLock(const timespec* deadline) {
    for (;;) {
        const int error = deadline != nullptr ? pthread_cond_timedwait(&cond, &mutex, deadline)
                                              : pthread_cond_wait(&cond, &mutex);
        const bool taken = Take();
        if (error == 0 && !taken)
            continue;
        if (error == 0)
            return WAIT_OBJECT_0;
        // Kept: a signal that came too late to be reported is taken all the same.
        return taken && error != ETIMEDOUT ? WAIT_FAILED : WAIT_TIMEOUT;
    }
}

void CEventObject::Link(_SZqMultiEventsWaiter& record) {
    const MutexLock lock(mutex);
    record.previous = m_LastWaiter;
    record.next = nullptr;
    (m_LastWaiter != nullptr ? m_LastWaiter->next : m_FirstWaiter) = &record;
    m_LastWaiter = &record;
    record.linked = true;
}

void CEventObject::UnlinkUnderLock(_SZqMultiEventsWaiter& record) {
    (record.previous != nullptr ? record.previous->next : m_FirstWaiter) = record.next;
    (record.next != nullptr ? record.next->previous : m_LastWaiter) = record.previous;
    record.linked = false;
}

timespec WaitDeadline(timespec now, uint32_t milliseconds) {
    const uint32_t seconds = milliseconds / 1000;
    now.tv_sec += seconds;
    now.tv_nsec += static_cast<long>(milliseconds - 1000 * seconds) * NANOSECONDS_PER_MILLISECOND;
    if (now.tv_nsec > NANOSECONDS_PER_SECOND) {
        now.tv_sec += now.tv_nsec / NANOSECONDS_PER_SECOND;
        now.tv_nsec %= NANOSECONDS_PER_SECOND;
    }
    return now;
}

uint32_t WaitForSingleObject(void* handle, unsigned int milliseconds) {
    if (handle == nullptr)
        return WAIT_FAILED;
    CEventObject& event = *static_cast<CEventObject*>(handle);
    if (event.Take())
        return WAIT_OBJECT_0;
    if (milliseconds == 0) {
        if (pthread_mutex_trylock(&event.mutex) != 0)
            return WAIT_TIMEOUT;
        const bool taken = event.Take();
        pthread_mutex_unlock(&event.mutex);
        return taken ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
    }
    // Kept: what is signalled between the test above and the lock below is not looked at before the wait.
    if (milliseconds == INFINITE) {
        const MutexLock lock(event.mutex);
        return event.WaitUnderLock(nullptr);
    }
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const timespec deadline = WaitDeadline(now, milliseconds);
    const MutexLock lock(event.mutex);
    return event.WaitUnderLock(&deadline);
}

} // namespace ZqApi
