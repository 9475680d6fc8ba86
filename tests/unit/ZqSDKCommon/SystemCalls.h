#pragma once

#include <pthread.h>
#include <time.h>

#include <cstdint>
#include <functional>

/// System calls of the test binary that can be counted and told to fail.
namespace ZqTest {

enum class Call {
    MutexInit,
    CondInit,
    CondDestroy,
    CondSignal,
    CondWait,
    CondTimedWait,
    ThreadCreate,
    SetSchedParam,
    SetSchedPrio,
    SetScheduler,
    Fdopen,
    Last = Fdopen
};

/// While it lives, the next call of that kind on this thread fails with `error`. A wait first lets go of its
/// mutex and runs `meanwhile`.
class SystemFault {
public:
    SystemFault(Call call, int error, std::function<void()> meanwhile = {});
    SystemFault(const SystemFault&) = delete;
    SystemFault& operator=(const SystemFault&) = delete;
    ~SystemFault();
};

/// Calls so far, on all threads.
uint64_t CallCount(Call call);

/// What the latest pthread_setschedparam (policy) or pthread_setschedprio (policy -1) asked for.
struct SchedulingRequest {
    bool ownThread;
    int policy;
    int priority;
};
SchedulingRequest LatestSchedulingRequest();

/// While it lives, the real-time clock stands still on this thread.
class FrozenClock {
public:
    explicit FrozenClock(timespec now);
    FrozenClock(const FrozenClock&) = delete;
    FrozenClock& operator=(const FrozenClock&) = delete;
    ~FrozenClock();
};

} // namespace ZqTest
