#include "ZqSDKCommon/EventObject.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <thread>
#include <vector>

#include <Base/GCException.h>

#include "tests/unit/ZqSDKCommon/SystemCalls.h"

using namespace ZqApi;
using ZqTest::Call;
using ZqTest::SystemFault;

namespace {

constexpr bool MANUAL = true;
constexpr bool AUTOMATIC = false;

int64_t MillisecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start)
        .count();
}

} // namespace

TEST(EventObject, ManualResetSatisfiesEveryWaitUntilReset) {
    CEventObject event(nullptr, MANUAL, false, nullptr);
    event.SetEvent();
    for (int wait = 0; wait < 3; ++wait) {
        EXPECT_EQ(WaitForSingleObject(&event, 0), WAIT_OBJECT_0);
        EXPECT_EQ(WaitForSingleObject(&event, INFINITE), WAIT_OBJECT_0);
    }
    event.ResetEvent();
    EXPECT_EQ(WaitForSingleObject(&event, 0), WAIT_TIMEOUT);
}

TEST(EventObject, AutomaticResetGivesASignalToOneWait) {
    CEventObject event(nullptr, AUTOMATIC, false, nullptr);
    EXPECT_EQ(WaitForSingleObject(&event, 0), 0x102u);
    event.SetEvent();
    event.SetEvent();
    EXPECT_EQ(WaitForSingleObject(&event, 0), 0u);
    EXPECT_EQ(WaitForSingleObject(&event, 0), 0x102u);
}

TEST(EventObject, AutomaticResetLetsOneOfTwoWaitersThrough) {
    CEventObject event(nullptr, AUTOMATIC, true, nullptr);
    std::atomic<int> taken{0};
    std::atomic<int> timedOut{0};
    const auto wait = [&] { ++(WaitForSingleObject(&event, 50) == WAIT_OBJECT_0 ? taken : timedOut); };
    std::thread one(wait);
    std::thread other(wait);
    one.join();
    other.join();
    EXPECT_EQ(taken, 1);
    EXPECT_EQ(timedOut, 1);
}

TEST(EventObject, InitialStateSignalled) {
    CEventObject event(nullptr, AUTOMATIC, true, "name");
    EXPECT_EQ(WaitForSingleObject(&event, 0), WAIT_OBJECT_0);
}

TEST(EventObject, BlockedWaiterWakes) {
    for (const uint32_t timeout : {INFINITE, 60000u}) {
        CEventObject event(nullptr, AUTOMATIC, false, nullptr);
        const uint64_t waitsBefore =
            ZqTest::CallCount(Call::CondWait) + ZqTest::CallCount(Call::CondTimedWait);
        std::thread setter([&] {
            while (ZqTest::CallCount(Call::CondWait) + ZqTest::CallCount(Call::CondTimedWait) == waitsBefore)
                std::this_thread::yield();
            event.SetEvent();
        });
        EXPECT_EQ(WaitForSingleObject(&event, timeout), WAIT_OBJECT_0);
        setter.join();
        EXPECT_EQ(WaitForSingleObject(&event, 0), WAIT_TIMEOUT);
    }
}

TEST(EventObject, NullHandleFails) {
    EXPECT_EQ(WaitForSingleObject(nullptr, INFINITE), 0xFFFFFFFFu);
}

TEST(EventObject, WaitTakesItsTime) {
    CEventObject event(nullptr, AUTOMATIC, false, nullptr);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(WaitForSingleObject(&event, 30), WAIT_TIMEOUT);
    EXPECT_GE(MillisecondsSince(start), 29);
}

TEST(EventObject, ClosedIgnoresSetAndReset) {
    CEventObject unsignalled(nullptr, MANUAL, false, nullptr);
    unsignalled.Close();
    unsignalled.Close();
    EXPECT_TRUE(unsignalled.IsClosing());
    unsignalled.SetEvent();
    EXPECT_EQ(WaitForSingleObject(&unsignalled, 0), WAIT_TIMEOUT);

    CEventObject signalled(nullptr, MANUAL, true, nullptr);
    signalled.Close();
    signalled.ResetEvent();
    EXPECT_EQ(WaitForSingleObject(&signalled, 0), WAIT_OBJECT_0);
}

// Four threads poll. Each signal is set after the last one was taken and every thread has looked again, so
// that none merges with another and no second taker stays unnoticed.
TEST(EventObject, LookAtABusyEventDoesNotWait) {
    CEventObject event(nullptr, MANUAL, false, nullptr);
    pthread_mutex_lock(&event.mutex);
    std::thread([&] { EXPECT_EQ(WaitForSingleObject(&event, 0), WAIT_TIMEOUT); }).join();
    pthread_mutex_unlock(&event.mutex);
}

TEST(EventObject, EverySignalIsTakenOnce) {
    // So many are looked for by every thread before the next comes: to wait for all of them takes minutes on
    // a machine that has other things to do. A second taker of any of the others shows in the sum.
    constexpr int watched = 2000;
#ifdef ZQAPI_SLOWED_DOWN
    constexpr int signals = watched;
#else
    constexpr int signals = 100000;
#endif
    CEventObject event(nullptr, AUTOMATIC, false, nullptr);
    std::atomic<int> taken{0};
    std::atomic<bool> done{false};
    std::array<std::atomic<uint64_t>, 4> looks{};
    std::vector<std::thread> takers;
    for (std::atomic<uint64_t>& own : looks)
        takers.emplace_back([&] {
            for (; !done; ++own) {
                taken += WaitForSingleObject(&event, 0) == WAIT_OBJECT_0 ? 1 : 0;
                std::this_thread::yield();
            }
        });
    int signal = 0;
    while (signal < signals && taken == signal) {
        event.SetEvent();
        ++signal;
        while (taken < signal)
            std::this_thread::yield();
        for (const std::atomic<uint64_t>& other : looks)
            for (const uint64_t before = other; signal <= watched && other == before;)
                std::this_thread::yield();
    }
    done = true;
    for (std::thread& taker : takers)
        taker.join();
    EXPECT_EQ(signal, signals);
    EXPECT_EQ(taken, signals);
}

TEST(EventObject, LateSignalOfATimedOutWaitIsTakenUnreported) {
    CEventObject event(nullptr, AUTOMATIC, false, nullptr);
    const SystemFault late(Call::CondTimedWait, ETIMEDOUT, [&] { event.SetEvent(); });
    EXPECT_EQ(WaitForSingleObject(&event, 1000), WAIT_TIMEOUT);
    EXPECT_EQ(WaitForSingleObject(&event, 0), WAIT_TIMEOUT);
}

TEST(EventObject, SignalledEventWhoseWaitBreaksFails) {
    for (const uint32_t timeout : {INFINITE, 1000u}) {
        CEventObject event(nullptr, MANUAL, false, nullptr);
        const SystemFault broken(timeout == INFINITE ? Call::CondWait : Call::CondTimedWait, EINVAL,
                                 [&] { event.SetEvent(); });
        EXPECT_EQ(WaitForSingleObject(&event, timeout), WAIT_FAILED);
        EXPECT_EQ(WaitForSingleObject(&event, 0), WAIT_OBJECT_0);
    }
}

TEST(EventObject, UnsignalledEventWhoseWaitBreaksTimesOut) {
    CEventObject event(nullptr, AUTOMATIC, false, nullptr);
    const SystemFault broken(Call::CondWait, EINVAL);
    EXPECT_EQ(WaitForSingleObject(&event, INFINITE), WAIT_TIMEOUT);
}

TEST(EventObject, FailedInitialisationIsBadAllocWithoutTextAndLeavesNothing) {
    for (const Call call : {Call::CondInit, Call::MutexInit}) {
        const uint64_t initialised = ZqTest::CallCount(Call::CondInit);
        const uint64_t destroyed = ZqTest::CallCount(Call::CondDestroy);
        const SystemFault fault(call, ENOMEM);
        try {
            CEventObject event(nullptr, AUTOMATIC, false, nullptr);
            FAIL();
        } catch (const GenICam::BadAllocException& error) {
            EXPECT_STREQ(error.GetDescription(), "");
            EXPECT_STREQ(error.GetSourceFileName(), "ZqSDKCommon/EventObject");
        }
        EXPECT_EQ(ZqTest::CallCount(Call::CondInit) - initialised, 1u);
        EXPECT_EQ(ZqTest::CallCount(Call::CondDestroy) - destroyed, call == Call::MutexInit ? 1u : 0u);
    }
}

TEST(WaitDeadline, CarriesOnlyAboveASecond) {
    const auto deadline = [](time_t seconds, long nanoseconds, uint32_t ms) {
        return WaitDeadline(timespec{seconds, nanoseconds}, ms);
    };
    EXPECT_EQ(deadline(100, 5, 1000).tv_sec, 101);
    EXPECT_EQ(deadline(100, 5, 1000).tv_nsec, 5);
    EXPECT_EQ(deadline(100, 5, 999).tv_sec, 100);
    EXPECT_EQ(deadline(100, 5, 999).tv_nsec, 999000005);
    EXPECT_EQ(deadline(100, 999999999, 2).tv_sec, 101);
    EXPECT_EQ(deadline(100, 999999999, 2).tv_nsec, 1999999);
    EXPECT_EQ(deadline(100, 500000000, 500).tv_sec, 100);
    EXPECT_EQ(deadline(100, 500000000, 500).tv_nsec, 1000000000);
    EXPECT_EQ(deadline(100, 500000001, 500).tv_sec, 101);
    EXPECT_EQ(deadline(100, 500000001, 500).tv_nsec, 1);
    EXPECT_EQ(deadline(0, 0, 0xFFFFFFFE).tv_sec, 4294967);
    EXPECT_EQ(deadline(0, 0, 0xFFFFFFFE).tv_nsec, 294000000);
}

TEST(WaitDeadline, ExactSecondOfNanosecondsEndsTheWaitAtOnce) {
    CEventObject event(nullptr, AUTOMATIC, false, nullptr);
    CEventObject* const events[] = {&event};
    const auto start = std::chrono::steady_clock::now();
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const ZqTest::FrozenClock clock(timespec{now.tv_sec + 1, 500000000});
    EXPECT_EQ(WaitForSingleObject(&event, 5500), WAIT_TIMEOUT);
    EXPECT_EQ(WaitMultiple(1, events, false, 5500).kind, WaitResult::TimedOut);
    EXPECT_LT(MillisecondsSince(start), 1000);
}
