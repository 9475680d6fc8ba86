#include "tests/unit/support/OpenModules.h"

#include <chrono>
#include <thread>

using namespace GenTL;
using ZqTest::Frame;
using ZqTest::PushedEvent;
using ZqTest::ScriptedProducer;

namespace {

TEST(ScriptedStream, PushedFrameArrivesWithBytesAndInfos) {
    const ScriptedProducer producer;
    OpenModules open(producer);
    open.OpenStream(2);
    ASSERT_EQ(open.Start(), 0);
    ASSERT_TRUE(producer.PushFrame("DS1", Frame("pixels")
                                              .Info<size_t>(BUFFER_INFO_WIDTH, INFO_DATATYPE_SIZET, 640)
                                              .Fails(BUFFER_INFO_PIXELFORMAT, GC_ERR_NOT_AVAILABLE)));
    EVENT_NEW_BUFFER_DATA record{};
    size_t size = sizeof record;
    ASSERT_EQ(open.Wait(open.newBuffer, &record, &size, 1000), 0);
    EXPECT_EQ(size, 16U);
    EXPECT_EQ(record.pUserPointer, &open);
    const char* base = nullptr;
    size_t filled = 0;
    size_t width = 0;
    uint64_t format = 0;
    EXPECT_EQ(open.BufferInfo(record.BufferHandle, BUFFER_INFO_BASE, &base), 0);
    EXPECT_EQ(open.BufferInfo(record.BufferHandle, BUFFER_INFO_SIZE_FILLED, &filled), 0);
    EXPECT_EQ(open.BufferInfo(record.BufferHandle, BUFFER_INFO_WIDTH, &width), 0);
    EXPECT_EQ(open.BufferInfo(record.BufferHandle, BUFFER_INFO_PIXELFORMAT, &format), GC_ERR_NOT_AVAILABLE);
    EXPECT_EQ(std::string(base, filled), "pixels");
    EXPECT_EQ(width, 640U);
}

TEST(ScriptedStream, FrameWithoutQueuedBufferIsAnUnderrun) {
    const ScriptedProducer producer;
    OpenModules open(producer);
    open.OpenStream(1);
    ASSERT_EQ(open.Start(), 0);
    EXPECT_TRUE(producer.PushFrame("DS1"));
    EXPECT_FALSE(producer.PushFrame("DS1"));
    uint64_t underrun = 0;
    size_t size = sizeof underrun;
    INFO_DATATYPE type = 0;
    open.Call<PDSGetInfo>("DSGetInfo", open.stream, STREAM_INFO_CMD{STREAM_INFO_NUM_UNDERRUN}, &type,
                          static_cast<void*>(&underrun), &size);
    EXPECT_EQ(underrun, 1U);
}

TEST(ScriptedStream, AutoStreamDeliversAsBuffersAreQueued) {
    const ScriptedProducer producer;
    producer.AutoStream(5);
    OpenModules open(producer);
    open.OpenStream(2);
    ASSERT_EQ(open.Start(), 0);
    std::vector<uint64_t> frames;
    for (int i = 0; i < 5; ++i) {
        EVENT_NEW_BUFFER_DATA record{};
        size_t size = sizeof record;
        ASSERT_EQ(open.Wait(open.newBuffer, &record, &size, 1000), 0);
        uint64_t frame = 0;
        open.BufferInfo(record.BufferHandle, BUFFER_INFO_FRAMEID, &frame);
        frames.push_back(frame);
        EXPECT_EQ(open.Call<PDSQueueBuffer>("DSQueueBuffer", open.stream, record.BufferHandle), 0);
    }
    EXPECT_EQ(frames, (std::vector<uint64_t>{1, 2, 3, 4, 5}));
    size_t size = 16;
    char record[16];
    EXPECT_EQ(open.Wait(open.newBuffer, record, &size, 0), GC_ERR_TIMEOUT);
}

TEST(ScriptedStream, RevokeNeedsAnUnqueuedBuffer) {
    const ScriptedProducer producer;
    OpenModules open(producer);
    open.OpenStream(1);
    BUFFER_HANDLE buffer = nullptr;
    ASSERT_EQ(open.Call<PDSGetBufferID>("DSGetBufferID", open.stream, 0U, &buffer), 0);
    const auto revoke = [&] {
        return open.Call<PDSRevokeBuffer>("DSRevokeBuffer", open.stream, buffer, static_cast<void**>(nullptr),
                                          static_cast<void**>(nullptr));
    };
    EXPECT_EQ(open.Call<PDSQueueBuffer>("DSQueueBuffer", open.stream, buffer), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(revoke(), GC_ERR_BUSY);
    EXPECT_EQ(open.Call<PDSFlushQueue>("DSFlushQueue", open.stream, ACQ_QUEUE_TYPE{ACQ_QUEUE_ALL_DISCARD}),
              0);
    EXPECT_EQ(revoke(), 0);
    EXPECT_EQ(revoke(), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(producer.Log({"DSRevokeBuffer", "DSFlushQueue"}),
              (std::vector<std::string>{"DSRevokeBuffer(DS1, BUF1) = -1022", "DSFlushQueue(DS1, 4)",
                                        "DSRevokeBuffer(DS1, BUF1)", "DSRevokeBuffer(DS1, ?) = -1006"}));
}

TEST(ScriptedStream, RawRecordsComeAsTheyAre) {
    const ScriptedProducer producer;
    OpenModules open(producer);
    open.OpenStream();
    ASSERT_TRUE(producer.PushRecord("DS1", "short"));
    char record[16];
    size_t size = sizeof record;
    EXPECT_EQ(open.Wait(open.newBuffer, record, &size, 0), 0);
    EXPECT_EQ(std::string(record, size), "short");
}

TEST(ScriptedStream, EventItemsAreThoseOfTheBlock) {
    const ScriptedProducer producer;
    OpenModules open(producer);
    open.OpenDevice();
    EVENT_HANDLE event = nullptr;
    EXPECT_FALSE(producer.PushDeviceLost("DEV1"));
    ASSERT_EQ(open.Register(open.device, EVENT_MODULE, &event), 0);
    PushedEvent second;
    second.id = std::string();
    second.value = "value";
    EXPECT_TRUE(producer.PushDeviceLost("DEV1"));
    EXPECT_TRUE(producer.Push("DEV1", EVENT_MODULE, second));
    char blocks[2][64];
    size_t sizes[2] = {64, 64};
    ASSERT_EQ(open.Wait(event, blocks[0], &sizes[0], 0), 0);
    ASSERT_EQ(open.Wait(event, blocks[1], &sizes[1], 0), 0);
    char item[64] = "";
    size_t size = 0;
    const auto info = [&](int block, EVENT_DATA_INFO_CMD command) {
        size = sizeof item;
        return open.Call<PEventGetDataInfo>(
            "EventGetDataInfo", event, static_cast<const void*>(blocks[block]), sizes[block], command,
            static_cast<INFO_DATATYPE*>(nullptr), static_cast<void*>(item), &size);
    };
    EXPECT_EQ(info(0, EVENT_DATA_ID), 0);
    EXPECT_STREQ(item, "0001");
    EXPECT_EQ(info(0, EVENT_DATA_VALUE), GC_ERR_NOT_AVAILABLE);
    EXPECT_EQ(info(1, EVENT_DATA_ID), 0);
    EXPECT_EQ(size, 0U);
    EXPECT_EQ(info(1, EVENT_DATA_VALUE), 0);
    EXPECT_EQ(std::string(item, size), "value");
}

TEST(ScriptedStream, KillAbortsExactlyOneWait) {
    const ScriptedProducer producer;
    OpenModules open(producer);
    open.OpenStream();
    std::thread killer([&] {
        EXPECT_TRUE(producer.WaitForCalls("EventGetData", 1));
        open.Call<PEventKill>("EventKill", open.newBuffer);
    });
    char record[16];
    size_t size = sizeof record;
    EXPECT_EQ(open.Wait(open.newBuffer, record, &size, GENTL_INFINITE), GC_ERR_ABORT);
    killer.join();
    EXPECT_EQ(open.Wait(open.newBuffer, record, &size, 1), GC_ERR_TIMEOUT);
}

TEST(ScriptedStream, KillBeatsQueuedDataAndRemovesNothing) {
    const ScriptedProducer producer;
    OpenModules open(producer);
    open.OpenStream();
    ASSERT_TRUE(producer.PushRecord("DS1", std::string(16, 'r')));
    open.Call<PEventKill>("EventKill", open.newBuffer);
    char record[16];
    size_t size = sizeof record;
    EXPECT_EQ(open.Wait(open.newBuffer, record, &size, 0), GC_ERR_ABORT);
    EXPECT_EQ(open.Wait(open.newBuffer, record, &size, 0), 0);
}

TEST(ScriptedStream, UnregisterAbortsAPendingWait) {
    const ScriptedProducer producer;
    OpenModules open(producer);
    open.OpenStream();
    std::thread other([&] {
        EXPECT_TRUE(producer.WaitForCalls("EventGetData", 1));
        EXPECT_EQ(
            open.Call<PGCUnregisterEvent>("GCUnregisterEvent", open.stream, EVENT_TYPE{EVENT_NEW_BUFFER}), 0);
    });
    char record[16];
    size_t size = sizeof record;
    const GC_ERROR result = open.Wait(open.newBuffer, record, &size, 10000);
    other.join();
    EXPECT_EQ(result, GC_ERR_ABORT);
    EXPECT_EQ(open.Wait(open.newBuffer, record, &size, 0), GC_ERR_INVALID_HANDLE);
}

TEST(ScriptedStream, ScriptAndCallsFromManyThreads) {
    const ScriptedProducer producer;
    OpenModules open(producer);
    open.OpenStream(4);
    std::vector<std::thread> threads;
    for (int n = 0; n < 4; ++n)
        threads.emplace_back([&] {
            for (int i = 0; i < 200; ++i) {
                uint32_t word = 0;
                size_t size = 4;
                open.ReadWord(0x100, &word, &size);
                producer.Answer("GCReadPort").OnCall(1).With(GC_ERR_IO).Saying("text");
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(producer.Count("GCReadPort"), 800U);
    EXPECT_EQ(producer.Log("GCReadPort").size(), 800U);
}

} // namespace
