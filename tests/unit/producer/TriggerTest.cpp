// The trigger that the frames of an acquisition begin with, and the triggers of frames behind it.

#include "ProducerTest.h"

namespace {

enum Selected : uint32_t { FrameStart, AcquisitionStart };
enum Source : uint32_t { Software, Line0, Line1 };
enum Mode : uint32_t { SingleFrame = 1, MultiFrame, Continuous };

class AcquisitionTriggers : public CameraTest {
protected:
    void SetUp() override {
        CameraTest::SetUp();
        Open();
        OpenStream();
        MakeSmallAndFast();
    }

    void Write(uint64_t address, uint32_t value) { ASSERT_EQ(WriteInt(address, value), GC_ERR_SUCCESS); }

    void Await(Selected trigger, Source source = Software) {
        Write(camera::TriggerSelector, trigger);
        Write(camera::TriggerMode, 1);
        Write(camera::TriggerSource, source);
    }

    void Begin(Mode mode = Continuous, uint32_t frames = 1) {
        Write(camera::AcquisitionMode, mode);
        Write(camera::AcquisitionFrameCount, frames);
        Queue(Announce(8, 64));
        Start();
    }

    void Trigger(Selected trigger) {
        Write(camera::TriggerSelector, trigger);
        Write(camera::TriggerSoftware, 1);
    }

    void Pulse(uint64_t line) {
        Write(line, 1);
        Write(line, 0);
    }

    /// Up to so many frames, without giving a buffer back.
    size_t Frames(size_t most) {
        size_t count = 0;
        while (count < most && Next(count == 0 ? 5000 : 60) != nullptr)
            ++count;
        return count;
    }

    bool Nothing() { return Next(30) == nullptr; }
};

} // namespace

TEST_F(AcquisitionTriggers, OneStartsTheStreamOfFrames) {
    Await(AcquisitionStart);
    Begin();
    EXPECT_TRUE(Nothing());
    EXPECT_EQ(ReadInt(camera::AcquisitionActive), 1U) << "armed";
    Trigger(AcquisitionStart);
    EXPECT_EQ(Frames(8), 8U);
}

TEST_F(AcquisitionTriggers, OneStartsTheWholeRunAndTheNextRunWaitsAgain) {
    Await(AcquisitionStart);
    Begin(MultiFrame, 3);
    for (int run = 0; run < 2; ++run) {
        EXPECT_TRUE(Nothing());
        Trigger(AcquisitionStart);
        EXPECT_EQ(Frames(4), 3U);
        EXPECT_EQ(ReadInt(camera::AcquisitionActive), 0U);
        Trigger(AcquisitionStart);
        EXPECT_TRUE(Nothing()) << "nothing waits for it";
        Write(camera::AcquisitionStart, 1);
    }
}

TEST_F(AcquisitionTriggers, OneStartsASingleFrame) {
    Await(AcquisitionStart);
    Begin(SingleFrame);
    EXPECT_TRUE(Nothing());
    Trigger(AcquisitionStart);
    EXPECT_EQ(Frames(2), 1U);
}

TEST_F(AcquisitionTriggers, OfFramesCountOnlyOnceTheAcquisitionIsTriggered) {
    Await(FrameStart);
    Await(AcquisitionStart);
    Begin(MultiFrame, 2);
    Trigger(FrameStart);
    EXPECT_TRUE(Nothing());
    Trigger(AcquisitionStart);
    EXPECT_TRUE(Nothing()) << "the frame's trigger came too early";
    Trigger(AcquisitionStart);
    EXPECT_TRUE(Nothing()) << "not a frame's";
    for (int i = 0; i < 2; ++i) {
        Trigger(FrameStart);
        EXPECT_EQ(Frames(2), 1U);
    }
    EXPECT_EQ(ReadInt(camera::AcquisitionActive), 0U);
}

TEST_F(AcquisitionTriggers, SignalOfBothStartsTheAcquisitionFirst) {
    Await(FrameStart, Line1);
    Await(AcquisitionStart, Line1);
    Begin();
    Pulse(camera::SimulationLine1);
    EXPECT_TRUE(Nothing());
    Pulse(camera::SimulationLine1);
    EXPECT_EQ(Frames(2), 1U);
}

TEST_F(AcquisitionTriggers, HaveEdgesOfTheirOwn) {
    Await(FrameStart, Line0);
    Write(camera::TriggerActivation, 1);
    Await(AcquisitionStart, Line0);
    Begin();
    Write(camera::SimulationLine0, 1);
    EXPECT_TRUE(Nothing()) << "it starts the acquisition";
    Write(camera::SimulationLine0, 0);
    EXPECT_EQ(Frames(2), 1U);
    Write(camera::SimulationLine0, 1);
    EXPECT_TRUE(Nothing());
}

TEST_F(AcquisitionTriggers, AreDelayedOnceForTheWholeRun) {
    Await(AcquisitionStart);
    ASSERT_EQ(WriteFloat(camera::TriggerDelay, 40000), GC_ERR_SUCCESS);
    Begin(MultiFrame, 4);
    const auto before = std::chrono::steady_clock::now();
    Trigger(AcquisitionStart);
    Trigger(AcquisitionStart);
    BUFFER_HANDLE const first = Next();
    ASSERT_NE(first, nullptr);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(40));
    const auto firstNs = BufferInfo<uint64_t>(first, BUFFER_INFO_TIMESTAMP_NS);
    BUFFER_HANDLE last = first;
    for (int i = 0; i < 3; ++i)
        ASSERT_NE(last = Next(), nullptr);
    EXPECT_LT(BufferInfo<uint64_t>(last, BUFFER_INFO_TIMESTAMP_NS) - firstNs, 3 * 40'000'000U);
}

TEST_F(AcquisitionTriggers, DelayedEndWithTheirAcquisition) {
    Await(AcquisitionStart);
    ASSERT_EQ(WriteFloat(camera::TriggerDelay, 20000), GC_ERR_SUCCESS);
    Begin();
    Trigger(AcquisitionStart);
    Write(camera::AcquisitionStop, 1);
    Write(camera::AcquisitionStart, 1);
    EXPECT_EQ(Next(60), nullptr) << "the delay was one of the acquisition before";
}

TEST_F(AcquisitionTriggers, SwitchedOffLetFramesBegin) {
    Await(AcquisitionStart);
    Begin();
    EXPECT_TRUE(Nothing());
    Write(camera::TriggerMode, 0);
    EXPECT_NE(Next(), nullptr);
}

TEST_F(AcquisitionTriggers, SwitchedOnMeanwhileWaitForTheNextAcquisition) {
    Begin();
    EXPECT_NE(Next(), nullptr);
    Await(AcquisitionStart);
    EXPECT_NE(Next(), nullptr);
    Write(camera::AcquisitionStop, 1);
    while (Next(30) != nullptr)
        ;
    Queue(Announce(2, 64));
    Write(camera::AcquisitionStart, 1);
    EXPECT_TRUE(Nothing());
}

TEST_F(AcquisitionTriggers, KeepSettingsOfTheirOwnAlsoInUserSets) {
    const auto read = [this](uint32_t trigger) {
        Write(camera::TriggerSelector, trigger);
        return std::vector<uint32_t>{ReadInt(camera::TriggerMode), ReadInt(camera::TriggerSource),
                                     ReadInt(camera::TriggerActivation)};
    };
    Await(AcquisitionStart, Line1);
    Write(camera::TriggerActivation, 2);
    EXPECT_EQ(read(FrameStart), (std::vector<uint32_t>{0, 0, 0}));
    EXPECT_EQ(read(AcquisitionStart), (std::vector<uint32_t>{1, 2, 2}));
    Write(camera::UserSetSelector, 1);
    Write(camera::UserSetSave, 1);
    Write(camera::TriggerMode, 0);
    Write(camera::UserSetLoad, 1);
    EXPECT_EQ(read(FrameStart), (std::vector<uint32_t>{0, 0, 0}));
    EXPECT_EQ(read(AcquisitionStart), (std::vector<uint32_t>{1, 2, 2}));
    EXPECT_EQ(WriteInt(camera::TriggerSelector, 2), GC_ERR_INVALID_VALUE);
}
