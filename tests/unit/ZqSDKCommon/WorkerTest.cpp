#include "ZqSDKCommon/Worker.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <functional>
#include <thread>

#include <signal.h>

#include <Base/GCException.h>

#include "tests/unit/ZqSDKCommon/SystemCalls.h"

using namespace ZqApi;
using ZqTest::Call;
using ZqTest::SystemFault;

namespace {

/// A worker whose body the test gives; the usual one waits for the stop request.
class Worker final : public CWorker {
public:
    explicit Worker(const char* name = "ZqApi_TL_Test", std::function<void(Worker&)> body = {})
        : CWorker(name), m_Body(std::move(body)) {}
    ~Worker() override { Worker::Stop(); }

    void WaitForStop() {
        void* const stop = GetStopRequestEvent();
        WaitForMultipleObjects(1, &stop, false, INFINITE);
    }

    std::atomic<int> bodies{0};

protected:
    unsigned int mWork() override {
        ++bodies;
        m_Body ? m_Body(*this) : WaitForStop();
        return 5;
    }

private:
    const std::function<void(Worker&)> m_Body;
};

void WaitUntil(const std::function<bool()>& condition) {
    while (!condition())
        std::this_thread::yield();
}

} // namespace

TEST(Worker, WithoutANameKeepsThatOfWhoStartedIt) {
    char own[32] = {};
    pthread_getname_np(pthread_self(), own, sizeof own);
    std::string name;
    Worker worker(nullptr, [&](Worker&) {
        char text[32] = {};
        pthread_getname_np(pthread_self(), text, sizeof text);
        name = text;
    });
    worker.Start();
    worker.Stop();
    EXPECT_EQ(name, own);
}

TEST(Worker, StopWithoutStartDoesNothing) {
    Worker worker;
    worker.Stop();
    EXPECT_FALSE(worker.HasThread());
    EXPECT_FALSE(worker.IsStopRequest(0));
    EXPECT_EQ(worker.bodies, 0);
}

TEST(Worker, StopRequestIsSeenInsideAndStaysUntilTheNextStart) {
    std::atomic<bool> before{true};
    std::atomic<bool> begun{false};
    std::atomic<bool> after{false};
    Worker worker("w", [&](Worker& self) {
        before = self.IsStopRequest(0);
        begun = true;
        self.WaitForStop();
        after = self.IsStopRequest(0) && self.IsStopRequest(0);
        EXPECT_TRUE(self.IsRunning());
    });
    worker.Start();
    EXPECT_TRUE(worker.HasThread());
    WaitUntil([&] { return begun.load(); });
    worker.Stop();
    EXPECT_FALSE(before);
    EXPECT_TRUE(after);
    EXPECT_FALSE(worker.HasThread());
    EXPECT_FALSE(worker.IsRunning());
    EXPECT_TRUE(worker.IsStopRequest(0));
    worker.Start();
    EXPECT_FALSE(worker.IsStopRequest(0));
}

TEST(Worker, ClosingStopRequestHasNoHandleAndIsNeverSet) {
    Worker worker;
    auto* const request = static_cast<CEventObject*>(worker.GetStopRequestEvent());
    request->SetEvent();
    EXPECT_TRUE(worker.IsStopRequest(0));
    request->Close();
    EXPECT_EQ(worker.GetStopRequestEvent(), nullptr);
    EXPECT_FALSE(worker.IsStopRequest(0));
    EXPECT_FALSE(worker.IsStopRequest(INFINITE));
}

TEST(Worker, StartOnARunningOneRestartsIt) {
    std::atomic<int> inside{0};
    std::atomic<int> most{0};
    Worker worker("w", [&](Worker& self) {
        most = std::max<int>(most, ++inside);
        self.WaitForStop();
        --inside;
    });
    worker.Start();
    WaitUntil([&] { return inside == 1; });
    worker.Start();
    WaitUntil([&] { return worker.bodies == 2; });
    worker.Stop();
    worker.Stop();
    EXPECT_EQ(worker.bodies, 2);
    EXPECT_EQ(most, 1);
}

TEST(Worker, EndedBodyStillHasItsThreadUntilStop) {
    Worker worker("w", [](Worker&) {});
    worker.Start();
    WaitUntil([&] { return worker.bodies == 1 && !worker.IsRunning(); });
    EXPECT_TRUE(worker.HasThread());
    worker.Stop();
    EXPECT_FALSE(worker.HasThread());
}

TEST(Worker, StopAndStartOnItsOwnThreadOnlyRequest) {
    std::atomic<bool> own{false};
    std::atomic<bool> requested{false};
    std::atomic<bool> stillThere{false};
    Worker worker("w", [&](Worker& self) {
        own = self.IsOwnThread();
        self.Stop();
        requested = self.IsStopRequest(0);
        self.Start();
        stillThere = self.HasThread() && self.IsStopRequest(0);
    });
    EXPECT_FALSE(worker.IsOwnThread());
    worker.Start();
    WaitUntil([&] { return worker.bodies == 1 && !worker.IsRunning(); });
    worker.Stop();
    EXPECT_TRUE(own);
    EXPECT_TRUE(requested);
    EXPECT_TRUE(stillThere);
    EXPECT_EQ(worker.bodies, 1);
    EXPECT_FALSE(worker.HasThread());
    EXPECT_FALSE(worker.IsOwnThread());
}

// The system hands the identifier of a joined thread on to the next one.
TEST(Worker, StrangerWithTheIdentifierOfAStoppedThreadIsNotItsOwn) {
    pthread_t former = 0;
    Worker worker("w", [&](Worker&) { former = pthread_self(); });
    worker.Start();
    worker.Stop();
    bool own = false;
    bool met = false;
    for (int attempt = 0; attempt < 100 && !met; ++attempt)
        std::thread([&] {
            met = pthread_equal(former, pthread_self()) != 0;
            own = worker.IsOwnThread();
        }).join();
    if (!met)
        GTEST_SKIP() << "no thread got the identifier";
    EXPECT_FALSE(own);
}

TEST(Worker, StopFromTwoThreadsJoinsOnce) {
    for (int round = 0; round < 50; ++round) {
        Worker worker;
        worker.Start();
        std::thread one([&] { worker.Stop(); });
        std::thread other([&] { worker.Stop(); });
        one.join();
        other.join();
        EXPECT_FALSE(worker.HasThread());
    }
}

TEST(Worker, SystemKnowsTheThreadByItsNameWithoutPrefix) {
    for (const auto& [given, expected] :
         {std::pair<const char*, const char*>{"ZqApi_TL_EventNewBuffer", "EventNewBuffer"},
          {"ZqApi_TL_EventError_DEV", "EventError_DEV"},
          {"ZqApi_TL_EventFeatureInvalidate", "EventFeatureInv"},
          {"Other", "Other"}}) {
        char name[16] = "";
        Worker worker(given, [&](Worker&) { pthread_getname_np(pthread_self(), name, sizeof name); });
        worker.Start();
        worker.Stop();
        EXPECT_STREQ(name, expected);
    }
}

TEST(Worker, RefusedThreadLeavesItStopped) {
    Worker worker;
    {
        const SystemFault refused(Call::ThreadCreate, EAGAIN);
        EXPECT_NO_THROW(worker.Start());
    }
    EXPECT_FALSE(worker.HasThread());
    worker.Stop();
    worker.Start();
    EXPECT_TRUE(worker.HasThread());
}

TEST(Worker, ThreadGetsNoAsynchronousSignals) {
    sigset_t before;
    pthread_sigmask(SIG_SETMASK, nullptr, &before);
    sigset_t inside;
    Worker worker("w", [&](Worker&) { pthread_sigmask(SIG_SETMASK, nullptr, &inside); });
    worker.Start();
    worker.Stop();
    for (const int blocked : {SIGINT, SIGTERM, SIGALRM, SIGUSR1, SIGCHLD})
        EXPECT_EQ(sigismember(&inside, blocked), 1) << blocked;
    for (const int synchronous : {SIGSEGV, SIGFPE, SIGBUS, SIGILL})
        EXPECT_EQ(sigismember(&inside, synchronous), 0) << synchronous;
    sigset_t after;
    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    EXPECT_EQ(sigismember(&after, SIGINT), sigismember(&before, SIGINT));
    EXPECT_EQ(sigismember(&after, SIGUSR1), sigismember(&before, SIGUSR1));
}

TEST(Worker, RealTimePriorityIsClampedAndAppliedOnTheThreadItself) {
    const uint64_t ofProcess = ZqTest::CallCount(Call::SetScheduler);
    for (const auto& [asked, expected] : {std::pair<int, int>{90, 90}, {2, 2}, {200, 99}}) {
        Worker worker;
        worker.SetPriority(asked);
        worker.Start();
        worker.Stop();
        const ZqTest::SchedulingRequest request = ZqTest::LatestSchedulingRequest();
        EXPECT_TRUE(request.ownThread);
        EXPECT_EQ(request.policy, SCHED_RR);
        EXPECT_EQ(request.priority, expected);
        EXPECT_EQ(worker.GetPriority(), expected);
    }
    EXPECT_EQ(ZqTest::CallCount(Call::SetScheduler), ofProcess);
}

TEST(Worker, NormalPriorityIsClampedIntoTheDefaultPolicyAndKept) {
    for (const int asked : {1, 0, -7}) {
        Worker worker;
        if (asked != 1)
            worker.SetPriority(asked);
        worker.Start();
        worker.Stop();
        const ZqTest::SchedulingRequest request = ZqTest::LatestSchedulingRequest();
        EXPECT_TRUE(request.ownThread);
        EXPECT_EQ(request.policy, -1);
        EXPECT_EQ(request.priority, 0);
        EXPECT_EQ(worker.GetPriority(), asked);
    }
}

TEST(Worker, EventThatCanNotBeMadeIsBadAllocOfTheWorker) {
    const SystemFault fault(Call::CondInit, EAGAIN);
    try {
        Worker worker;
        FAIL();
    } catch (const GenICam::BadAllocException& error) {
        EXPECT_STREQ(error.GetDescription(), "");
        EXPECT_STREQ(error.GetSourceFileName(), "ZqSDKCommon/Worker");
    }
}
