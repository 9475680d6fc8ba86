#pragma once

#include <array>
#include <memory>

#include "ZqSDKCommon/EventObject.h"

namespace ZqApi {

class SZqMultiWaitSignal;

/// One event that a wait for several waits for; lives in the waiter's frame and hangs in the event's list
/// while the wait blocks.
struct _SZqMultiEventsWaiter {
    CEventObject* event = nullptr; // null: never signalled
    SZqMultiWaitSignal* waiter = nullptr;
    _SZqMultiEventsWaiter* previous = nullptr;
    _SZqMultiEventsWaiter* next = nullptr;
    bool seen = false; // guarded by the waiter's mutex
    bool linked = false;
};

/// What the blocked thread sleeps on.
class SZqMultiWaitSignal final : public SZqEventSignal_ {
public:
    SZqMultiWaitSignal(size_t count, bool waitAll) : m_Unseen(count), m_WaitAll(waitAll) {}

    /// An event was set: wakes the thread, with wait-all only when no event is left that was never seen set.
    void Notify(_SZqMultiEventsWaiter& record);
    void MarkSeen(_SZqMultiEventsWaiter& record);

private:
    size_t m_Unseen;
    const bool m_WaitAll;
};

/// One wait for several events.
class MultiWait {
public:
    /// `Handle` is CEventObject or void.
    template <class Handle>
    MultiWait(size_t count, Handle* const* handles, bool waitAll) : m_Count(count), m_WaitAll(waitAll) {
        Allocate();
        for (size_t index = 0; index < count; ++index)
            m_Records[index].event = static_cast<CEventObject*>(handles[index]);
    }
    MultiWait(const MultiWait&) = delete;
    MultiWait& operator=(const MultiWait&) = delete;

    WaitResult Run(uint32_t milliseconds);

private:
    /// How many events are left, and the lowest of those that are not.
    struct Tally {
        size_t left;
        size_t index;
        void Count(size_t at);
    };

    /// Takes the records out of the events' lists before the signal goes that they point to, also when the
    /// wait is cut off by the cancellation of its thread.
    class Registration;

    void Allocate();
    WaitResult Poll();
    WaitResult Block(uint32_t milliseconds);
    void Sleep(SZqMultiWaitSignal& signal, const timespec* deadline);
    /// Looks at every event; with a signal also notes what it saw there.
    Tally Scan(SZqMultiWaitSignal* signal);
    Tally TakeAll();
    bool TakeUnderLock(size_t index);
    bool IsSatisfied(const Tally& tally) const;
    WaitResult ResultOf(const Tally& tally) const;

    const size_t m_Count;
    const bool m_WaitAll;
    std::array<_SZqMultiEventsWaiter, 8> m_Few;
    std::unique_ptr<_SZqMultiEventsWaiter[]> m_Many;
    _SZqMultiEventsWaiter* m_Records = nullptr;
};

} // namespace ZqApi
