#pragma once

#include <atomic>
#include <cstdint>

#include <pthread.h>

#include "ZqSDKCommon/EventObject.h"

namespace ZqApi {

/// What the body of a thread sees of it.
class IWorker {
public:
    /// True once a stop was requested; waits for the request up to `milliseconds`. Inside the library only 0
    /// is used, other time-outs follow the real-time clock.
    virtual bool IsStopRequest(unsigned int milliseconds) = 0;
    /// The manual-reset event behind it, as a handle for a wait; null once the worker is being destroyed.
    virtual void* GetStopRequestEvent() = 0;
    virtual ~IWorker() = default;
};

/// The base of every thread of the library.
///
/// Start and Stop belong to one controlling thread at a time (several stop each other safely). A concrete
/// class stops in its own destructor, while its mWork still exists. The thread gets no asynchronous signals:
/// they stay with the application's threads.
class CWorker : public IWorker {
public:
    /// `name` is kept as a pointer. The thread's name in the system is `name` without its prefix "ZqApi_TL_",
    /// cut at 15 characters. Throws GenICam::BadAllocException.
    explicit CWorker(const char* name);
    ~CWorker() override;
    CWorker(const CWorker&) = delete;
    CWorker& operator=(const CWorker&) = delete;

    bool IsStopRequest(unsigned int milliseconds) override;
    void* GetStopRequestEvent() override;
    /// Requests the stop and joins the thread, if there is one. On the thread itself it only requests.
    virtual void Stop();

    /// Stops the thread of an earlier start, then starts a new one. Throws nothing: when the system refuses
    /// the thread, HasThread stays false. On the thread itself it only requests the stop.
    void Start();
    /// Sets the stop-request event without waiting for the thread.
    void RequestStop() { m_StopRequest.SetEvent(); }
    /// From the start until the stop, also when the body ended by itself in between.
    bool HasThread() const { return m_Thread.load() != 0 || IsOwnThread(); }
    /// True on the worker's thread.
    bool IsOwnThread() const { return pthread_equal(m_OwnThread.load(), pthread_self()) != 0; }
    /// True while the body runs.
    bool IsRunning() const { return m_Running.load() != 0; }

    /// For the next start: 2 and above is a priority of the round-robin real-time policy, which needs the
    /// right to it; without it the thread runs normally.
    void SetPriority(int32_t priority) { m_Priority = priority; }
    /// After a start with a real-time priority: what the policy's range made of it.
    int32_t GetPriority() const { return m_Priority; }

protected:
    /// The thread's body; its code is discarded. Returns soon after a stop request.
    virtual unsigned int mWork() = 0;

private:
    static void* ThreadEntry(void* worker);
    void ThreadStart();
    void SetOwnName() const;
    void ClampPriority();
    void ApplyPriority() const;

    const char* const m_Name;
    CEventObject m_StopRequest;
    std::atomic<uint32_t> m_Running{0};
    std::atomic<int32_t> m_Priority{1};
    std::atomic<pthread_t> m_Thread{0};
    // Stored by the thread itself: what pthread_create writes may come after the thread has begun.
    std::atomic<pthread_t> m_OwnThread{0};
    pthread_mutex_t m_RunMutex = PTHREAD_MUTEX_INITIALIZER;
    // One stop at a time; never taken by the thread itself.
    pthread_mutex_t m_ControlMutex = PTHREAD_MUTEX_INITIALIZER;
};

} // namespace ZqApi
