#include "ProducerTest.h"

#include <chrono>
#include <thread>

namespace {

class StreamFlow : public CameraTest {
protected:
    void SetUp() override {
        CameraTest::SetUp();
        Open();
        OpenStream();
    }
};

using Clock = std::chrono::steady_clock;

} // namespace

TEST_F(StreamFlow, DeliversNumberedFramesOfTheMovingPattern) {
    MakeSmallAndFast();
    Queue(Announce(4, 64));
    Start();
    uint64_t lastTime = 0;
    for (uint64_t id = 0; id < 1000; ++id) {
        const BUFFER_HANDLE buffer = Next();
        ASSERT_NE(buffer, nullptr) << lastResult;
        EXPECT_EQ(BufferInfo<uint64_t>(buffer, BUFFER_INFO_FRAMEID), id);
        const auto* pixels = BufferInfo<const uint8_t*>(buffer, BUFFER_INFO_BASE);
        for (unsigned y = 0; y < 8; ++y) {
            for (unsigned x = 0; x < 8; ++x)
                ASSERT_EQ(pixels[8 * y + x], (x + y + id) % 256);
        }
        const auto time = BufferInfo<uint64_t>(buffer, BUFFER_INFO_TIMESTAMP);
        EXPECT_GT(time, lastTime);
        lastTime = time;
        ASSERT_EQ(gentl.DSQueueBuffer(stream, buffer), GC_ERR_SUCCESS);
    }
    EXPECT_EQ(StreamInfo<uint64_t>(STREAM_INFO_NUM_UNDERRUN), 0U);
}

TEST_F(StreamFlow, FrameIsDescribed) {
    ASSERT_EQ(WriteInt(camera::Width, 16), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::Height, 4), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::OffsetX, 24), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::OffsetY, 3), GC_ERR_SUCCESS);
    EXPECT_EQ(StreamInfo<size_t>(STREAM_INFO_PAYLOAD_SIZE), 64U);
    EXPECT_TRUE(StreamInfo<bool>(STREAM_INFO_DEFINES_PAYLOADSIZE));
    Queue(Announce(1, 100));
    Start();
    const BUFFER_HANDLE buffer = Next();
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_SIZE), 100U);
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_SIZE_FILLED), 64U);
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_DATA_SIZE), 64U);
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_WIDTH), 16U);
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_HEIGHT), 4U);
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_DELIVERED_IMAGEHEIGHT), 4U);
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_XOFFSET), 24U);
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_YOFFSET), 3U);
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_XPADDING), 0U);
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_YPADDING), 0U);
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_IMAGEOFFSET), 0U);
    EXPECT_EQ(BufferInfo<uint64_t>(buffer, BUFFER_INFO_PIXELFORMAT), 0x01080001U);
    EXPECT_EQ(BufferInfo<uint64_t>(buffer, BUFFER_INFO_PIXELFORMAT_NAMESPACE), 4U);
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_PAYLOADTYPE), 1U);
    EXPECT_TRUE(BufferInfo<bool>(buffer, BUFFER_INFO_NEW_DATA));
    EXPECT_TRUE(BufferInfo<bool>(buffer, BUFFER_INFO_IMAGEPRESENT));
    EXPECT_FALSE(BufferInfo<bool>(buffer, BUFFER_INFO_IS_INCOMPLETE));
    EXPECT_FALSE(BufferInfo<bool>(buffer, BUFFER_INFO_IS_QUEUED));
    EXPECT_FALSE(BufferInfo<bool>(buffer, BUFFER_INFO_CONTAINS_CHUNKDATA));
    EXPECT_EQ(BufferInfoResult(buffer, BUFFER_INFO_FILENAME), GC_ERR_NO_DATA);
    EXPECT_EQ(BufferInfoResult(buffer, BUFFER_INFO_IS_COMPOSITE), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(BufferInfo<uint8_t*>(buffer, BUFFER_INFO_BASE)[17], 24 + 1 + 3 + 1);
}

TEST_F(StreamFlow, QueueingForgetsTheFrame) {
    MakeSmallAndFast();
    const auto buffers = Announce(1, 64);
    EXPECT_EQ(BufferInfoResult(buffers[0], BUFFER_INFO_FRAMEID), GC_ERR_NOT_AVAILABLE);
    Queue(buffers);
    Start(1);
    ASSERT_EQ(Next(), buffers[0]);
    Queue(buffers);
    EXPECT_EQ(BufferInfo<size_t>(buffers[0], BUFFER_INFO_SIZE_FILLED), 0U);
    EXPECT_EQ(BufferInfo<size_t>(buffers[0], BUFFER_INFO_DATA_SIZE), 0U);
    EXPECT_FALSE(BufferInfo<bool>(buffers[0], BUFFER_INFO_NEW_DATA));
    EXPECT_TRUE(BufferInfo<bool>(buffers[0], BUFFER_INFO_IS_QUEUED));
}

TEST_F(StreamFlow, UserPointerComesWithTheBuffer) {
    MakeSmallAndFast();
    uint8_t memory[64];
    int user = 0;
    BUFFER_HANDLE announced = nullptr;
    ASSERT_EQ(gentl.DSAnnounceBuffer(stream, memory, sizeof memory, &user, &announced), GC_ERR_SUCCESS);
    Queue({announced});
    Start(1);
    EVENT_NEW_BUFFER_DATA data{};
    size_t size = sizeof data;
    ASSERT_EQ(gentl.EventGetData(newBuffer, &data, &size, 5000), GC_ERR_SUCCESS);
    EXPECT_EQ(data.BufferHandle, announced);
    EXPECT_EQ(data.pUserPointer, &user);
    EXPECT_EQ(memory[63], 14);
    EXPECT_EQ(BufferInfo<void*>(announced, BUFFER_INFO_USER_PTR), &user);
}

TEST_F(StreamFlow, NothingFlowsUntilStreamAndCameraAreStarted) {
    MakeSmallAndFast();
    Queue(Announce(2, 64));
    ASSERT_EQ(WriteInt(camera::AcquisitionStart, 1), GC_ERR_SUCCESS);
    EXPECT_EQ(Next(20), nullptr);
    EXPECT_EQ(lastResult, GC_ERR_TIMEOUT);
    ASSERT_EQ(WriteInt(camera::AcquisitionStop, 1), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE), GC_ERR_SUCCESS);
    EXPECT_TRUE(StreamInfo<bool>(STREAM_INFO_IS_GRABBING));
    EXPECT_EQ(Next(20), nullptr);
    ASSERT_EQ(WriteInt(camera::AcquisitionStart, 1), GC_ERR_SUCCESS);
    const BUFFER_HANDLE buffer = Next();
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(BufferInfo<uint64_t>(buffer, BUFFER_INFO_FRAMEID), 0U);
}

TEST_F(StreamFlow, WithoutPaceTheCameraWaitsForABuffer) {
    MakeSmallAndFast();
    const auto buffers = Announce(2, 64);
    Queue(buffers);
    Start();
    ASSERT_EQ(Next(), buffers[0]);
    ASSERT_EQ(Next(), buffers[1]);
    EXPECT_EQ(Next(30), nullptr);
    Queue({buffers[1]});
    ASSERT_EQ(Next(), buffers[1]);
    EXPECT_EQ(BufferInfo<uint64_t>(buffers[1], BUFFER_INFO_FRAMEID), 2U);
    EXPECT_EQ(StreamInfo<uint64_t>(STREAM_INFO_NUM_UNDERRUN), 0U);
    EXPECT_EQ(StreamInfo<uint64_t>(STREAM_INFO_NUM_STARTED), 3U);
}

TEST_F(StreamFlow, EveryRunKeepsThePeriodFromItsFirstFrameOn) {
    MakeSmallAndFast();
    MakePaced(50, 10);
    ASSERT_EQ(WriteInt(camera::AcquisitionMode, 2), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::AcquisitionFrameCount, 2), GC_ERR_SUCCESS);
    Queue(Announce(6, 64));
    Start();
    for (int run = 0; run < 3; ++run) {
        const BUFFER_HANDLE first = Next();
        const BUFFER_HANDLE second = Next();
        ASSERT_NE(second, nullptr);
        EXPECT_GE(BufferInfo<uint64_t>(second, BUFFER_INFO_TIMESTAMP_NS),
                  BufferInfo<uint64_t>(first, BUFFER_INFO_TIMESTAMP_NS) + 19'000'000)
            << "run " << run;
        ASSERT_EQ(WriteInt(camera::AcquisitionStart, 1), GC_ERR_SUCCESS);
    }
}

TEST_F(StreamFlow, PacedCameraLosesFramesThatFindNoBuffer) {
    MakePaced(500, 100);
    const auto buffers = Announce(2, 640 * 480);
    Queue(buffers);
    Start();
    ASSERT_EQ(Next(), buffers[0]);
    ASSERT_EQ(Next(), buffers[1]);
    ASSERT_TRUE(Eventually([&] { return StreamInfo<uint64_t>(STREAM_INFO_NUM_UNDERRUN) >= 3; }));
    Queue({buffers[0]});
    ASSERT_EQ(Next(), buffers[0]);
    ASSERT_EQ(WriteInt(camera::AcquisitionStop, 1), GC_ERR_SUCCESS);
    const auto id = BufferInfo<uint64_t>(buffers[0], BUFFER_INFO_FRAMEID);
    EXPECT_GE(id, 5U);
    // No frame can come any more, so every id used up was delivered or lost.
    ASSERT_EQ(gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    EXPECT_GE(StreamInfo<uint64_t>(STREAM_INFO_NUM_UNDERRUN), id - 2);
    EXPECT_EQ(StreamInfo<uint64_t>(STREAM_INFO_NUM_STARTED), 3U);
    EXPECT_EQ(StreamInfo<uint64_t>(STREAM_INFO_NUM_DELIVERED), 3U);
}

TEST_F(StreamFlow, PacedTimestampsAreOnePeriodApart) {
    MakePaced(200, 1000);
    Queue(Announce(8, 640 * 480));
    Start(4);
    uint64_t last = 0;
    for (int i = 0; i < 4; ++i) {
        const BUFFER_HANDLE buffer = Next();
        ASSERT_NE(buffer, nullptr);
        const auto time = BufferInfo<uint64_t>(buffer, BUFFER_INFO_TIMESTAMP_NS);
        if (i > 0) {
            EXPECT_EQ(time - last, 5000000U);
        }
        last = time;
    }
    const auto now = std::chrono::nanoseconds(Clock::now().time_since_epoch()).count();
    EXPECT_LT(last, static_cast<uint64_t>(now));
}

TEST_F(StreamFlow, FrameLargerThanItsBufferIsIncomplete) {
    Queue(Announce(1, 1000));
    Start();
    const BUFFER_HANDLE buffer = Next();
    ASSERT_NE(buffer, nullptr);
    EXPECT_TRUE(BufferInfo<bool>(buffer, BUFFER_INFO_IS_INCOMPLETE));
    EXPECT_TRUE(BufferInfo<bool>(buffer, BUFFER_INFO_DATA_LARGER_THAN_BUFFER));
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_SIZE_FILLED), 1000U);
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_DELIVERED_IMAGEHEIGHT), 1U);
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_HEIGHT), 480U);
}

TEST_F(StreamFlow, FiniteStreamStopsItselfAndStillOwesTheStop) {
    MakeSmallAndFast();
    Queue(Announce(4, 64));
    Start(3);
    for (int i = 0; i < 3; ++i)
        ASSERT_NE(Next(), nullptr);
    EXPECT_EQ(Next(20), nullptr);
    EXPECT_FALSE(StreamInfo<bool>(STREAM_INFO_IS_GRABBING));
    EXPECT_EQ(StreamInfo<uint64_t>(STREAM_INFO_NUM_DELIVERED), 3U);
    EXPECT_EQ(gentl.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, 3), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_RESOURCE_IN_USE);
}

TEST_F(StreamFlow, MultiFrameAndSingleFrameEndByThemselves) {
    MakeSmallAndFast();
    ASSERT_EQ(WriteInt(camera::AcquisitionMode, 2), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::AcquisitionFrameCount, 3), GC_ERR_SUCCESS);
    Queue(Announce(8, 64));
    Start();
    for (int i = 0; i < 3; ++i)
        ASSERT_NE(Next(), nullptr);
    EXPECT_EQ(Next(20), nullptr);
    EXPECT_TRUE(StreamInfo<bool>(STREAM_INFO_IS_GRABBING));
    ASSERT_EQ(WriteInt(camera::AcquisitionMode, 1), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::AcquisitionStart, 1), GC_ERR_SUCCESS);
    const BUFFER_HANDLE buffer = Next();
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(BufferInfo<uint64_t>(buffer, BUFFER_INFO_FRAMEID), 0U);
    EXPECT_EQ(Next(20), nullptr);
}

TEST_F(StreamFlow, StartNeedsFramesAndBuffers) {
    EXPECT_EQ(gentl.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, 0), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(gentl.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, 1), GC_ERR_INVALID_BUFFER);
    EXPECT_EQ(gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(StreamInfo<size_t>(STREAM_INFO_BUF_ANNOUNCE_MIN), 1U);
}

TEST_F(StreamFlow, StoppedStreamKeepsItsFilledBuffers) {
    MakeSmallAndFast();
    Queue(Announce(4, 64));
    Start(2);
    ASSERT_TRUE(Eventually([&] { return StreamInfo<size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY) >= 2; }));
    ASSERT_EQ(gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    EXPECT_EQ(StreamInfo<size_t>(STREAM_INFO_NUM_QUEUED), 2U);
    EXPECT_NE(Next(0), nullptr);
    EXPECT_NE(Next(0), nullptr);
    EXPECT_EQ(Next(0), nullptr);
}

TEST_F(StreamFlow, KillDeliversTheFrameAtHandIncomplete) {
    MakePaced(1, 1e6);
    const auto buffers = Announce(1, 640 * 480);
    Queue(buffers);
    Start();
    ASSERT_TRUE(Eventually([&] { return BufferInfo<bool>(buffers[0], BUFFER_INFO_IS_ACQUIRING); }));
    EXPECT_EQ(gentl.DSRevokeBuffer(stream, buffers[0], nullptr, nullptr), GC_ERR_BUSY);
    EXPECT_EQ(gentl.DSQueueBuffer(stream, buffers[0]), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(StreamInfo<size_t>(STREAM_INFO_NUM_QUEUED), 1U);
    const auto before = Clock::now();
    ASSERT_EQ(gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_KILL), GC_ERR_SUCCESS);
    ASSERT_EQ(Next(0), buffers[0]);
    EXPECT_LT(Clock::now() - before, std::chrono::milliseconds(500));
    EXPECT_TRUE(BufferInfo<bool>(buffers[0], BUFFER_INFO_IS_INCOMPLETE));
    EXPECT_EQ(BufferInfo<size_t>(buffers[0], BUFFER_INFO_SIZE_FILLED), 0U);
    EXPECT_EQ(BufferInfo<uint64_t>(buffers[0], BUFFER_INFO_FRAMEID), 0U);
}

TEST_F(StreamFlow, DefaultStopFinishesTheFrameAtHand) {
    MakePaced(10, 1e5);
    const auto buffers = Announce(1, 640 * 480);
    Queue(buffers);
    Start();
    ASSERT_TRUE(Eventually([&] { return BufferInfo<bool>(buffers[0], BUFFER_INFO_IS_ACQUIRING); }));
    ASSERT_EQ(gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    ASSERT_EQ(Next(0), buffers[0]);
    EXPECT_FALSE(BufferInfo<bool>(buffers[0], BUFFER_INFO_IS_INCOMPLETE));
}

TEST_F(StreamFlow, RestartedStreamCountsDeliveriesAnew) {
    MakeSmallAndFast();
    const auto buffers = Announce(2, 64);
    Queue(buffers);
    Start(2);
    ASSERT_NE(Next(), nullptr);
    ASSERT_NE(Next(), nullptr);
    ASSERT_EQ(WriteInt(camera::AcquisitionStop, 1), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    Queue({buffers[0]});
    Start(1);
    ASSERT_EQ(Next(), buffers[0]);
    EXPECT_EQ(BufferInfo<uint64_t>(buffers[0], BUFFER_INFO_FRAMEID), 0U);
    EXPECT_EQ(StreamInfo<uint64_t>(STREAM_INFO_NUM_DELIVERED), 1U);
    EXPECT_EQ(StreamInfo<uint64_t>(STREAM_INFO_NUM_STARTED), 3U);
}
