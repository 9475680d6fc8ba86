#pragma once

#include <pthread.h>

namespace ZqApi {

/// Holds a POSIX mutex for a scope.
class MutexLock {
public:
    explicit MutexLock(pthread_mutex_t& mutex) : m_Mutex(mutex) { pthread_mutex_lock(&m_Mutex); }
    ~MutexLock() { pthread_mutex_unlock(&m_Mutex); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

private:
    pthread_mutex_t& m_Mutex;
};

} // namespace ZqApi
