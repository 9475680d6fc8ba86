#include "tools/zq/FrameWriter.h"

#include "tools/zq/Failure.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>

using ZqTool::Failure;
using ZqTool::Frame;
using ZqTool::FrameWriter;

namespace {

void PutNumber(FrameWriter& writer, uint64_t number) {
    Frame* frame = writer.Take();
    frame->number = number;
    writer.Put(frame);
}

TEST(ZqFrameWriter, WritesAllInOrderOnAnotherThread) {
    std::vector<uint64_t> written;
    std::thread::id thread;
    FrameWriter writer(
        [&](const Frame& frame) {
            written.push_back(frame.number);
            thread = std::this_thread::get_id();
        },
        3);
    for (uint64_t i = 1; i <= 5; ++i)
        PutNumber(writer, i);
    writer.Finish();
    EXPECT_EQ(written, (std::vector<uint64_t>{1, 2, 3, 4, 5}));
    EXPECT_NE(thread, std::this_thread::get_id());
}

TEST(ZqFrameWriter, WaitsOnlyWhenAllFramesAreInUse) {
    std::promise<void> go;
    std::shared_future<void> gate = go.get_future().share();
    FrameWriter writer([&](const Frame&) { gate.wait(); }, 2);
    PutNumber(writer, 1);
    PutNumber(writer, 2);
    EXPECT_EQ(writer.Waits(), 0U);
    std::thread opener([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        go.set_value();
    });
    PutNumber(writer, 3);
    EXPECT_EQ(writer.Waits(), 1U);
    opener.join();
    writer.Finish();
}

TEST(ZqFrameWriter, FailureComesOutOfTakeAndFinish) {
    std::atomic<int> calls{0};
    FrameWriter writer(
        [&](const Frame&) {
            ++calls;
            throw Failure("writing", "disk full", "free some");
        },
        2);
    PutNumber(writer, 1);
    EXPECT_THROW(
        {
            while (true)
                PutNumber(writer, 2);
        },
        Failure);
    EXPECT_THROW(writer.Finish(), Failure);
    EXPECT_EQ(calls, 1);
}

TEST(ZqFrameWriter, EndsWhenWhatWaitsIsWritten) {
    std::atomic<int> calls{0};
    {
        FrameWriter writer([&](const Frame&) { ++calls; }, 3);
        for (uint64_t i = 1; i <= 3; ++i)
            PutNumber(writer, i);
    }
    EXPECT_EQ(calls, 3);
}

} // namespace
