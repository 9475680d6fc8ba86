#include "tests/faults/Pthreads.h"

#include <dlfcn.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>

namespace ZqTest {

namespace {

std::atomic<uint64_t> untilFailure{0};
std::atomic<bool> hasFailed{false};
thread_local int64_t heldLocks = 0;

bool MustFail() {
    uint64_t left = untilFailure.load();
    while (left != 0 && !untilFailure.compare_exchange_weak(left, left - 1)) {
    }
    if (left == 1)
        hasFailed = true;
    return left == 1;
}

template <class Function>
Function* Real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

int Locked(int result) {
    heldLocks += result == 0 ? 1 : 0;
    return result;
}

int Unlocked(int result) {
    heldLocks -= result == 0 ? 1 : 0;
    return result;
}

} // namespace

FailingThread::FailingThread(uint64_t n) {
    hasFailed = false;
    untilFailure = n;
}

FailingThread::~FailingThread() {
    untilFailure = 0;
}

bool FailingThread::Failed() const {
    return hasFailed;
}

int64_t HeldLocks() {
    return heldLocks;
}

} // namespace ZqTest

extern "C" {

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*entry)(void*),
                   void* argument) noexcept {
    static const auto real = ZqTest::Real<decltype(pthread_create)>("pthread_create");
    if (!ZqTest::MustFail())
        return real(thread, attributes, entry, argument);
    *thread = ~pthread_t{0};
    return EAGAIN;
}

int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
    static const auto real = ZqTest::Real<decltype(pthread_mutex_lock)>("pthread_mutex_lock");
    return ZqTest::Locked(real(mutex));
}

int pthread_mutex_trylock(pthread_mutex_t* mutex) noexcept {
    static const auto real = ZqTest::Real<decltype(pthread_mutex_trylock)>("pthread_mutex_trylock");
    return ZqTest::Locked(real(mutex));
}

int pthread_mutex_unlock(pthread_mutex_t* mutex) noexcept {
    static const auto real = ZqTest::Real<decltype(pthread_mutex_unlock)>("pthread_mutex_unlock");
    return ZqTest::Unlocked(real(mutex));
}

int pthread_rwlock_rdlock(pthread_rwlock_t* lock) noexcept {
    static const auto real = ZqTest::Real<decltype(pthread_rwlock_rdlock)>("pthread_rwlock_rdlock");
    return ZqTest::Locked(real(lock));
}

int pthread_rwlock_wrlock(pthread_rwlock_t* lock) noexcept {
    static const auto real = ZqTest::Real<decltype(pthread_rwlock_wrlock)>("pthread_rwlock_wrlock");
    return ZqTest::Locked(real(lock));
}

int pthread_rwlock_unlock(pthread_rwlock_t* lock) noexcept {
    static const auto real = ZqTest::Real<decltype(pthread_rwlock_unlock)>("pthread_rwlock_unlock");
    return ZqTest::Unlocked(real(lock));
}

} // extern "C"
