#pragma once

#include "producer/sim/Failure.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace zqgentl {

/// The waiting side of an event: time-out, kills that are counted, and the end of the registration. Every
/// member is called under the lock of the queue that the gate belongs to.
class EventGate {
public:
    using Lock = std::unique_lock<std::mutex>;

    /// Waits until hasData() holds. A kill or the end of the registration leaves with GC_ERR_ABORT, before
    /// any data; each kill ends one wait, now or later. Time runs out with GC_ERR_TIMEOUT.
    template <class HasData>
    void Await(Lock& lock, uint64_t timeoutMs, HasData hasData);

    void Kill();
    void Close();
    /// One entry has come; NotifyAll: several.
    void NotifyData();
    void NotifyAll();

    [[nodiscard]] bool Closed() const noexcept { return m_closed; }

private:
    // Longer waits than this are endless; adding more to a time point could overflow.
    static constexpr uint64_t endlessMs = uint64_t{1} << 40;

    template <class HasData>
    [[nodiscard]] bool Passable(HasData& hasData);

    std::condition_variable m_wake;
    uint64_t m_kills = 0;
    unsigned m_waiting = 0;
    bool m_closed = false;
};

template <class HasData>
bool EventGate::Passable(HasData& hasData) {
    return m_kills > 0 || m_closed || hasData();
}

template <class HasData>
void EventGate::Await(Lock& lock, uint64_t timeoutMs, HasData hasData) {
    if (!Passable(hasData) && timeoutMs > 0) {
        ++m_waiting;
        const auto ready = [&] { return Passable(hasData); };
        if (timeoutMs >= endlessMs)
            m_wake.wait(lock, ready);
        else
            m_wake.wait_until(lock, std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs),
                              ready);
        --m_waiting;
    }
    if (m_closed)
        throw Failure(GenTL::GC_ERR_ABORT, "the event is no longer registered");
    if (m_kills > 0) {
        --m_kills;
        throw Failure(GenTL::GC_ERR_ABORT, "the wait was ended by EventKill");
    }
    if (!hasData())
        throw Failure(GenTL::GC_ERR_TIMEOUT, "no event within " + std::to_string(timeoutMs) + " ms");
}

inline void EventGate::Kill() {
    ++m_kills;
    m_wake.notify_all();
}

inline void EventGate::Close() {
    m_closed = true;
    m_wake.notify_all();
}

inline void EventGate::NotifyData() {
    if (m_waiting > 0)
        m_wake.notify_one();
}

inline void EventGate::NotifyAll() {
    m_wake.notify_all();
}

} // namespace zqgentl
