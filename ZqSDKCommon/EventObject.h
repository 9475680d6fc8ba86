#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include <pthread.h>
#include <time.h>

#include <ZqApi/Wait.h>

namespace ZqApi {

struct _SZqMultiEventsWaiter;

/// What an event and a waiter for several events have in common: something to lock and to wait on.
struct SZqEventSignal_ {
    /// Throws GenICam::BadAllocException, without text, when the system is out of resources.
    SZqEventSignal_();
    SZqEventSignal_(const SZqEventSignal_&) = delete;
    SZqEventSignal_& operator=(const SZqEventSignal_&) = delete;

    pthread_mutex_t mutex;
    pthread_cond_t cond;

protected:
    ~SZqEventSignal_();
};

/// An event in the manner of Win32: signalled or not, reset by hand or by the wait that takes the signal.
///
/// Any thread may set, reset and wait; the address of the object is the handle for the public wait functions.
/// It must not be destroyed while a thread waits on it: whoever waits keeps it alive.
class CEventObject final : public SZqEventSignal_ {
public:
    /// Attributes and name are stored for a debugger's eyes.
    CEventObject(void* attributes, bool manualReset, bool initialState, const char* name);
    ~CEventObject();

    void SetEvent();
    void ResetEvent();
    /// From now on setting and resetting do nothing; may be repeated.
    void Close();
    bool IsClosing() const { return m_Closing.load() != 0; }

private:
    friend uint32_t WaitForSingleObject(void* handle, unsigned int milliseconds);
    friend class MultiWait;

    /// Takes the signal: true for exactly one taker per signal, for every one while a manual-reset event is
    /// set.
    bool Take();
    uint32_t WaitUnderLock(const timespec* deadline);
    void Link(_SZqMultiEventsWaiter& record);
    void UnlinkUnderLock(_SZqMultiEventsWaiter& record);

    const bool m_ManualReset;
    std::atomic<bool> m_Signalled{false};
    _SZqMultiEventsWaiter* m_FirstWaiter = nullptr;
    _SZqMultiEventsWaiter* m_LastWaiter = nullptr;
    std::atomic<uint32_t> m_Closing{0};
    void* const m_Attributes;
    const char* const m_Name;
};

/// When a wait of `milliseconds` that begins at `now` ends.
///
/// Kept: nanoseconds that sum up to exactly one second are not carried, so the system refuses that deadline
/// and the wait ends at once.
timespec WaitDeadline(timespec now, uint32_t milliseconds);

/// Outcome of a wait for several events. Unlike the 32 bits of the public function it can name any index.
struct WaitResult {
    enum Kind { Signalled, TimedOut, Failed };
    Kind kind;
    /// Of the lowest signalled event, when there is one.
    size_t index;
};

/// Waits for one of the events (`waitAll`: for every one). Null elements are never signalled. Takes the
/// signal of every self-resetting event found signalled, after a wait also when it timed out. TimedOut may
/// come early, when another thread took the signal that ended the wait: wait again for the rest of the time.
/// Allocates nothing for up to eight events; beyond throws GenICam::BadAllocException before anything is
/// registered.
WaitResult WaitMultiple(size_t count, CEventObject* const* events, bool waitAll, uint32_t milliseconds);

} // namespace ZqApi
