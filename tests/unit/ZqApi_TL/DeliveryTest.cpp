#include <array>
#include <atomic>

#include "tests/unit/ZqApi_TL/OpenedStream.h"

namespace ZqTest {
namespace {

using Clock = std::chrono::steady_clock;

int64_t MillisecondsSince(Clock::time_point start) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

class Delivery : public OpenedStream {
protected:
    std::string RetrieveFails(uint32_t timeoutMs) {
        const Thrown thrown =
            Catch<GenICam::TimeoutException>([&] { stream->RetrieveBuffer(timeoutMs, ThrowException); });
        EXPECT_EQ(thrown.source, "ZqApi_TL/ZqDataStream");
        return thrown.text;
    }

    /// The new-buffer event's waits fail from now on, `times` times.
    void FailWaiting(GC_ERROR result, uint64_t times = 1) {
        producer.Answer("EventGetData").On("DS1").Event(EVENT_NEW_BUFFER).Times(times).With(result);
    }
};

TEST_F(Delivery, NothingToRetrieveBeforeTheFirstStart) {
    const auto start = Clock::now();
    EXPECT_FALSE(Retrieve(5000, ThrowException));
    EXPECT_FALSE(Retrieve(INFINITE, ThrowException));
    EXPECT_LT(MillisecondsSince(start), 50);
}

TEST_F(Delivery, EmptyQueueAnswersAtOnceWithoutATimeout) {
    Start();
    EXPECT_FALSE(Retrieve(0, ReturnNull));
    EXPECT_EQ(RetrieveFails(0),
              "A timeout occurred during the processing of IZqDataStream::RetrieveBuffer(0, 1)");
}

TEST_F(Delivery, TimeoutElapses) {
    Start();
    const auto start = Clock::now();
    EXPECT_EQ(RetrieveFails(30),
              "A timeout occurred during the processing of IZqDataStream::RetrieveBuffer(30, 1)");
    EXPECT_GE(MillisecondsSince(start), 29);
    EXPECT_FALSE(Retrieve(30));
    EXPECT_GE(MillisecondsSince(start), 59);
}

TEST_F(Delivery, OtherHandlingsCountAsNull) {
    Start();
    EXPECT_FALSE(Retrieve(0, static_cast<EZqTimeoutHandling_t>(2)));
    EXPECT_FALSE(Retrieve(0, static_cast<EZqTimeoutHandling_t>(-1)));
}

TEST_F(Delivery, WaitingReaderGetsTheFrame) {
    Start();
    Buffer retrieved;
    {
        const SleepyThread reader([&] { retrieved = Retrieve(INFINITE); });
        reader.WaitUntilAsleep();
        EXPECT_TRUE(producer.PushFrame("DS1", Frame("pixels")));
    }
    ASSERT_TRUE(retrieved);
    EXPECT_EQ(retrieved->GetIZqStreamBufferInfo()->GetSizeFilled(), 6u);
}

TEST_F(Delivery, FramesWaitingAreDrainedAfterAStop) {
    Start();
    PushUnread(3);
    Stop();
    for (uint64_t frame = 1; frame <= 3; ++frame) {
        const Buffer buffer = Retrieve(INFINITE, ThrowException);
        ASSERT_TRUE(buffer);
        EXPECT_EQ(buffer->GetIZqStreamBufferInfo()->GetFrameID(), frame);
    }
    EXPECT_FALSE(Retrieve(INFINITE, ThrowException));
}

TEST_F(Delivery, OneFrameServesOneOfTwoReaders) {
    Start();
    std::atomic<int> served{0};
    std::array<std::thread, 2> readers;
    for (std::thread& reader : readers)
        reader = std::thread([&] {
            if (Retrieve(INFINITE, ThrowException))
                ++served;
        });
    EXPECT_TRUE(producer.PushFrame("DS1"));
    EXPECT_TRUE(Eventually([&] { return served == 1; }));
    std::this_thread::yield();
    EXPECT_EQ(served, 1);
    EXPECT_TRUE(producer.PushFrame("DS1"));
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_EQ(served, 2);
}

TEST_F(Delivery, ReaderThatWasTooLateStillWaitsItsWholeTime) {
    Start();
    const auto start = Clock::now();
    std::atomic<int> served{0};
    std::array<std::thread, 4> readers;
    for (std::thread& reader : readers)
        reader = std::thread([&] {
            if (Retrieve(200))
                ++served;
            else
                EXPECT_GE(MillisecondsSince(start), 199);
        });
    EXPECT_TRUE(producer.PushFrame("DS1"));
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_EQ(served, 1);
}

TEST_F(Delivery, ReleasedBufferIsQueuedAgain) {
    Start();
    Buffer buffer = RetrieveNewFrame();
    producer.ClearLog();
    buffer.reset();
    EXPECT_EQ(producer.Log(), (Calls{"DSQueueBuffer(DS1, BUF1)"}));
}

TEST_F(Delivery, SecondReleaseIsRefusedByTheProducer) {
    Start();
    IZqStreamBufferReleasable* const buffer = RetrieveNewFrame().release();
    buffer->Release();
    const Thrown thrown = CatchProducerError([&] { buffer->Release(); });
    EXPECT_EQ(thrown.text, "-1004 = DSQueueBuffer(PTR, PTR)");
    EXPECT_EQ(thrown.function, "DSQueueBuffer");
    EXPECT_EQ(thrown.error, -1004);
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqDataStream");
}

TEST_F(Delivery, SteadyStateAsksTheProducerOnlyWhatItMust) {
    Start();
    RetrieveNewFrame();
    EXPECT_TRUE(producer.PushFrame("DS1", Frame("pixels")));
    producer.ClearLog();
    Retrieve();
    Calls calls = producer.Log();
    // Asked by the event thread, possibly before the log was cleared: complete? how many bytes?
    calls.erase(
        std::remove_if(calls.begin(), calls.end(),
                       [](const std::string& call) { return call.find(", 27, ") != std::string::npos; }),
        calls.end());
    EXPECT_LE(calls.size(), 4u);
    EXPECT_EQ(calls.back(), "DSQueueBuffer(DS1, BUF2)");
}

TEST_F(Delivery, EveryFrameIsToldToTheCallbacks) {
    std::atomic<int> told{0};
    std::atomic<bool> asExpected{true};
    stream->RegisterCallback(MakeCallback([&](IZqCallbackParamBase* pParam) {
        auto* const newBuffer = static_cast<IZqCallbackParamGenTLEventNewBuffer*>(pParam);
        if (pParam->GetCallbackType() != 5 || newBuffer->GetIZqDataStream() != stream.get())
            asExpected = false;
        ++told;
    }));
    Start();
    PushUnread(3);
    EXPECT_TRUE(Eventually([&] { return told == 3; }));
    EXPECT_TRUE(asExpected);
    EXPECT_TRUE(Retrieve(0));
}

TEST_F(Delivery, CallbackMayRetrieveAndRelease) {
    std::atomic<uint64_t> last{0};
    stream->RegisterCallback(MakeCallback([&](IZqCallbackParamBase*) {
        const Buffer buffer = Retrieve(0);
        last = buffer ? buffer->GetIZqStreamBufferInfo()->GetFrameID() : 0;
    }));
    producer.AutoStream(100);
    Start();
    EXPECT_TRUE(Eventually([&] { return last == 100; }));
}

TEST_F(Delivery, FailedWaitIsThrownOnceAndTheStreamGoesOn) {
    FailWaiting(GC_ERR_IO);
    Start();
    const Thrown thrown = CatchProducerError([this] { stream->RetrieveBuffer(10000, ThrowException); });
    EXPECT_EQ(thrown.text.substr(0, 40), "-1010 = EventGetData(PTR PTR, 16, 500)");
    EXPECT_EQ(thrown.function, "EventGetData");
    EXPECT_EQ(thrown.error, -1010);
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqDataStream");
    EXPECT_FALSE(Retrieve(0));
    EXPECT_TRUE(RetrieveNewFrame());
}

TEST_F(Delivery, DeniedAccessIsThrownAndNothingComesUntilARestart) {
    FailWaiting(GC_ERR_ACCESS_DENIED);
    Start();
    EXPECT_EQ(CatchProducerError([this] { stream->RetrieveBuffer(10000, ThrowException); }).error, -1005);
    EXPECT_TRUE(producer.PushFrame("DS1"));
    EXPECT_FALSE(Retrieve(30));
    Stop();
    Start();
    EXPECT_TRUE(RetrieveNewFrame());
}

TEST_F(Delivery, FrameComesBeforeAnError) {
    Start();
    PushUnread(1);
    FailWaiting(GC_ERR_ACCESS_DENIED);
    EXPECT_TRUE(producer.PushFrame("DS1"));
    EXPECT_TRUE(Eventually([this] {
        const Calls waits = producer.Log("EventGetData");
        return std::find(waits.begin(), waits.end(), "EventGetData(DS1/1, 16, 500) = -1005") != waits.end();
    }));
    EXPECT_TRUE(Retrieve(INFINITE));
}

TEST_F(Delivery, LossReleasesABlockedReader) {
    Start();
    Thrown thrown;
    {
        const SleepyThread reader([&] {
            thrown =
                Catch<GenICam::AccessException>([this] { stream->RetrieveBuffer(INFINITE, ReturnNull); });
        });
        reader.WaitUntilAsleep();
        EXPECT_TRUE(producer.PushDeviceLost("DEV1"));
    }
    EXPECT_EQ(thrown.text, "The device is lost.");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqDataStream");
    EXPECT_TRUE(device->IsDeviceLost());
}

TEST_F(Delivery, FramesWaitingAreRetrievedAfterALoss) {
    Start();
    PushUnread(1);
    EXPECT_TRUE(producer.PushDeviceLost("DEV1"));
    EXPECT_TRUE(Eventually([this] { return device->IsDeviceLost(); }));
    EXPECT_TRUE(Retrieve(INFINITE));
    EXPECT_EQ(Catch<GenICam::AccessException>([this] { stream->RetrieveBuffer(0, ReturnNull); }).text,
              "The device is lost.");
    Stop();
    EXPECT_FALSE(Retrieve(0));
}

TEST_F(Delivery, StopBeatsALoss) {
    EXPECT_TRUE(producer.PushDeviceLost("DEV1"));
    EXPECT_TRUE(Eventually([this] { return device->IsDeviceLost(); }));
    EXPECT_FALSE(Retrieve(INFINITE, ThrowException));
}

TEST_F(Delivery, ReleaseOfTheStreamWaitsForItsReaders) {
    Start();
    const Latch latch(producer.Answer("DSGetBufferInfo").Command(BUFFER_INFO_PAYLOADTYPE));
    PushUnread(1);
    std::atomic<bool> released{false};
    std::thread reader([this] { stream->RetrieveBuffer(INFINITE, ReturnNull); });
    EXPECT_TRUE(latch.WaitUntilHeld());
    IZqDataStreamReleasable* const doomed = stream.release();
    std::thread releasing([&] {
        doomed->Release();
        released = true;
    });
    EXPECT_TRUE(producer.WaitForCalls("DSStopAcquisition", 1));
    EXPECT_FALSE(producer.WaitForCalls("DSRevokeBuffer", 1, 50));
    EXPECT_FALSE(released);
    latch.Release();
    reader.join();
    releasing.join();
}

TEST_F(Delivery, StopFollowedAtOnceByAStartReleasesABlockedReader) {
    for (int round = 0; round < 200; ++round) {
        Start();
        {
            const SleepyThread reader([this] { EXPECT_FALSE(Retrieve(INFINITE)); });
            reader.WaitUntilAsleep();
            Stop();
            Start();
            ASSERT_TRUE(Eventually([&] { return reader.HasEnded(); })) << round;
        }
        Stop();
    }
}

} // namespace
} // namespace ZqTest
