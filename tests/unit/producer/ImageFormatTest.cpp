#include "ProducerTest.h"

namespace {

class ImageFormat : public CameraTest {
protected:
    void SetUp() override {
        CameraTest::SetUp();
        Open();
        OpenStream();
    }

    void Stop() {
        EXPECT_EQ(WriteInt(camera::AcquisitionStop, 1), GC_ERR_SUCCESS);
        EXPECT_EQ(gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    }

    uint64_t FrameId(BUFFER_HANDLE buffer) { return BufferInfo<uint64_t>(buffer, BUFFER_INFO_FRAMEID); }

    GC_ERROR SetHandling(uint32_t mode) {
        size_t size = sizeof mode;
        return gentl.GCWritePort(stream, 0x304, &mode, &size);
    }
};

class Triggers : public ImageFormat {
protected:
    void SetUp() override {
        ImageFormat::SetUp();
        MakeSmallAndFast();
        ASSERT_EQ(WriteInt(camera::TriggerMode, 1), GC_ERR_SUCCESS);
        Queue(Announce(4, 64));
        Start();
    }
};

} // namespace

TEST_F(ImageFormat, PayloadFollowsThePixelFormat) {
    MakeSmallAndFast();
    ASSERT_EQ(WriteInt(camera::PixelFormat, 0x02180014), GC_ERR_SUCCESS);
    EXPECT_EQ(StreamInfo<size_t>(STREAM_INFO_PAYLOAD_SIZE), 192U);
    ASSERT_EQ(WriteInt(camera::PixelFormat, 0x010A0046), GC_ERR_SUCCESS);
    EXPECT_EQ(StreamInfo<size_t>(STREAM_INFO_PAYLOAD_SIZE), 80U);
    Queue(Announce(1, 80));
    Start(1);
    const BUFFER_HANDLE buffer = Next();
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(BufferInfo<uint64_t>(buffer, BUFFER_INFO_PIXELFORMAT), 0x010A0046U);
    EXPECT_EQ(BufferInfo<uint64_t>(buffer, BUFFER_INFO_PIXELFORMAT_NAMESPACE),
              uint64_t{PIXELFORMAT_NAMESPACE_PFNC_32BIT});
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_SIZE_FILLED), 80U);
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_DELIVERED_IMAGEHEIGHT), 8U);
}

TEST_F(ImageFormat, BinningCutsTheRegionToWhatRemains) {
    ASSERT_EQ(WriteInt(camera::Width, 1920), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::Height, 500), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::OffsetY, 580), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::BinningHorizontal, 2), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::BinningVertical, 2), GC_ERR_SUCCESS);
    EXPECT_EQ(ReadInt(camera::WidthMax), 960U);
    EXPECT_EQ(ReadInt(camera::HeightMax), 540U);
    EXPECT_EQ(ReadInt(camera::Width), 960U);
    EXPECT_EQ(ReadInt(camera::Height), 500U);
    EXPECT_EQ(ReadInt(camera::OffsetY), 40U);
    EXPECT_EQ(WriteInt(camera::Width, 968), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(WriteInt(camera::BinningHorizontal, 3), GC_ERR_INVALID_VALUE);
}

TEST_F(ImageFormat, OldestFirstOverwriteGivesUpTheOldest) {
    MakeSmallAndFast();
    MakePaced(500, 10);
    ASSERT_EQ(SetHandling(1), GC_ERR_SUCCESS);
    Queue(Announce(3, 64));
    Start();
    EXPECT_EQ(SetHandling(0), GC_ERR_ACCESS_DENIED);
    ASSERT_TRUE(Eventually([&] { return StreamInfo<uint64_t>(STREAM_INFO_NUM_UNDERRUN) >= 5; }));
    Stop();
    EXPECT_EQ(StreamInfo<size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY), 3U);
    const uint64_t first = FrameId(Next());
    EXPECT_GE(first, 5U);
    EXPECT_EQ(FrameId(Next()), first + 1);
    EXPECT_EQ(FrameId(Next()), first + 2);
}

TEST_F(ImageFormat, NewestOnlyKeepsOne) {
    MakeSmallAndFast();
    MakePaced(500, 10);
    ASSERT_EQ(SetHandling(2), GC_ERR_SUCCESS);
    Queue(Announce(3, 64));
    Start();
    ASSERT_TRUE(Eventually([&] { return StreamInfo<uint64_t>(STREAM_INFO_NUM_UNDERRUN) >= 5; }));
    Stop();
    EXPECT_EQ(StreamInfo<size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY), 1U);
    EXPECT_EQ(StreamInfo<size_t>(STREAM_INFO_NUM_QUEUED), 2U);
    const BUFFER_HANDLE newest = Next();
    EXPECT_EQ(FrameId(newest) + 1, StreamInfo<uint64_t>(STREAM_INFO_NUM_STARTED));
    EXPECT_EQ(SetHandling(3), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(SetHandling(0), GC_ERR_SUCCESS);
}

TEST_F(Triggers, EachMakesAFrame) {
    EXPECT_EQ(Next(20), nullptr);
    for (uint64_t i = 0; i < 3; ++i) {
        ASSERT_EQ(WriteInt(camera::TriggerSoftware, 1), GC_ERR_SUCCESS);
        const BUFFER_HANDLE buffer = Next();
        ASSERT_NE(buffer, nullptr);
        EXPECT_EQ(FrameId(buffer), i);
    }
    EXPECT_EQ(Next(20), nullptr);
}

TEST_F(Triggers, OfAnotherSourceAreNone) {
    ASSERT_EQ(WriteInt(camera::TriggerSource, 1), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::TriggerSoftware, 1), GC_ERR_SUCCESS);
    EXPECT_EQ(Next(20), nullptr);
}

TEST_F(Triggers, AreDelayed) {
    ASSERT_EQ(WriteFloat(camera::TriggerDelay, 30000), GC_ERR_SUCCESS);
    const auto before = std::chrono::steady_clock::now();
    ASSERT_EQ(WriteInt(camera::TriggerSoftware, 1), GC_ERR_SUCCESS);
    ASSERT_NE(Next(), nullptr);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(30));
}

TEST_F(Triggers, SwitchedOffLetFramesFlow) {
    ASSERT_EQ(WriteInt(camera::TriggerMode, 0), GC_ERR_SUCCESS);
    EXPECT_NE(Next(), nullptr);
}
