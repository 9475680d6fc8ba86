#pragma once

#include <Base/GCTypes.h>

#include <mutex>

namespace GENAPI_NAMESPACE {

/// A recursive lock; any thread. Every operation of a node map takes the map's lock itself.
class GENAPI_API CLock {
public:
    CLock();
    ~CLock();
    CLock(const CLock&) = delete;
    CLock& operator=(const CLock&) = delete;

    /// Takes the lock if that needs no waiting; true when taken.
    bool TryLock();
    void Lock();
    void Unlock();

private:
    std::recursive_mutex m_mutex;
};

/// Holds a lock for a scope.
class AutoLock {
public:
    explicit AutoLock(CLock& lock) : m_lock(lock) { m_lock.Lock(); }
    ~AutoLock() { m_lock.Unlock(); }
    AutoLock(const AutoLock&) = delete;
    AutoLock& operator=(const AutoLock&) = delete;

private:
    CLock& m_lock;
};

} // namespace GENAPI_NAMESPACE
