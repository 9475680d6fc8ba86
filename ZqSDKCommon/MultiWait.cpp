#include "ZqSDKCommon/MultiWait.h"

#include <algorithm>

#include "ZqSDKCommon/Error.h"
#include "ZqSDKCommon/MutexLock.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqSDKCommon/EventObject";

template <class Handle>
WaitResult WaitFor(size_t count, Handle* const* handles, bool waitAll, uint32_t milliseconds) {
    if (count == 0 || handles == nullptr)
        return {WaitResult::Failed, 0};
    return MultiWait(count, handles, waitAll).Run(milliseconds);
}

} // namespace

void SZqMultiWaitSignal::Notify(_SZqMultiEventsWaiter& record) {
    const MutexLock lock(mutex);
    MarkSeen(record);
    if (!m_WaitAll || m_Unseen == 0)
        pthread_cond_signal(&cond);
}

void SZqMultiWaitSignal::MarkSeen(_SZqMultiEventsWaiter& record) {
    if (record.seen)
        return;
    record.seen = true;
    --m_Unseen;
}

void MultiWait::Tally::Count(size_t at) {
    --left;
    index = std::min(index, at);
}

void MultiWait::Allocate() {
    m_Records = m_Few.data();
    if (m_Count <= m_Few.size())
        return;
    try {
        m_Many.reset(new _SZqMultiEventsWaiter[m_Count]);
    } catch (const std::bad_alloc&) {
        throw ReportError<GenICam::BadAllocException>(UNIT, __LINE__, "");
    }
    m_Records = m_Many.get();
}

class MultiWait::Registration {
public:
    Registration(MultiWait& wait, SZqMultiWaitSignal& signal) : m_Wait(wait) {
        for (size_t index = 0; index < m_Wait.m_Count; ++index) {
            _SZqMultiEventsWaiter& record = m_Wait.m_Records[index];
            record.waiter = &signal;
            if (record.event != nullptr)
                record.event->Link(record);
        }
    }
    ~Registration() {
        for (size_t index = 0; index < m_Wait.m_Count; ++index) {
            _SZqMultiEventsWaiter& record = m_Wait.m_Records[index];
            if (!record.linked)
                continue;
            const MutexLock lock(record.event->mutex);
            record.event->UnlinkUnderLock(record);
        }
    }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;

private:
    MultiWait& m_Wait;
};

WaitResult MultiWait::Run(uint32_t milliseconds) {
    return milliseconds == 0 ? Poll() : Block(milliseconds);
}

WaitResult MultiWait::Poll() {
    if (!IsSatisfied(Scan(nullptr)))
        return {WaitResult::TimedOut, 0};
    const Tally tally = TakeAll();
    if (IsSatisfied(tally))
        return ResultOf(tally);
    // Another thread was faster with one of them: a poll that fails leaves the others signalled.
    for (size_t index = 0; index < m_Count; ++index)
        if (m_Records[index].seen && !m_Records[index].event->m_ManualReset)
            m_Records[index].event->SetEvent();
    return {WaitResult::TimedOut, 0};
}

WaitResult MultiWait::Block(uint32_t milliseconds) {
    timespec deadline{};
    if (milliseconds != INFINITE) {
        clock_gettime(CLOCK_REALTIME, &deadline);
        deadline = WaitDeadline(deadline, milliseconds);
    }
    SZqMultiWaitSignal signal(m_Count, m_WaitAll);
    const Registration registration(*this, signal);
    Sleep(signal, milliseconds != INFINITE ? &deadline : nullptr);
    return ResultOf(TakeAll());
}

void MultiWait::Sleep(SZqMultiWaitSignal& signal, const timespec* deadline) {
    // The lock is held from each scan to the sleep behind it, and who sets an event takes it afterwards: no
    // wake-up falls in between.
    const MutexLock lock(signal.mutex);
    for (;;) {
        if (IsSatisfied(Scan(&signal)))
            return;
        const int error = deadline != nullptr ? pthread_cond_timedwait(&signal.cond, &signal.mutex, deadline)
                                              : pthread_cond_wait(&signal.cond, &signal.mutex);
        if (error != 0)
            return;
    }
}

MultiWait::Tally MultiWait::Scan(SZqMultiWaitSignal* signal) {
    Tally tally{m_Count, m_Count};
    for (size_t index = 0; index < m_Count; ++index) {
        _SZqMultiEventsWaiter& record = m_Records[index];
        if (record.event == nullptr || !record.event->m_Signalled.load())
            continue;
        tally.Count(index);
        if (signal != nullptr)
            signal->MarkSeen(record);
    }
    return tally;
}

MultiWait::Tally MultiWait::TakeAll() {
    Tally tally{m_Count, m_Count};
    for (size_t index = 0; index < m_Count; ++index) {
        _SZqMultiEventsWaiter& record = m_Records[index];
        if (record.event == nullptr)
            continue;
        const MutexLock lock(record.event->mutex);
        record.seen = TakeUnderLock(index);
        if (record.seen)
            tally.Count(index);
        if (record.linked)
            record.event->UnlinkUnderLock(record);
    }
    return tally;
}

bool MultiWait::TakeUnderLock(size_t index) {
    CEventObject* const event = m_Records[index].event;
    if (event->Take())
        return true;
    // An event that stands in the array twice is taken once and counts twice.
    return m_WaitAll &&
           std::any_of(m_Records, m_Records + index, [event](const _SZqMultiEventsWaiter& earlier) {
               return earlier.event == event && earlier.seen;
           });
}

bool MultiWait::IsSatisfied(const Tally& tally) const {
    return tally.left == 0 || (!m_WaitAll && tally.left < m_Count);
}

WaitResult MultiWait::ResultOf(const Tally& tally) const {
    if (!IsSatisfied(tally))
        return {WaitResult::TimedOut, 0};
    return {WaitResult::Signalled, tally.index};
}

WaitResult WaitMultiple(size_t count, CEventObject* const* events, bool waitAll, uint32_t milliseconds) {
    return WaitFor(count, events, waitAll, milliseconds);
}

uint32_t WaitForMultipleObjects(unsigned int count, void* const* handles, bool waitAll,
                                unsigned int milliseconds) {
    const WaitResult result = WaitFor(count, handles, waitAll, milliseconds);
    switch (result.kind) {
    case WaitResult::Signalled:
        return WAIT_OBJECT_0 + static_cast<uint32_t>(result.index);
    case WaitResult::TimedOut:
        return WAIT_TIMEOUT;
    default:
        return WAIT_FAILED;
    }
}

} // namespace ZqApi
