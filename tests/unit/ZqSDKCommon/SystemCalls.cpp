#include "tests/unit/ZqSDKCommon/SystemCalls.h"

#include <dlfcn.h>
#include <sched.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <mutex>
#include <optional>

namespace ZqTest {

namespace {

struct Fault {
    int error = 0;
    std::function<void()> meanwhile;
};

constexpr size_t calls = static_cast<size_t>(Call::Last) + 1;

thread_local std::array<std::optional<Fault>, calls>* faults = nullptr;
thread_local std::optional<timespec> frozenNow;
std::array<std::atomic<uint64_t>, calls> counts{};
std::mutex requestMutex;
SchedulingRequest latestRequest{};

std::optional<Fault> Enter(Call call) {
    const size_t index = static_cast<size_t>(call);
    counts[index].fetch_add(1);
    if (faults == nullptr || !(*faults)[index])
        return std::nullopt;
    std::optional<Fault> fault = std::move((*faults)[index]);
    (*faults)[index].reset();
    return fault;
}

/// The condition variable of the C library exists in two versions, and dlsym may find the old one.
void* Real(const char* name, bool isCondition = false) {
#if defined(__x86_64__) && !defined(__SANITIZE_THREAD__)
    if (isCondition)
        return dlvsym(RTLD_NEXT, name, "GLIBC_2.3.2");
#endif
    (void)isCondition;
    return dlsym(RTLD_NEXT, name);
}

int FailWait(const Fault& fault, pthread_mutex_t* mutex) {
    pthread_mutex_unlock(mutex);
    if (fault.meanwhile)
        fault.meanwhile();
    pthread_mutex_lock(mutex);
    return fault.error;
}

void Note(pthread_t thread, int policy, int priority) {
    const std::lock_guard<std::mutex> lock(requestMutex);
    latestRequest = {pthread_equal(thread, pthread_self()) != 0, policy, priority};
}

} // namespace

SystemFault::SystemFault(Call call, int error, std::function<void()> meanwhile) {
    if (faults == nullptr) {
        static thread_local std::array<std::optional<Fault>, calls> storage;
        faults = &storage;
    }
    (*faults)[static_cast<size_t>(call)] = Fault{error, std::move(meanwhile)};
}

SystemFault::~SystemFault() {
    for (std::optional<Fault>& fault : *faults)
        fault.reset();
}

uint64_t CallCount(Call call) {
    return counts[static_cast<size_t>(call)].load();
}

SchedulingRequest LatestSchedulingRequest() {
    const std::lock_guard<std::mutex> lock(requestMutex);
    return latestRequest;
}

FrozenClock::FrozenClock(timespec now) {
    frozenNow = now;
}

FrozenClock::~FrozenClock() {
    frozenNow.reset();
}

} // namespace ZqTest

using ZqTest::Call;

extern "C" {

int pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes) noexcept {
    if (const auto fault = ZqTest::Enter(Call::MutexInit))
        return fault->error;
    static const auto real =
        reinterpret_cast<decltype(&pthread_mutex_init)>(ZqTest::Real("pthread_mutex_init"));
    return real(mutex, attributes);
}

int pthread_cond_init(pthread_cond_t* cond, const pthread_condattr_t* attributes) noexcept {
    if (const auto fault = ZqTest::Enter(Call::CondInit))
        return fault->error;
    static const auto real =
        reinterpret_cast<decltype(&pthread_cond_init)>(ZqTest::Real("pthread_cond_init", true));
    return real(cond, attributes);
}

int pthread_cond_destroy(pthread_cond_t* cond) noexcept {
    ZqTest::Enter(Call::CondDestroy);
    static const auto real =
        reinterpret_cast<decltype(&pthread_cond_destroy)>(ZqTest::Real("pthread_cond_destroy", true));
    return real(cond);
}

int pthread_cond_signal(pthread_cond_t* cond) noexcept {
    ZqTest::Enter(Call::CondSignal);
    static const auto real =
        reinterpret_cast<decltype(&pthread_cond_signal)>(ZqTest::Real("pthread_cond_signal", true));
    return real(cond);
}

int pthread_cond_wait(pthread_cond_t* cond, pthread_mutex_t* mutex) {
    if (const auto fault = ZqTest::Enter(Call::CondWait))
        return ZqTest::FailWait(*fault, mutex);
    static const auto real =
        reinterpret_cast<decltype(&pthread_cond_wait)>(ZqTest::Real("pthread_cond_wait", true));
    return real(cond, mutex);
}

int pthread_cond_timedwait(pthread_cond_t* cond, pthread_mutex_t* mutex, const timespec* deadline) {
    if (const auto fault = ZqTest::Enter(Call::CondTimedWait))
        return ZqTest::FailWait(*fault, mutex);
    static const auto real =
        reinterpret_cast<decltype(&pthread_cond_timedwait)>(ZqTest::Real("pthread_cond_timedwait", true));
    return real(cond, mutex, deadline);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*entry)(void*),
                   void* argument) noexcept {
    if (const auto fault = ZqTest::Enter(Call::ThreadCreate)) {
        *thread = ~pthread_t{0};
        return fault->error;
    }
    static const auto real = reinterpret_cast<decltype(&pthread_create)>(ZqTest::Real("pthread_create"));
    return real(thread, attributes, entry, argument);
}

int pthread_setschedparam(pthread_t thread, int policy, const sched_param* parameter) noexcept {
    ZqTest::Note(thread, policy, parameter->sched_priority);
    ZqTest::Enter(Call::SetSchedParam);
    return EPERM;
}

int pthread_setschedprio(pthread_t thread, int priority) noexcept {
    ZqTest::Note(thread, -1, priority);
    ZqTest::Enter(Call::SetSchedPrio);
    return 0;
}

int sched_setscheduler(pid_t, int, const sched_param*) noexcept {
    ZqTest::Enter(Call::SetScheduler);
    return 0;
}

int clock_gettime(clockid_t clock, timespec* now) noexcept {
    if (clock == CLOCK_REALTIME && ZqTest::frozenNow) {
        *now = *ZqTest::frozenNow;
        return 0;
    }
    static const auto real = reinterpret_cast<decltype(&clock_gettime)>(ZqTest::Real("clock_gettime"));
    return real(clock, now);
}

FILE* fdopen(int descriptor, const char* mode) noexcept {
    if (const auto fault = ZqTest::Enter(Call::Fdopen)) {
        errno = fault->error;
        return nullptr;
    }
    static const auto real = reinterpret_cast<decltype(&fdopen)>(ZqTest::Real("fdopen"));
    return real(descriptor, mode);
}

} // extern "C"
