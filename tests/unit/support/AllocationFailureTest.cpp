#include "tests/support/AllocationFailure.h"
#include "tests/support/ScriptedProducer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <vector>

using ZqTest::AllocationCountOfThisThread;
using ZqTest::AllocationLimit;
using ZqTest::FailingAllocation;

namespace {

/// Allocations that the compiler may not leave out.
struct Blocks {
    void Add() { blocks.push_back(std::make_unique<std::string>(100, 'x')); }
    std::vector<std::unique_ptr<std::string>> blocks;
};

TEST(AllocationFailure, OnlyTheNthAllocationFails) {
    const FailingAllocation failing(2);
    std::string first(100, 'x');
    EXPECT_FALSE(failing.Failed());
    EXPECT_THROW(std::string(100, 'y'), std::bad_alloc);
    EXPECT_TRUE(failing.Failed());
    EXPECT_NO_THROW(std::string(100, 'z'));
}

TEST(AllocationFailure, NothrowFormGivesNull) {
    const FailingAllocation failing(1);
    const std::unique_ptr<char[]> block(new (std::nothrow) char[10]);
    EXPECT_EQ(block, nullptr);
}

/// True when an allocation on another thread fails while the switch is set here.
bool FailsOnAnotherThread(ZqTest::Threads threads) {
    std::atomic<bool> go{false};
    bool thrown = false;
    std::thread other([&] {
        while (!go)
            std::this_thread::yield();
        try {
            std::string(100, 'x');
        } catch (const std::bad_alloc&) {
            thrown = true;
        }
    });
    const FailingAllocation failing(1, threads);
    go = true;
    other.join();
    return thrown;
}

TEST(AllocationFailure, OtherThreadsAreLeftAloneUnlessAsked) {
    EXPECT_FALSE(FailsOnAnotherThread(ZqTest::Threads::This));
    EXPECT_TRUE(FailsOnAnotherThread(ZqTest::Threads::Any));
}

TEST(AllocationFailure, LimitRefusesLargeBlocksOnly) {
    const AllocationLimit limit(1000);
    EXPECT_NO_THROW(std::string(500, 'x'));
    EXPECT_THROW(std::string(2000, 'x'), std::bad_alloc);
}

TEST(AllocationFailure, CountsEachAllocation) {
    Blocks blocks;
    blocks.blocks.reserve(4);
    const uint64_t before = AllocationCountOfThisThread();
    blocks.Add();
    blocks.Add();
    EXPECT_EQ(AllocationCountOfThisThread() - before, 4U);
}

TEST(AllocationFailure, ProducerIsNotAffected) {
    const ZqTest::ScriptedProducer producer;
    const auto initialise = producer.Resolve<GenTL::PGCInitLib>("GCInitLib");
    const auto close = producer.Resolve<GenTL::PGCCloseLib>("GCCloseLib");
    const FailingAllocation failing(1, ZqTest::Threads::Any);
    EXPECT_EQ(initialise(), 0);
    EXPECT_EQ(close(), 0);
    EXPECT_FALSE(failing.Failed());
}

} // namespace
