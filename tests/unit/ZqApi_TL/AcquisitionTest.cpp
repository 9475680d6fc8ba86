#include <algorithm>
#include <array>
#include <atomic>
#include <functional>

#include "tests/unit/ZqApi_TL/OpenedStream.h"

namespace ZqTest {
namespace {

class Acquisition : public OpenedStream {
protected:
    explicit Acquisition(const std::string& variant = "full") : OpenedStream(variant) {}

    Thrown StartFails() {
        return CatchProducerError([this] { Start(); });
    }
    void LoseTheDevice() {
        EXPECT_TRUE(producer.PushDeviceLost("DEV1"));
        EXPECT_TRUE(Eventually([this] { return device->IsDeviceLost(); }));
    }
    bool NothingAnnounced() { return producer.Opened("BUF") == producer.Closed("BUF"); }
};

TEST_F(Acquisition, StreamIsOpenedWithItsPortAndErrorEvent) {
    stream.reset();
    producer.ClearLog();
    stream = OpenStream();
    EXPECT_EQ(producer.Log({"DevOpenDataStream", "GCRegisterEvent", "DSAllocAndAnnounceBuffer"}),
              (Calls{"DevOpenDataStream(DEV1, DEV1_Stream0)", "GCRegisterEvent(DS1, 0)"}));
    EXPECT_EQ(stream->GetIZqDevice(), device.get());
    EXPECT_EQ(Inside()->GetIZqDeviceInside(), dynamic_cast<IZqDeviceInside*>(device.get()));
    EXPECT_STREQ(stream->GetIZqPort()->GetINodeMap()->GetDeviceName().c_str(), "DataStream_0_DEV1");
}

TEST_F(Acquisition, StreamThatCannotAskForTheDeviceIsClosedAgain) {
    stream.reset();
    producer.Answer("DevGetInfo").Command(DEVICE_INFO_ID).With(GC_ERR_IO);
    const Thrown thrown = CatchProducerError([this] { OpenStream(); });
    EXPECT_EQ(thrown.text, "-1010 = DevGetInfo(PTR, 0, PTR, PTR, PTR)");
    EXPECT_EQ(producer.Opened("DS"), producer.Closed("DS"));
}

TEST_F(Acquisition, StartGoesInTheStatedOrder) {
    stream->SetStreamBufferCount(1);
    producer.ClearLog();
    stream->StartAcquisition(10, ACQ_START_FLAGS_CUSTOM_ID);
    EXPECT_EQ(producer.Log(),
              (Calls{"GCRegisterEvent(DS1, 1)", "DSGetInfo(DS1, 7, 8)", "DSAllocAndAnnounceBuffer(DS1, 4096)",
                     "DSGetBufferInfo(DS1, BUF1, 0, 8)", "DevGetInfo(DEV1, 0, null)",
                     "DevGetInfo(DEV1, 0, 5)", "GCRegisterEvent(BUF1, 0)", "EventGetInfo(BUF1/0, 3, 8)",
                     "DSQueueBuffer(DS1, BUF1)", "DSStartAcquisition(DS1, 1000, 10)"}));
}

TEST_F(Acquisition, StopGoesInTheStatedOrder) {
    Start();
    producer.ClearLog();
    stream->StopAcquisition(ACQ_STOP_FLAGS_KILL);
    EXPECT_EQ(producer.Log(),
              (Calls{"DSStopAcquisition(DS1, 1)", "EventKill(DS1/1)", "GCUnregisterEvent(DS1, 1)"}));
}

TEST_F(Acquisition, SecondStartAndSecondStopChangeNothing) {
    Start();
    producer.ClearLog();
    Start();
    EXPECT_EQ(producer.Log(), Calls());
    Stop();
    producer.ClearLog();
    Stop();
    EXPECT_EQ(producer.Log(), Calls());
}

TEST_F(Acquisition, StopWithoutStartDoesNothing) {
    producer.ClearLog();
    Stop();
    EXPECT_EQ(producer.Log(), Calls());
}

TEST_F(Acquisition, FiniteCountStillOwesAStop) {
    Start(2);
    EXPECT_TRUE(RetrieveNewFrame());
    EXPECT_TRUE(RetrieveNewFrame());
    EXPECT_FALSE(stream->IsGrabbing());
    Start(2);
    EXPECT_EQ(producer.Count("DSStartAcquisition"), 1u);
    Stop();
    Start(2);
    EXPECT_TRUE(RetrieveNewFrame());
}

TEST_F(Acquisition, FailedStartLeavesTheStreamStopped) {
    producer.Answer("DSStartAcquisition").OnCall(1).With(GC_ERR_IO).Saying("no light");
    const Thrown thrown = StartFails();
    EXPECT_EQ(thrown.text, "-1010 = DSStartAcquisition(PTR, 0, -1) no light");
    EXPECT_EQ(thrown.function, "DSStartAcquisition");
    EXPECT_EQ(thrown.error, -1010);
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqDataStream");
    EXPECT_EQ(producer.Log({"EventKill", "DSFlushQueue", "DSRevokeBuffer"}).size(), 8u);
    EXPECT_EQ(producer.Log({"EventKill", "DSFlushQueue"}),
              (Calls{"EventKill(DS1/1)", "DSFlushQueue(DS1, 4)"}));
    EXPECT_FALSE(Retrieve(INFINITE));
    Start();
    EXPECT_TRUE(RetrieveNewFrame());
}

TEST_F(Acquisition, FramesOfAFailedStartAreGone) {
    producer.AutoStream(3);
    producer.Answer("DSStartAcquisition").OnCall(1).With(GC_ERR_IO).AlsoRuns();
    StartFails();
    EXPECT_TRUE(NothingAnnounced());
    EXPECT_FALSE(Retrieve(INFINITE));
}

TEST_F(Acquisition, FailedStopIsReportedWhenItIsOver) {
    Start();
    producer.Answer("DSStopAcquisition").With(GC_ERR_IO).AlsoRuns().Saying("still warm");
    producer.Answer("EventKill").With(GC_ERR_ERROR).AlsoRuns().Saying("another failure");
    const Thrown thrown = CatchProducerError([this] { Stop(); });
    EXPECT_EQ(thrown.text, "-1010 = DSStopAcquisition(PTR, 0) still warm");
    EXPECT_EQ(thrown.function, "DSStopAcquisition");
    EXPECT_EQ(thrown.error, -1010);
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqDataStream");
    EXPECT_EQ(producer.Log("GCUnregisterEvent").back(), "GCUnregisterEvent(DS1, 1)");
    EXPECT_FALSE(Retrieve(INFINITE));
    EXPECT_NO_THROW(Stop());
}

TEST_F(Acquisition, NewBufferEventIsNotOptional) {
    producer.Answer("GCRegisterEvent").Event(EVENT_NEW_BUFFER).With(GC_ERR_NOT_IMPLEMENTED);
    const Thrown thrown = StartFails();
    EXPECT_EQ(thrown.text, "-1003 = GCRegisterEvent(PTR, 1, PTR)");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqEvent");
    EXPECT_TRUE(NothingAnnounced());
    EXPECT_EQ(producer.Count("DSStartAcquisition"), 0u);
}

TEST_F(Acquisition, RefusedNewBufferEventRunsWithoutDelivery) {
    producer.Answer("GCRegisterEvent").Event(EVENT_NEW_BUFFER).With(GC_ERR_RESOURCE_IN_USE);
    Start();
    EXPECT_TRUE(stream->IsGrabbing());
    EXPECT_FALSE(Retrieve(1));
    Stop();
    EXPECT_EQ(producer.Count("EventKill"), 0u);
}

class AcquisitionWithoutStart : public Acquisition {
protected:
    AcquisitionWithoutStart() : Acquisition("without_DSStartAcquisition") {}
};

TEST_F(AcquisitionWithoutStart, IsReportedAsNotImplemented) {
    EXPECT_EQ(StartFails().text, "-1003 = DSStartAcquisition(PTR, 0, -1)");
    EXPECT_TRUE(NothingAnnounced());
}

class AcquisitionWithoutClose : public Acquisition {
protected:
    AcquisitionWithoutClose() : Acquisition("without_DSClose") { expectNothingOpen = false; }
};

TEST_F(AcquisitionWithoutClose, ReleaseDoesWithoutIt) {
    Start();
    EXPECT_NO_THROW(stream.reset());
    EXPECT_TRUE(NothingAnnounced());
}

TEST_F(Acquisition, LostDeviceStartsNothing) {
    LoseTheDevice();
    producer.ClearLog();
    const Thrown thrown = Catch<GenICam::AccessException>([this] { Start(); });
    EXPECT_EQ(thrown.text, "The device is lost.");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqDataStream");
    EXPECT_EQ(producer.Log(), Calls());
}

TEST_F(Acquisition, LostDeviceCanBeStoppedAndReleased) {
    Start();
    LoseTheDevice();
    EXPECT_NO_THROW(Stop());
    EXPECT_NO_THROW(stream.reset());
}

TEST_F(Acquisition, IsGrabbingUntilTheLastFrameIsRetrieved) {
    EXPECT_FALSE(stream->IsGrabbing());
    Start();
    EXPECT_TRUE(stream->IsGrabbing());
    PushUnread(2);
    Stop();
    EXPECT_FALSE(Info()->IsGrabbing());
    EXPECT_TRUE(stream->IsGrabbing());
    EXPECT_EQ(Info()->GetNumAwaitDelivery(), 2u);
    EXPECT_EQ(Info()->GetNumDelivered(), 0u);
    EXPECT_TRUE(Retrieve(5000, ThrowException));
    EXPECT_EQ(Info()->GetNumDelivered(), 1u);
    EXPECT_TRUE(Retrieve(5000, ThrowException));
    EXPECT_FALSE(Retrieve(5000, ThrowException));
    EXPECT_FALSE(stream->IsGrabbing());
    EXPECT_EQ(Info()->GetNumDelivered(), 2u);
}

TEST_F(Acquisition, DeliveredCountIsNeverNegative) {
    Start();
    PushUnread(2);
    producer.Answer("DSGetInfo").Command(STREAM_INFO_NUM_DELIVERED).Value<uint64_t>(1);
    EXPECT_EQ(Info()->GetNumDelivered(), 0u);
}

TEST_F(Acquisition, FailingQueriesOfIsGrabbingLeave) {
    producer.Answer("DSGetInfo").Command(STREAM_INFO_NUM_AWAIT_DELIVERY).With(GC_ERR_IO);
    EXPECT_EQ(CatchProducerError([this] { stream->IsGrabbing(); }).text,
              "-1010 = DSGetInfo(PTR, 5, PTR, PTR, PTR)");
    producer.Answer("DSGetInfo").Command(STREAM_INFO_IS_GRABBING).With(GC_ERR_ERROR);
    EXPECT_EQ(CatchProducerError([this] { stream->IsGrabbing(); }).text,
              "-1001 = DSGetInfo(PTR, 8, PTR, PTR, PTR)");
}

TEST_F(Acquisition, FilledEventIsSetWhileFramesWait) {
    auto* const filled = static_cast<CEventObject*>(Inside()->GetIsFilledStreamBufferEventHandle());
    ASSERT_NE(filled, nullptr);
    EXPECT_EQ(WaitForSingleObject(filled, 0), WAIT_TIMEOUT);
    Start();
    PushUnread(2);
    Retrieve();
    EXPECT_EQ(WaitForSingleObject(filled, 0), WAIT_OBJECT_0);
    Retrieve();
    EXPECT_EQ(WaitForSingleObject(filled, 0), WAIT_TIMEOUT);
    PushUnread(1);
    Stop();
    Start();
    EXPECT_EQ(WaitForSingleObject(filled, 0), WAIT_TIMEOUT);
    filled->Close();
    EXPECT_EQ(Inside()->GetIsFilledStreamBufferEventHandle(), nullptr);
}

TEST_F(Acquisition, IncompleteFramesCountAsBytesOnly) {
    Start();
    EXPECT_TRUE(RetrieveNewFrame());
    EXPECT_TRUE(RetrieveNewFrame(Frame(std::string(5000, 'x'))));
    EXPECT_TRUE(RetrieveNewFrame(Frame(std::string(5000, 'x'))));
    EXPECT_EQ(stream->GetCurrentFPS(), 0);
    EXPECT_GT(stream->GetCurrentBPS(), 0);
    EXPECT_TRUE(RetrieveNewFrame());
    EXPECT_GT(stream->GetCurrentFPS(), 0);
}

TEST_F(Acquisition, RatesStartAnew) {
    Start();
    for (int frame = 0; frame < 3; ++frame)
        EXPECT_TRUE(RetrieveNewFrame());
    EXPECT_GT(stream->GetCurrentFPS(), 0);
    Stop();
    Start();
    EXPECT_EQ(stream->GetCurrentFPS(), 0);
    EXPECT_EQ(stream->GetCurrentBPS(), 0);
}

TEST_F(Acquisition, FramesOfUnknownFormatAreRetrievedAndNotCountedAsBytes) {
    Start();
    for (int frame = 0; frame < 10; ++frame)
        EXPECT_TRUE(
            RetrieveNewFrame(Frame("pixels")
                                 .Fails(BUFFER_INFO_DATA_SIZE, GC_ERR_NOT_IMPLEMENTED)
                                 .Info<uint64_t>(BUFFER_INFO_PIXELFORMAT, INFO_DATATYPE_UINT64, 0x12345678)));
    EXPECT_EQ(stream->GetCurrentBPS(), 0);
    EXPECT_GT(stream->GetCurrentFPS(), 0);
}

TEST_F(Acquisition, FailingCompletenessQueryLosesNoFrame) {
    producer.Answer("DSGetBufferInfo").Command(BUFFER_INFO_IS_INCOMPLETE).OnCall(1).With(GC_ERR_IO);
    Start();
    EXPECT_TRUE(RetrieveNewFrame());
    EXPECT_TRUE(RetrieveNewFrame());
    EXPECT_EQ(stream->GetCurrentFPS(), 0);
}

TEST_F(Acquisition, DataSizeIsNotAskedAgainOnceItFailed) {
    producer.Answer("DSGetBufferInfo").Command(BUFFER_INFO_DATA_SIZE).OnCall(1).With(GC_ERR_NOT_IMPLEMENTED);
    Start();
    for (int frame = 0; frame < 3; ++frame)
        EXPECT_TRUE(RetrieveNewFrame());
    Stop();
    Start();
    EXPECT_TRUE(RetrieveNewFrame());
    const Calls asked = producer.Log("DSGetBufferInfo");
    EXPECT_EQ(
        std::count_if(asked.begin(), asked.end(),
                      [](const std::string& call) { return call.find(", 27, 8)") != std::string::npos; }),
        1);
    EXPECT_GT(stream->GetIZqDataStreamInfo()->GetNumDelivered(), 0u);
}

TEST_F(Acquisition, FrameWithoutAnImageCountsNoBytes) {
    const Frame empty = Frame("raw")
                            .Fails(BUFFER_INFO_DATA_SIZE, GC_ERR_NOT_IMPLEMENTED)
                            .Info<uint8_t>(BUFFER_INFO_IMAGEPRESENT, INFO_DATATYPE_BOOL8, 0);
    Start();
    for (int frame = 0; frame < 3; ++frame)
        EXPECT_TRUE(RetrieveNewFrame(empty));
    EXPECT_EQ(stream->GetCurrentBPS(), 0);
    EXPECT_GT(stream->GetCurrentFPS(), 0);
}

TEST_F(Acquisition, StreamsRunWithoutChunkDecoding) {
    Start();
    for (const size_t payloadType : {size_t{PAYLOAD_TYPE_CHUNK_DATA}, size_t{PAYLOAD_TYPE_CHUNK_ONLY}}) {
        const Buffer buffer = RetrieveNewFrame(
            Frame("pixels").Info<size_t>(BUFFER_INFO_PAYLOADTYPE, INFO_DATATYPE_SIZET, payloadType));
        ASSERT_TRUE(buffer);
        EXPECT_EQ(Catch<GenICam::RuntimeException>([&] { buffer->GetChunkINodeMap(); }).text,
                  "Not found a node map for chunk.");
    }
}

/// A callback of the stream that does something from inside; what it was refused with.
class InsideCallback : public Acquisition {
protected:
    template <class Action>
    std::string Refused(Action action) {
        std::string text;
        Signal done;
        void* const handle = stream->RegisterCallback(MakeCallback([&](IZqCallbackParamBase*) {
            try {
                action();
            } catch (const GenICam::LogicalErrorException& exception) {
                text = exception.GetDescription();
            }
            done.Set();
        }));
        EXPECT_TRUE(producer.PushFrame("DS1"));
        EXPECT_TRUE(done.Wait());
        stream->DeregisterCallback(handle);
        return text;
    }
};

TEST_F(InsideCallback, StopAndReleaseAreRefusedWithoutEffect) {
    const std::string refusal = "A data stream can't be stopped or released inside one of its own callbacks.";
    Start();
    EXPECT_EQ(Refused([this] { Stop(); }), refusal);
    EXPECT_EQ(Refused([this] { stream->Release(); }), refusal);
    EXPECT_EQ(Refused([this] { stream->StopEventAcquisitionThread(); }), refusal);
    EXPECT_EQ(producer.Count("DSStopAcquisition"), 0u);
    EXPECT_EQ(Info()->GetNumAwaitDelivery(), 3u);
}

TEST_F(InsideCallback, StartCountsAsRunning) {
    Start();
    EXPECT_EQ(Refused([this] { Start(); }), "");
    EXPECT_EQ(producer.Count("DSStartAcquisition"), 1u);
}

TEST_F(InsideCallback, ErrorCallbackCannotStopEither) {
    Start();
    Signal refused;
    stream->RegisterCallback(MakeCallback([&](IZqCallbackParamBase*) {
        try {
            Stop();
        } catch (const GenICam::LogicalErrorException&) {
            refused.Set();
        }
    }));
    stream->StartEventAcquisitionThread();
    EXPECT_TRUE(producer.PushError("DS1", GC_ERR_IO, "broken"));
    EXPECT_TRUE(refused.Wait());
}

TEST_F(InsideCallback, CallbackOfABufferCannotStopEither) {
    const Buffer buffer = [this] {
        Start();
        return RetrieveNewFrame();
    }();
    Signal done;
    std::string refusals;
    buffer->RegisterCallback(MakeCallback([&](IZqCallbackParamBase*) {
        for (const auto& action : {std::function<void()>([this] { Stop(); }),
                                   std::function<void()>([this] { stream->Release(); })}) {
            try {
                action();
            } catch (const GenICam::LogicalErrorException&) {
                refusals += "refused ";
            }
        }
        done.Set();
    }));
    buffer->StartEventAcquisitionThread();
    EXPECT_TRUE(producer.PushError("BUF1", GC_ERR_IO, "broken"));
    EXPECT_TRUE(done.Wait());
    EXPECT_EQ(refusals, "refused refused ");
    EXPECT_EQ(producer.Count("DSStopAcquisition"), 0u);
}

TEST_F(Acquisition, TwoStartsAndStopsAtOnceExcludeEachOther) {
    for (int round = 0; round < 50; ++round) {
        std::array<std::thread, 2> threads;
        for (std::thread& thread : threads)
            thread = std::thread([this] {
                Start();
                Stop();
            });
        for (std::thread& thread : threads)
            thread.join();
    }
    EXPECT_EQ(producer.Count("DSStartAcquisition"), producer.Count("DSStopAcquisition"));
    EXPECT_EQ(producer.Log("DSAllocAndAnnounceBuffer").size(), 6u);
}

} // namespace
} // namespace ZqTest
