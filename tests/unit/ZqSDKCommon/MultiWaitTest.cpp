#include "ZqSDKCommon/EventObject.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include <Base/GCException.h>

#include "tests/support/AllocationFailure.h"
#include "tests/unit/ZqSDKCommon/SystemCalls.h"

using namespace ZqApi;
using ZqTest::Call;
using ZqTest::SystemFault;

namespace {

constexpr bool ANY = false;
constexpr bool ALL = true;

/// Events of which some are signalled, named by a pattern: 'a' automatic, 'm' manual, upper case signalled,
/// '-' null.
class Events {
public:
    explicit Events(const std::string& pattern) {
        for (const char kind : pattern) {
            std::unique_ptr<CEventObject> event;
            if (kind != '-')
                event =
                    std::make_unique<CEventObject>(nullptr, kind == 'm' || kind == 'M', kind < 'a', nullptr);
            handles.push_back(event.get());
            owned.push_back(std::move(event));
        }
    }

    uint32_t Wait(bool all, uint32_t ms) {
        return WaitForMultipleObjects(static_cast<unsigned int>(handles.size()), handles.data(), all, ms);
    }
    CEventObject& operator[](size_t index) { return *owned[index]; }
    bool IsSet(size_t index) { return WaitForSingleObject(handles[index], 0) == WAIT_OBJECT_0; }

    std::vector<void*> handles;
    std::vector<std::unique_ptr<CEventObject>> owned;
};

int64_t MillisecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start)
        .count();
}

void WaitUntilOneMoreWaits(uint64_t before) {
    while (ZqTest::CallCount(Call::CondWait) == before)
        std::this_thread::yield();
}

class BothWaits : public testing::TestWithParam<uint32_t> {};

} // namespace

TEST_P(BothWaits, AnyNamesTheLowestAndTakesAllThatAreSet) {
    EXPECT_EQ(Events("aaA").Wait(ANY, GetParam()), 2u);
    Events events("aAA");
    EXPECT_EQ(events.Wait(ANY, GetParam()), 1u);
    EXPECT_FALSE(events.IsSet(1));
    EXPECT_FALSE(events.IsSet(2));
}

TEST_P(BothWaits, ManualResetStaysSet) {
    Events events("aM");
    EXPECT_EQ(events.Wait(ANY, GetParam()), 1u);
    EXPECT_TRUE(events.IsSet(1));
}

TEST_P(BothWaits, AllNeedsEveryOne) {
    EXPECT_EQ(Events("AMA").Wait(ALL, GetParam()), WAIT_OBJECT_0);
    EXPECT_EQ(Events("AaA").Wait(ALL, GetParam()), WAIT_TIMEOUT);
}

TEST_P(BothWaits, NullElementsAreNeverSet) {
    Events events("a-A");
    EXPECT_EQ(events.Wait(ANY, GetParam()), 2u);
    EXPECT_FALSE(events.IsSet(2));
    EXPECT_EQ(Events("-A").Wait(ALL, GetParam()), WAIT_TIMEOUT);
}

TEST_P(BothWaits, NoEventsFail) {
    void* handle = nullptr;
    EXPECT_EQ(WaitForMultipleObjects(0, &handle, false, GetParam()), 0xFFFFFFFFu);
    EXPECT_EQ(WaitForMultipleObjects(1, nullptr, false, GetParam()), 0xFFFFFFFFu);
}

TEST_P(BothWaits, EventThatStandsTwiceInTheArrayCountsTwice) {
    for (const bool all : {ANY, ALL}) {
        Events events("A");
        events.handles.push_back(events.handles[0]);
        EXPECT_EQ(events.Wait(all, GetParam()), WAIT_OBJECT_0);
        EXPECT_FALSE(events.IsSet(0));
    }
}

INSTANTIATE_TEST_SUITE_P(Polling, BothWaits, testing::Values(0u));
INSTANTIATE_TEST_SUITE_P(Blocking, BothWaits, testing::Values(50u));

TEST(MultiWait, OnlyNullElementsTimeOutAfterTheTime) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Events("-").Wait(ANY, 50), 0x102u);
    EXPECT_GE(MillisecondsSince(start), 49);
}

TEST(MultiWait, TimedOutAllTakesWhatWasSetButAFailedPollDoesNot) {
    Events waited("Aa");
    EXPECT_EQ(waited.Wait(ALL, 10), WAIT_TIMEOUT);
    EXPECT_FALSE(waited.IsSet(0));
    Events polled("Aa");
    EXPECT_EQ(polled.Wait(ALL, 0), WAIT_TIMEOUT);
    EXPECT_TRUE(polled.IsSet(0));
}

TEST(MultiWait, BlockedAnyWakesOnASignal) {
    Events events("aaa");
    const uint64_t before = ZqTest::CallCount(Call::CondWait);
    std::thread setter([&] {
        WaitUntilOneMoreWaits(before);
        events[1].SetEvent();
    });
    EXPECT_EQ(events.Wait(ANY, INFINITE), 1u);
    setter.join();
    EXPECT_FALSE(events.IsSet(1));
}

TEST(MultiWait, BlockedAllIsWokenByTheLastSignalOnly) {
    Events events("aAa");
    const uint64_t before = ZqTest::CallCount(Call::CondWait);
    uint64_t wakingAtFirst = 0;
    uint64_t wakingAtLast = 0;
    std::thread setter([&] {
        WaitUntilOneMoreWaits(before);
        const uint64_t signals = ZqTest::CallCount(Call::CondSignal);
        events[0].SetEvent();
        wakingAtFirst = ZqTest::CallCount(Call::CondSignal) - signals;
        events[2].SetEvent();
        wakingAtLast = ZqTest::CallCount(Call::CondSignal) - signals - wakingAtFirst;
    });
    EXPECT_EQ(events.Wait(ALL, INFINITE), WAIT_OBJECT_0);
    setter.join();
    EXPECT_EQ(wakingAtFirst, 1u) << "the event's own single waiters";
    EXPECT_EQ(wakingAtLast, 2u);
    for (size_t index = 0; index < 3; ++index)
        EXPECT_FALSE(events.IsSet(index)) << index;
}

TEST(MultiWait, AllSleepsAgainWhenASignalWentBeforeTheLastCame) {
    Events events("aa");
    const uint64_t before = ZqTest::CallCount(Call::CondWait);
    std::thread setter([&] {
        WaitUntilOneMoreWaits(before);
        events[0].SetEvent();
        events[0].ResetEvent();
        events[1].SetEvent();
        WaitUntilOneMoreWaits(before + 1);
        events[0].SetEvent();
    });
    EXPECT_EQ(events.Wait(ALL, INFINITE), WAIT_OBJECT_0);
    setter.join();
}

TEST(MultiWait, InsideResultNamesAnyIndex) {
    std::vector<std::unique_ptr<CEventObject>> owned;
    std::vector<CEventObject*> events;
    for (int index = 0; index < 300; ++index) {
        owned.push_back(std::make_unique<CEventObject>(nullptr, false, index == 258, nullptr));
        events.push_back(owned.back().get());
    }
    const WaitResult first = WaitMultiple(events.size(), events.data(), false, 0);
    EXPECT_EQ(first.kind, WaitResult::Signalled);
    EXPECT_EQ(first.index, 258u);
    const WaitResult second = WaitMultiple(events.size(), events.data(), false, 1);
    EXPECT_EQ(second.kind, WaitResult::TimedOut);
}

TEST(MultiWait, BadArgumentsFailAndTakeNoSignal) {
    CEventObject event(nullptr, false, true, nullptr);
    CEventObject* events[] = {&event};
    void* handles[] = {&event};
    EXPECT_EQ(WaitMultiple(0, events, false, 1).kind, WaitResult::Failed);
    EXPECT_EQ(WaitForMultipleObjects(0, handles, false, 0), WAIT_FAILED);
    EXPECT_EQ(WaitForMultipleObjects(1, nullptr, true, 0), WAIT_FAILED);
    EXPECT_EQ(WaitForSingleObject(nullptr, 0), WAIT_FAILED);
    EXPECT_EQ(WaitForSingleObject(&event, 0), WAIT_OBJECT_0);
}

TEST(MultiWait, AllocatesNothingForEightEvents) {
    Events events("aaaaaaaA");
    const uint64_t before = ZqTest::AllocationCountOfThisThread();
    EXPECT_EQ(events.Wait(ANY, 1000), 7u);
    EXPECT_EQ(events.Wait(ANY, 1), WAIT_TIMEOUT);
    EXPECT_EQ(events.Wait(ANY, 0), WAIT_TIMEOUT);
    EXPECT_EQ(ZqTest::AllocationCountOfThisThread(), before);
}

TEST(MultiWait, FailedAllocationIsBadAllocWithoutTextAndRegistersNothing) {
    Events events("aaaaaaaaA");
    try {
        const ZqTest::FailingAllocation failure(1);
        events.Wait(ANY, 1000);
        FAIL();
    } catch (const GenICam::BadAllocException& error) {
        EXPECT_STREQ(error.GetDescription(), "");
        EXPECT_STREQ(error.GetSourceFileName(), "ZqSDKCommon/EventObject");
    }
    events[0].SetEvent();
    EXPECT_EQ(events.Wait(ANY, 1000), 0u);
}

TEST(MultiWait, WaiterThatCanNotBeMadeIsBadAllocWithoutText) {
    Events events("aA");
    for (const Call call : {Call::CondInit, Call::MutexInit}) {
        const SystemFault fault(call, EAGAIN);
        EXPECT_THROW(events.Wait(ANY, 1000), GenICam::BadAllocException);
    }
    EXPECT_EQ(events.Wait(ANY, 1000), 1u);
}

TEST(MultiWait, BrokenSleepTakesWhatIsSet) {
    Events events("aa");
    const SystemFault broken(Call::CondTimedWait, EINVAL, [&] { events[1].SetEvent(); });
    EXPECT_EQ(events.Wait(ANY, 1000), 1u);
    const SystemFault brokenAgain(Call::CondTimedWait, EINVAL);
    EXPECT_EQ(events.Wait(ANY, 1000), WAIT_TIMEOUT);
}

// The poll has seen both and waits for the first one's mutex while another thread takes the second.
TEST(MultiWait, PollForAllThatLosesOneLeavesTheOthersSet) {
    for (int round = 0; round < 50; ++round) {
        Events events("AA");
        std::atomic<bool> polling{false};
        pthread_mutex_lock(&events[0].mutex);
        uint32_t result = 0;
        std::thread poller([&] {
            polling = true;
            result = events.Wait(ALL, 0);
        });
        while (!polling)
            std::this_thread::yield();
        for (int pause = 0; pause < 20; ++pause)
            std::this_thread::yield();
        EXPECT_TRUE(events.IsSet(1));
        pthread_mutex_unlock(&events[0].mutex);
        poller.join();
        EXPECT_EQ(result, WAIT_TIMEOUT);
        EXPECT_TRUE(events.IsSet(0));
    }
}

// A waiter that is cancelled leaves nothing of its frame in the events' lists.
TEST(MultiWait, CancelledWaiterUnregisters) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "AddressSanitizer can't follow the unwinding of a cancelled thread";
#endif
    Events events("aa");
    const uint64_t before = ZqTest::CallCount(Call::CondWait);
    std::thread waiter([&] { events.Wait(ANY, INFINITE); });
    WaitUntilOneMoreWaits(before);
    pthread_cancel(waiter.native_handle());
    waiter.join();
    events[0].SetEvent();
    events[1].SetEvent();
    EXPECT_EQ(events.Wait(ALL, 0), WAIT_OBJECT_0);
}

// Both waiters wait for everything all the time. A signal wakes both, one takes it, and the other may be told
// of a time-out that wasn't one.
TEST(MultiWait, WaitersOnTheSameEventsMissNothing) {
    constexpr int rounds = 2000;
    Events events("aam");
    std::atomic<int> taken{0};
    const auto wait = [&] {
        for (uint32_t result = 0; result != 2;) {
            result = events.Wait(ANY, INFINITE);
            taken += result < 2 ? 1 : 0;
        }
    };
    std::thread one(wait);
    std::thread other(wait);
    for (int round = 0; round < rounds; ++round) {
        events[round % 2].SetEvent();
        while (taken <= round)
            std::this_thread::yield();
    }
    events[2].SetEvent();
    one.join();
    other.join();
    EXPECT_EQ(taken, rounds);
}
