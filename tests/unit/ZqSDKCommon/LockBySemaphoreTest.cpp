#include "ZqSDKCommon/CLockBySemaphore.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <thread>

#include <ZqApi/Error.h>

#include "tests/unit/ZqSDKCommon/SystemCalls.h"

using namespace ZqApi;
using ZqTest::Call;
using ZqTest::SystemFault;

namespace {

/// Locks on a thread of its own; `Waits` returns once that thread sleeps.
class Locker {
public:
    explicit Locker(CLockBySemaphore& lock, long n = 1)
        : m_WaitsBefore(ZqTest::CallCount(Call::CondWait)), m_Thread([this, &lock, n] {
              lock.mLock(n);
              locked = true;
          }) {}
    ~Locker() { m_Thread.join(); }

    bool Waits() const {
        while (ZqTest::CallCount(Call::CondWait) == m_WaitsBefore && !locked)
            std::this_thread::yield();
        return !locked;
    }

    std::atomic<bool> locked{false};

private:
    const uint64_t m_WaitsBefore;
    std::thread m_Thread;
};

void ExpectInitialisationError(Call call, int error, const char* functionName, const char* message) {
    const SystemFault fault(call, error);
    errno = 0;
    try {
        const CLockBySemaphore lock(1);
        FAIL();
    } catch (const CZqLinuxErrorException& failure) {
        EXPECT_EQ(failure.GetError(), error);
        EXPECT_STREQ(failure.GetFunctionName().c_str(), functionName);
        EXPECT_STREQ(failure.GetDescription(), message);
        EXPECT_STREQ(failure.GetSourceFileName(), "ZqSDKCommon/CLockBySemaphore");
    }
}

} // namespace

TEST(LockBySemaphore, StartsFullyHeld) {
    CLockBySemaphore lock(3);
    const Locker locker(lock);
    EXPECT_TRUE(locker.Waits());
    lock.Unlock();
}

TEST(LockBySemaphore, SeveralUnitsTakeOneOnly) {
    CLockBySemaphore lock(3);
    lock.mUnlock(3);
    const uint64_t waits = ZqTest::CallCount(Call::CondWait);
    lock.mLock(5);
    lock.mLock(5);
    lock.LockMaxMinusOne();
    EXPECT_EQ(ZqTest::CallCount(Call::CondWait), waits);
    const Locker fourth(lock);
    EXPECT_TRUE(fourth.Waits());
    lock.Unlock();
}

TEST(LockBySemaphore, NoUnitsTakeOneWithoutWaiting) {
    CLockBySemaphore lock(1);
    const uint64_t waits = ZqTest::CallCount(Call::CondWait);
    lock.mLock(0);
    lock.LockMaxMinusOne();
    EXPECT_EQ(ZqTest::CallCount(Call::CondWait), waits);
    const uint64_t signals = ZqTest::CallCount(Call::CondSignal);
    lock.mUnlock(10);
    EXPECT_EQ(ZqTest::CallCount(Call::CondSignal) - signals, 3u);
}

TEST(LockBySemaphore, UnlockGivesBackWhatIsHeldAtMost) {
    CLockBySemaphore lock(2);
    const uint64_t signals = ZqTest::CallCount(Call::CondSignal);
    lock.mUnlock(3);
    EXPECT_EQ(ZqTest::CallCount(Call::CondSignal) - signals, 2u);
    lock.Unlock();
    lock.mUnlock(0);
    lock.mUnlock(-1);
    EXPECT_EQ(ZqTest::CallCount(Call::CondSignal) - signals, 2u);
}

TEST(LockBySemaphore, UnlockMaxMinusOneLeavesOneHeld) {
    CLockBySemaphore lock(3);
    const uint64_t signals = ZqTest::CallCount(Call::CondSignal);
    lock.UnlockMaxMinusOne();
    EXPECT_EQ(ZqTest::CallCount(Call::CondSignal) - signals, 2u);
    lock.mUnlock(9);
    EXPECT_EQ(ZqTest::CallCount(Call::CondSignal) - signals, 3u);
}

TEST(LockBySemaphore, BrokenWaitEndsItsRound) {
    CLockBySemaphore lock(1);
    const SystemFault broken(Call::CondWait, EINVAL);
    lock.Lock();
    const uint64_t signals = ZqTest::CallCount(Call::CondSignal);
    lock.mUnlock(5);
    EXPECT_EQ(ZqTest::CallCount(Call::CondSignal) - signals, 2u);
}

TEST(LockBySemaphore, InterruptedWaitGoesOn) {
    CLockBySemaphore lock(1);
    const SystemFault interrupted(Call::CondWait, EINTR);
    const uint64_t waits = ZqTest::CallCount(Call::CondWait);
    std::atomic<bool> locked{false};
    std::thread unlocker([&] {
        while (ZqTest::CallCount(Call::CondWait) < waits + 2 && !locked)
            std::this_thread::yield();
        lock.Unlock();
    });
    lock.Lock();
    locked = true;
    unlocker.join();
    EXPECT_EQ(ZqTest::CallCount(Call::CondWait) - waits, 2u);
}

TEST(LockBySemaphore, FailedInitialisationNamesTheCall) {
    ExpectInitialisationError(Call::MutexInit, ENOMEM, "pthread_mutex_init",
                              "0 != pthread_mutex_init(&m_sem.mutex) [Error=0xc Cannot allocate memory]"
                              " ErrorCode=0x0000000c \" \"Cannot allocate memory");
    ExpectInitialisationError(
        Call::CondInit, EAGAIN, "pthread_cond_init",
        "0 != pthread_cond_init(&m_sem.condition) [Error=0xb Resource temporarily unavailable]"
        " ErrorCode=0x0000000b \" \"Resource temporarily unavailable");
}
