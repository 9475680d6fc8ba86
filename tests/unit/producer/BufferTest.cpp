#include "ProducerTest.h"

#include <thread>

namespace {

class Buffers : public CameraTest {
protected:
    void SetUp() override {
        CameraTest::SetUp();
        Open();
        OpenStream();
        MakeSmallAndFast();
    }

    /// One buffer idle, one in the input pool, one being exposed and one in the output queue, in that order.
    std::vector<BUFFER_HANDLE> OneAtEachPlace() {
        auto buffers = Announce(4, 64);
        Queue({buffers[3]});
        Start(1);
        EXPECT_TRUE(Eventually([&] { return StreamInfo<size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY) >= 1; }));
        EXPECT_EQ(WriteInt(camera::AcquisitionStop, 1), GC_ERR_SUCCESS);
        EXPECT_EQ(gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
        MakePaced(1, 1e6);
        Queue({buffers[2]});
        Start();
        EXPECT_TRUE(Eventually([&] { return BufferInfo<bool>(buffers[2], BUFFER_INFO_IS_ACQUIRING); }));
        Queue({buffers[1]});
        return buffers;
    }

    void Flush(ACQ_QUEUE_TYPE operation) { ASSERT_EQ(gentl.DSFlushQueue(stream, operation), GC_ERR_SUCCESS); }

    void ExpectCounts(size_t queued, size_t awaiting) {
        EXPECT_EQ(StreamInfo<size_t>(STREAM_INFO_NUM_QUEUED), queued);
        EXPECT_EQ(StreamInfo<size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY), awaiting);
    }

    bool IsQueued(BUFFER_HANDLE buffer) { return BufferInfo<bool>(buffer, BUFFER_INFO_IS_QUEUED); }
};

} // namespace

TEST_F(Buffers, StartFromEachPlace) {
    const auto buffers = OneAtEachPlace();
    ExpectCounts(2, 1);
    EXPECT_FALSE(IsQueued(buffers[0]));
    EXPECT_TRUE(IsQueued(buffers[1]));
    EXPECT_TRUE(IsQueued(buffers[2]));
    EXPECT_TRUE(IsQueued(buffers[3]));
}

TEST_F(Buffers, FlushInputToOutputLeavesTheOneBeingFilled) {
    const auto buffers = OneAtEachPlace();
    Flush(ACQ_QUEUE_INPUT_TO_OUTPUT);
    ExpectCounts(1, 2);
    EXPECT_EQ(Next(0), buffers[3]);
    EXPECT_TRUE(BufferInfo<bool>(buffers[3], BUFFER_INFO_NEW_DATA));
    EXPECT_EQ(Next(0), buffers[1]);
    EXPECT_FALSE(BufferInfo<bool>(buffers[1], BUFFER_INFO_NEW_DATA));
    EXPECT_TRUE(BufferInfo<bool>(buffers[2], BUFFER_INFO_IS_ACQUIRING));
}

TEST_F(Buffers, FlushOutputDiscardDropsTheEvents) {
    const auto buffers = OneAtEachPlace();
    Flush(ACQ_QUEUE_OUTPUT_DISCARD);
    ExpectCounts(2, 0);
    EXPECT_EQ(Next(0), nullptr);
    EXPECT_FALSE(IsQueued(buffers[3]));
}

TEST_F(Buffers, FlushAllToInputTakesTheOneBeingFilledToo) {
    const auto buffers = OneAtEachPlace();
    Flush(ACQ_QUEUE_ALL_TO_INPUT);
    ExpectCounts(3, 0);
    EXPECT_FALSE(BufferInfo<bool>(buffers[2], BUFFER_INFO_IS_ACQUIRING));
    EXPECT_FALSE(IsQueued(buffers[0]));
    EXPECT_FALSE(BufferInfo<bool>(buffers[3], BUFFER_INFO_NEW_DATA));
}

TEST_F(Buffers, FlushUnqueuedToInputTakesOnlyIdleOnes) {
    const auto buffers = OneAtEachPlace();
    Flush(ACQ_QUEUE_UNQUEUED_TO_INPUT);
    ExpectCounts(3, 1);
    EXPECT_TRUE(IsQueued(buffers[0]));
    EXPECT_TRUE(BufferInfo<bool>(buffers[2], BUFFER_INFO_IS_ACQUIRING));
}

TEST_F(Buffers, FlushAllDiscardFreesEverything) {
    const auto buffers = OneAtEachPlace();
    Flush(ACQ_QUEUE_ALL_DISCARD);
    ExpectCounts(0, 0);
    for (BUFFER_HANDLE buffer : buffers)
        EXPECT_EQ(gentl.DSRevokeBuffer(stream, buffer, nullptr, nullptr), GC_ERR_SUCCESS);
    EXPECT_EQ(StreamInfo<size_t>(STREAM_INFO_NUM_ANNOUNCED), 0U);
}

TEST_F(Buffers, UnknownFlushIsNotImplemented) {
    EXPECT_EQ(gentl.DSFlushQueue(stream, 5), GC_ERR_NOT_IMPLEMENTED);
}

TEST_F(Buffers, FlushWhileFramesRushLosesNoBuffer) {
    const auto buffers = Announce(4, 64);
    Queue(buffers);
    Start();
    for (int i = 0; i < 200; ++i) {
        Flush(ACQ_QUEUE_ALL_DISCARD);
        ExpectCounts(0, 0);
        Flush(ACQ_QUEUE_UNQUEUED_TO_INPUT);
        ASSERT_NE(Next(), nullptr) << i;
        Flush(ACQ_QUEUE_ALL_TO_INPUT);
    }
    Flush(ACQ_QUEUE_ALL_DISCARD);
    for (BUFFER_HANDLE buffer : buffers)
        EXPECT_EQ(gentl.DSRevokeBuffer(stream, buffer, nullptr, nullptr), GC_ERR_SUCCESS);
}

TEST_F(Buffers, IndexFollowsTheOrderOfAnnouncement) {
    const auto buffers = Announce(3, 64);
    BUFFER_HANDLE found = nullptr;
    ASSERT_EQ(gentl.DSGetBufferID(stream, 1, &found), GC_ERR_SUCCESS);
    EXPECT_EQ(found, buffers[1]);
    ASSERT_EQ(gentl.DSRevokeBuffer(stream, buffers[0], nullptr, nullptr), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.DSGetBufferID(stream, 1, &found), GC_ERR_SUCCESS);
    EXPECT_EQ(found, buffers[2]);
    EXPECT_EQ(gentl.DSGetBufferID(stream, 2, &found), GC_ERR_INVALID_INDEX);
}

TEST_F(Buffers, RevokingQueuedOrUndeliveredOnesIsBusy) {
    const auto buffers = Announce(2, 64);
    Queue(buffers);
    EXPECT_EQ(gentl.DSQueueBuffer(stream, buffers[0]), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(gentl.DSRevokeBuffer(stream, buffers[0], nullptr, nullptr), GC_ERR_BUSY);
    Start(1);
    ASSERT_TRUE(Eventually([&] { return StreamInfo<size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY) >= 1; }));
    EXPECT_EQ(gentl.DSRevokeBuffer(stream, buffers[0], nullptr, nullptr), GC_ERR_BUSY);
    ASSERT_EQ(Next(), buffers[0]);
    void* base = buffers[0];
    EXPECT_EQ(gentl.DSRevokeBuffer(stream, buffers[0], &base, nullptr), GC_ERR_SUCCESS);
    EXPECT_EQ(base, nullptr) << "memory of the producer is not handed out";
}

TEST_F(Buffers, BadAnnouncementsAreRefused) {
    BUFFER_HANDLE buffer = nullptr;
    uint8_t memory[64];
    EXPECT_EQ(gentl.DSAnnounceBuffer(stream, nullptr, 64, nullptr, &buffer), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(gentl.DSAnnounceBuffer(stream, memory, 0, nullptr, &buffer), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(gentl.DSAnnounceBuffer(stream, memory, 64, nullptr, nullptr), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(gentl.DSAllocAndAnnounceBuffer(stream, SIZE_MAX, nullptr, &buffer), GC_ERR_OUT_OF_MEMORY);
    EXPECT_EQ(StreamInfo<size_t>(STREAM_INFO_NUM_ANNOUNCED), 0U);
}

TEST_F(Buffers, ClosingTheStreamRevokesThem) {
    uint8_t memory[64];
    BUFFER_HANDLE buffer = nullptr;
    ASSERT_EQ(gentl.DSAnnounceBuffer(stream, memory, sizeof memory, nullptr, &buffer), GC_ERR_SUCCESS);
    Queue({buffer});
    Start();
    ASSERT_EQ(gentl.DSClose(stream), GC_ERR_SUCCESS);
    EVENT_HANDLE event = nullptr;
    EXPECT_EQ(gentl.GCRegisterEvent(buffer, EVENT_ERROR, &event), GC_ERR_INVALID_HANDLE);
}
