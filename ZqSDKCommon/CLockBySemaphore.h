#pragma once

#include <atomic>

#include <pthread.h>

namespace ZqApi {

/// A counting lock of `max` units, all of them held after construction. Any thread.
class CLockBySemaphore {
public:
    /// Throws CZqLinuxErrorException when the system is out of resources.
    explicit CLockBySemaphore(long max);
    ~CLockBySemaphore();
    CLockBySemaphore(const CLockBySemaphore&) = delete;
    CLockBySemaphore& operator=(const CLockBySemaphore&) = delete;

    void Lock() { mLock(1); }
    void LockMaxMinusOne() { mLock(max - 1); }
    /// Waits until a unit is free and takes one, however large `n` is; for 0 and below takes one without
    /// waiting.
    void mLock(long n);

    void Unlock() { mUnlock(1); }
    void UnlockMaxMinusOne() { mUnlock(max - 1); }
    /// Gives up to `n` units back, not more than are held.
    void mUnlock(long n);

private:
    const long max;
    struct {
        pthread_mutex_t mutex;
        pthread_cond_t condition;
    } m_sem;
    std::atomic<long> count;
};

} // namespace ZqApi
