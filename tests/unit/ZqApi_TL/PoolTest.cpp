#include "ZqSDKCommon/IZqImageInside.h"
#include "tests/unit/ZqApi_TL/OpenedStream.h"

namespace ZqTest {
namespace {

Calls Repeated(const std::string& call, size_t count) {
    return Calls(count, call);
}

class Pool : public OpenedStream {
protected:
    explicit Pool(const std::string& variant = "full") : OpenedStream(variant) {}

    size_t Announcements() { return producer.Log("DSAllocAndAnnounceBuffer").size(); }

    /// A restart; what it logs is the log afterwards.
    void Restart() {
        Stop();
        producer.ClearLog();
        Start();
    }

    std::string StartFails() {
        return CatchProducerError([this] { Start(); }).text;
    }
};

TEST_F(Pool, HasSixBuffersUnlessToldOtherwise) {
    EXPECT_EQ(stream->GetStreamBufferCount(), 6u);
    stream->SetStreamBufferCount(9);
    EXPECT_EQ(stream->GetStreamBufferCount(), 9u);
    Start();
    EXPECT_EQ(Info()->GetNumAnnounced(), 9u);
    EXPECT_EQ(Info()->GetNumQueued(), 9u);
}

TEST_F(Pool, CountOutsideItsRangeChangesNothing) {
    producer.Answer("DSGetInfo").Command(STREAM_INFO_BUF_ANNOUNCE_MIN).Value<size_t>(4);
    stream->SetStreamBufferCount(4);
    const auto refusal = [this](size_t count) {
        const Thrown thrown =
            Catch<GenICam::OutOfRangeException>([&] { stream->SetStreamBufferCount(count); });
        EXPECT_EQ(thrown.source, "ZqApi_TL/ZqDataStream");
        EXPECT_EQ(stream->GetStreamBufferCount(), 4u);
        return thrown.text;
    };
    EXPECT_EQ(refusal(65536), "nCount = 65536 must be equal or smaller than Max = 65535");
    EXPECT_EQ(refusal(3), "nCount = 3 must be equal or greater than Min = 4");
    EXPECT_EQ(refusal(static_cast<size_t>(-1)), "nCount = -1 must be equal or greater than Min = 4");
    stream->SetStreamBufferCount(65535);
    EXPECT_EQ(stream->GetStreamBufferCount(), 65535u);
}

TEST_F(Pool, CountIsKeptWhenTheMinimumCannotBeRead) {
    producer.Answer("DSGetInfo").Command(STREAM_INFO_BUF_ANNOUNCE_MIN).With(GC_ERR_IO);
    const Thrown thrown = CatchProducerError([this] { stream->SetStreamBufferCount(8); });
    EXPECT_EQ(thrown.text, "-1010 = DSGetInfo(PTR, 12, PTR, PTR, PTR)");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqDataStreamInfo");
    EXPECT_EQ(stream->GetStreamBufferCount(), 6u);
}

TEST_F(Pool, DefaultCountIsNotRaisedToTheProducersMinimum) {
    producer.Answer("DSGetInfo").Command(STREAM_INFO_BUF_ANNOUNCE_MIN).Value<size_t>(8);
    producer.Answer("DSStartAcquisition").OnCall(1).With(GC_ERR_INVALID_BUFFER);
    EXPECT_EQ(StartFails(), "-1013 = DSStartAcquisition(PTR, 0, -1)");
    EXPECT_EQ(Announcements(), 6u);
}

TEST_F(Pool, EveryBufferIsAnnouncedRegisteredAndQueuedInTurn) {
    stream->SetStreamBufferCount(2);
    producer.ClearLog();
    Start();
    EXPECT_EQ(
        producer.Log({"DSAllocAndAnnounceBuffer", "DSGetBufferInfo", "GCRegisterEvent", "DSQueueBuffer"}),
        (Calls{"GCRegisterEvent(DS1, 1)", "DSAllocAndAnnounceBuffer(DS1, 4096)",
               "DSGetBufferInfo(DS1, BUF1, 0, 8)", "GCRegisterEvent(BUF1, 0)", "DSQueueBuffer(DS1, BUF1)",
               "DSAllocAndAnnounceBuffer(DS1, 4096)", "DSGetBufferInfo(DS1, BUF2, 0, 8)",
               "GCRegisterEvent(BUF2, 0)", "DSQueueBuffer(DS1, BUF2)"}));
}

TEST_F(Pool, RestartWithAllQueuedAnnouncesAndQueuesNothing) {
    Start();
    Restart();
    EXPECT_EQ(producer.Log({"DSAllocAndAnnounceBuffer", "DSQueueBuffer", "DSRevokeBuffer", "DSFlushQueue"}),
              Calls());
    EXPECT_TRUE(RetrieveNewFrame());
}

TEST_F(Pool, RestartQueuesWhatNobodyRetrieved) {
    Start();
    PushUnread(4);
    Restart();
    EXPECT_EQ(producer.Log({"DSAllocAndAnnounceBuffer", "DSQueueBuffer", "DSRevokeBuffer"}),
              (Calls{"DSQueueBuffer(DS1, BUF1)", "DSQueueBuffer(DS1, BUF2)", "DSQueueBuffer(DS1, BUF3)",
                     "DSQueueBuffer(DS1, BUF4)"}));
    EXPECT_FALSE(Retrieve(0));
}

TEST_F(Pool, TwentyRestartsWithUnreadFramesLoseNoBuffer) {
    for (int round = 0; round < 20; ++round) {
        Start();
        EXPECT_TRUE(RetrieveNewFrame()) << round;
        PushUnread(4);
        Stop();
    }
    Start();
    EXPECT_EQ(Info()->GetNumQueued(), 6u);
    EXPECT_EQ(Announcements(), 6u);
}

TEST_F(Pool, RestartQueuesBuffersWithoutAQueuedAnswer) {
    Start();
    PushUnread(1);
    producer.Answer("DSGetBufferInfo").Command(BUFFER_INFO_IS_QUEUED).With(GC_ERR_NOT_IMPLEMENTED);
    Restart();
    // Asked for by trial: five are refused because they are queued, which is what was wanted.
    EXPECT_EQ(producer.Log("DSQueueBuffer"),
              (Calls{"DSQueueBuffer(DS1, BUF1)", "DSQueueBuffer(DS1, BUF2) = -1004",
                     "DSQueueBuffer(DS1, BUF3) = -1004", "DSQueueBuffer(DS1, BUF4) = -1004",
                     "DSQueueBuffer(DS1, BUF5) = -1004", "DSQueueBuffer(DS1, BUF6) = -1004"}));
    EXPECT_EQ(Info()->GetNumQueued(), 6u);
}

TEST_F(Pool, KeptBufferThatCannotBeQueuedFailsTheStart) {
    Start();
    PushUnread(2);
    Stop();
    producer.Answer("DSQueueBuffer").OnCall(2).With(GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(StartFails(), "-1004 = DSQueueBuffer(PTR, PTR)");
    EXPECT_EQ(producer.Opened("BUF"), producer.Closed("BUF"));
    Start();
    EXPECT_TRUE(RetrieveNewFrame());
}

TEST_F(Pool, HeldBufferIsNotQueuedByARestartButByItsRelease) {
    Start();
    Buffer held = RetrieveNewFrame();
    Restart();
    EXPECT_EQ(producer.Log("DSQueueBuffer"), Calls());
    EXPECT_EQ(Info()->GetNumQueued(), 5u);
    held.reset();
    EXPECT_EQ(producer.Log("DSQueueBuffer"), (Calls{"DSQueueBuffer(DS1, BUF1)"}));
    EXPECT_EQ(Info()->GetNumQueued(), 6u);
}

TEST_F(Pool, LargerCountAddsBuffersToTheKeptOnes) {
    Start();
    Stop();
    stream->SetStreamBufferCount(8);
    producer.ClearLog();
    Start();
    EXPECT_EQ(producer.Log({"DSAllocAndAnnounceBuffer", "DSQueueBuffer", "DSRevokeBuffer"}),
              (Calls{"DSAllocAndAnnounceBuffer(DS1, 4096)", "DSQueueBuffer(DS1, BUF7)",
                     "DSAllocAndAnnounceBuffer(DS1, 4096)", "DSQueueBuffer(DS1, BUF8)"}));
}

TEST_F(Pool, SmallerPayloadKeepsTheBuffers) {
    Start();
    producer.SetPayloadSize(100);
    Restart();
    EXPECT_EQ(producer.Log({"DSAllocAndAnnounceBuffer", "DSRevokeBuffer"}), Calls());
}

TEST_F(Pool, LargerPayloadReplacesTheBuffersWhileTheThreadRests) {
    Start();
    Stop();
    producer.SetPayloadSize(8192);
    producer.ClearLog();
    Start();
    const Calls log = producer.Log({"GCRegisterEvent", "EventKill", "DSFlushQueue", "DSRevokeBuffer",
                                    "DSAllocAndAnnounceBuffer", "DSStartAcquisition"});
    ASSERT_EQ(log.size(), 22u);
    EXPECT_EQ(log[0], "GCRegisterEvent(DS1, 1)");
    EXPECT_EQ(log[1], "EventKill(DS1/1)");
    EXPECT_EQ(log[2], "DSFlushQueue(DS1, 4)");
    for (size_t buffer = 0; buffer < 6; ++buffer) {
        EXPECT_EQ(log[3 + buffer], "DSRevokeBuffer(DS1, BUF" + std::to_string(buffer + 1) + ")");
        EXPECT_EQ(log[9 + 2 * buffer], "DSAllocAndAnnounceBuffer(DS1, 8192)");
    }
    EXPECT_TRUE(RetrieveNewFrame(Frame(std::string(8192, 'x'))));
}

TEST_F(Pool, SmallerCountReplacesTheBuffers) {
    Start();
    stream->SetStreamBufferCount(5);
    Restart();
    EXPECT_EQ(producer.Log("DSRevokeBuffer").size(), 6u);
    EXPECT_EQ(Announcements(), 5u);
}

TEST_F(Pool, BufferThatDoesNotTellItsSizeFailsTheStart) {
    Start();
    Stop();
    producer.Answer("DSGetBufferInfo").Command(BUFFER_INFO_SIZE).With(GC_ERR_IO);
    EXPECT_EQ(StartFails(), "-1010 = DSGetBufferInfo(PTR, PTR, 1, PTR, PTR, PTR)");
    EXPECT_EQ(producer.Opened("BUF"), producer.Closed("BUF"));
}

TEST_F(Pool, PayloadSizeOfTheCameraServesWhereTheProducerHasNone) {
    producer.Answer("DSGetInfo").Command(STREAM_INFO_PAYLOAD_SIZE).With(GC_ERR_NOT_IMPLEMENTED);
    producer.SetPayloadSize(1234);
    EXPECT_EQ(Info()->GetPayloadSize(), 1234u);
    Start();
    EXPECT_EQ(producer.Log("DSAllocAndAnnounceBuffer").front(), "DSAllocAndAnnounceBuffer(DS1, 1234)");
}

TEST_F(Pool, PayloadSizeZeroMeansTheCamerasToo) {
    producer.Answer("DSGetInfo").Command(STREAM_INFO_PAYLOAD_SIZE).Value<size_t>(0);
    producer.SetPayloadSize(777);
    EXPECT_EQ(Info()->GetPayloadSize(), 0u);
    Start();
    EXPECT_EQ(producer.Log("DSAllocAndAnnounceBuffer").front(), "DSAllocAndAnnounceBuffer(DS1, 777)");
}

TEST_F(Pool, PayloadSizeZeroOfBothIsPassedOn) {
    producer.SetPayloadSize(0);
    Start();
    EXPECT_EQ(producer.Log("DSAllocAndAnnounceBuffer").front(), "DSAllocAndAnnounceBuffer(DS1, 0)");
}

TEST_F(Pool, OtherFailuresOfThePayloadSizeLeave) {
    for (const int result : {GC_ERR_NOT_AVAILABLE, GC_ERR_INVALID_PARAMETER}) {
        producer.Answer("DSGetInfo").Command(STREAM_INFO_PAYLOAD_SIZE).With(result);
        const std::string text = std::to_string(result) + " = DSGetInfo(PTR, 7, PTR, PTR, PTR)";
        EXPECT_EQ(CatchProducerError([this] { Info()->GetPayloadSize(); }).text, text);
        EXPECT_EQ(StartFails(), text);
        EXPECT_EQ(Announcements(), 0u);
    }
}

class PoolWithoutPayloadNode : public Pool {
protected:
    PoolWithoutPayloadNode() {
        std::string text(20000, '\0');
        producer.ReadRegister("REMOTE1", 0x10000, text.data(), text.size());
        text = text.c_str();
        for (size_t at; (at = text.find("PayloadSize")) != std::string::npos;)
            text.replace(at, 11, "SizeOfFrame");
        producer.SetDescription("REMOTE", "camera.xml", text);
        producer.Answer("DSGetInfo").Command(STREAM_INFO_PAYLOAD_SIZE).With(GC_ERR_NOT_IMPLEMENTED);
    }
};

TEST_F(PoolWithoutPayloadNode, NobodyKnowsThePayloadSize) {
    const Thrown thrown = Catch<GenICam::RuntimeException>([this] { Info()->GetPayloadSize(); });
    EXPECT_EQ(thrown.text, "Node PayloadSize not found.");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqDataStreamInfo");
    EXPECT_EQ(Catch<GenICam::RuntimeException>([this] { Start(); }).text, "Node PayloadSize not found.");
    EXPECT_EQ(Announcements(), 0u);
}

class PoolWithoutStreamInfo : public Pool {
protected:
    PoolWithoutStreamInfo() : Pool("without_DSGetInfo") {}
};

TEST_F(PoolWithoutStreamInfo, PayloadSizeIsTheCameras) {
    EXPECT_EQ(Info()->GetPayloadSize(), 4096u);
    Start();
    EXPECT_EQ(producer.Log("DSAllocAndAnnounceBuffer"), Repeated("DSAllocAndAnnounceBuffer(DS1, 4096)", 6));
    EXPECT_TRUE(RetrieveNewFrame());
    EXPECT_EQ(CatchProducerError([this] { stream->SetStreamBufferCount(7); }).text,
              "-1003 = DSGetInfo(PTR, 12, PTR, PTR, PTR)");
}

TEST_F(Pool, EmptyPoolIsFlushedWhenTheStreamIsReleased) {
    producer.ClearLog();
    stream.reset();
    EXPECT_EQ(producer.Log({"DSFlushQueue", "DSRevokeBuffer", "DSClose"}),
              (Calls{"DSFlushQueue(DS1, 4)", "DSClose(DS1)"}));
}

TEST_F(Pool, ReleaseWhileGrabbingTakesDownInTheStatedOrder) {
    Start();
    producer.ClearLog();
    stream.reset();
    Calls expected{"DSStopAcquisition(DS1, 0)", "EventKill(DS1/1)", "GCUnregisterEvent(DS1, 1)",
                   "DSFlushQueue(DS1, 4)"};
    for (int buffer = 1; buffer <= 6; ++buffer)
        for (const char* call : {"GCUnregisterEvent(BUF%, 0)", "DSRevokeBuffer(DS1, BUF%)"}) {
            expected.emplace_back(call);
            expected.back().replace(expected.back().find('%'), 1, std::to_string(buffer));
        }
    expected.insert(expected.end(), {"GCUnregisterEvent(DS1, 0)", "DSClose(DS1)"});
    EXPECT_EQ(producer.Log({"DSStopAcquisition", "EventKill", "GCUnregisterEvent", "DSFlushQueue",
                            "DSRevokeBuffer", "DSClose"}),
              expected);
}

TEST_F(Pool, HeldBufferOutlivesTheReplacementOfThePool) {
    Start();
    Buffer held = RetrieveNewFrame();
    Stop();
    producer.SetPayloadSize(8192);
    producer.ClearLog();
    Start();
    EXPECT_EQ(producer.Log("DSRevokeBuffer").size(), 6u);
    EXPECT_EQ(Announcements(), 6u);
    producer.ClearLog();
    held.reset();
    EXPECT_EQ(producer.Log(), Calls());
}

TEST_F(Pool, FailingFlushFailsTheReplacementAndTheNextStartSucceeds) {
    Start();
    Stop();
    producer.SetPayloadSize(8192);
    producer.Answer("DSFlushQueue").OnCall(1).With(GC_ERR_IO).AlsoRuns().Saying("stuck");
    const Thrown thrown = CatchProducerError([this] { Start(); });
    EXPECT_EQ(thrown.text, "-1010 = DSFlushQueue(PTR, 4) stuck");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqDataStream");
    EXPECT_EQ(thrown.function, "DSFlushQueue");
    EXPECT_EQ(thrown.error, GC_ERR_IO);
    EXPECT_EQ(producer.Log("DSRevokeBuffer").size(), 6u);
    Start();
    EXPECT_TRUE(RetrieveNewFrame());
}

TEST_F(Pool, TornDownBufferHasNoEventAndNoHandle) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    Start();
    const Buffer held = RetrieveNewFrame();
    Stop();
    producer.SetPayloadSize(8192);
    Start();
    EXPECT_NO_THROW(held->StartEventAcquisitionThread());
    EXPECT_NO_THROW(held->StopEventAcquisitionThread());
    EXPECT_DEATH(held->GetIZqStreamBufferInfo()->GetWidth(), "m_hStreamBuffer != NULL");
    EXPECT_DEATH(held->GetIZqImage(), "m_hStreamBuffer != NULL");
}

TEST_F(Pool, ImageOfATornDownBufferHasNoPixels) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    Start();
    const Buffer held = RetrieveNewFrame();
    IZqImage* const image = held->GetIZqImage();
    Stop();
    producer.SetPayloadSize(8192);
    Start();
    EXPECT_EQ(dynamic_cast<IZqImageInside*>(image)->GetReadableSize(), 0u);
    EXPECT_DEATH(image->GetImageLinePitch(), "m_pCZqStreamBuffer->GetBufferHandle\\(\\) != NULL");
    EXPECT_DEATH(image->GetImageBuffer(), "m_pCZqStreamBuffer->GetBufferHandle\\(\\) != NULL");
    EXPECT_NO_THROW(Inside()->DeregisterStreamBuffer(held.get())); // it is out of the pool already
}

TEST_F(Pool, KeptBufferOfUnknownStateMayBeQueuedButNothingElse) {
    Start();
    Stop();
    producer.Answer("DSGetBufferInfo").Command(BUFFER_INFO_IS_QUEUED).With(GC_ERR_NOT_AVAILABLE);
    producer.Answer("DSQueueBuffer").With(GC_ERR_RESOURCE_IN_USE);
    EXPECT_NO_THROW(Start());
    Stop();
    producer.Answer("DSQueueBuffer").With(GC_ERR_IO);
    EXPECT_EQ(CatchProducerError([this] { Start(); }).text, "-1010 = DSQueueBuffer(PTR, PTR)");
}

TEST_F(Pool, BufferThatCannotBeAnnouncedIsNotRegistered) {
    std::vector<uint8_t> memory(100);
    producer.Answer("DSAnnounceBuffer").With(GC_ERR_RESOURCE_EXHAUSTED);
    EXPECT_EQ(CatchProducerError([&] {
                  Inside()->RegisterStreamBuffer(memory.data(), memory.size(), this, 7);
              }).error,
              GC_ERR_RESOURCE_EXHAUSTED);
    EXPECT_EQ(producer.Count("DSRevokeBuffer"), 0u);
}

TEST_F(Pool, HeldBufferMayBeReleasedWhileItIsRevoked) {
    Start();
    Buffer held = RetrieveNewFrame();
    Stop();
    producer.SetPayloadSize(8192);
    const Latch latch(producer.Answer("DSRevokeBuffer").On("BUF1").OnCall(1));
    std::thread starting([this] { Start(); });
    EXPECT_TRUE(latch.WaitUntilHeld());
    held.reset();
    latch.Release();
    starting.join();
    EXPECT_EQ(producer.Log("DSRevokeBuffer").size(), 6u);
}

TEST_F(Pool, BufferReleasedDuringTheFlushIsNotQueuedAgain) {
    Start();
    Buffer held = RetrieveNewFrame();
    Stop();
    producer.SetPayloadSize(8192);
    const Latch latch(producer.Answer("DSFlushQueue"));
    std::thread starting([this] { EXPECT_NO_THROW(Start()); });
    EXPECT_TRUE(latch.WaitUntilHeld());
    producer.ClearLog();
    held.reset();
    EXPECT_EQ(producer.Log("DSQueueBuffer"), Calls());
    latch.Release();
    starting.join();
    EXPECT_EQ(producer.Closed("BUF"), 6u);
}

TEST_F(Pool, BufferReleasedDuringARestartIsQueuedOnce) {
    Start();
    Buffer held = RetrieveNewFrame();
    Stop();
    producer.ClearLog();
    const Latch latch(producer.Answer("DSQueueBuffer").OnCall(1));
    std::thread releasing([&] { EXPECT_NO_THROW(held.release()->Release()); });
    EXPECT_TRUE(latch.WaitUntilHeld());
    std::thread starting([this] { EXPECT_NO_THROW(Start()); });
    EXPECT_FALSE(producer.WaitForCalls("DSStartAcquisition", 2, 100));
    latch.Release();
    releasing.join();
    starting.join();
    EXPECT_EQ(producer.Log("DSQueueBuffer"), (Calls{"DSQueueBuffer(DS1, BUF1)"}));
}

TEST_F(Pool, ReplacementWaitsForAReaderThatIsBeingServed) {
    Start();
    PushUnread(1);
    const Latch latch(producer.Answer("DSGetBufferInfo").Command(BUFFER_INFO_IS_INCOMPLETE));
    Buffer retrieved;
    std::thread reader([&] { retrieved = Retrieve(); });
    EXPECT_TRUE(latch.WaitUntilHeld());
    Stop();
    producer.SetPayloadSize(8192);
    std::thread starting([this] { Start(); });
    EXPECT_FALSE(producer.WaitForCalls("DSRevokeBuffer", 1, 100));
    latch.Release();
    reader.join();
    starting.join();
    EXPECT_TRUE(retrieved);
    EXPECT_EQ(producer.Log("DSRevokeBuffer").size(), 6u);
}

TEST_F(Pool, QueueingNothingDoesNothing) {
    EXPECT_NO_THROW(Inside()->QueueBuffer(nullptr));
    EXPECT_EQ(producer.Count("DSQueueBuffer"), 0u);
}

TEST_F(Pool, BuffersCanBeRegisteredAndDeregisteredOneByOne) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    std::vector<uint8_t> memory(100);
    IZqStreamBufferInside* const buffer =
        Inside()->RegisterStreamBuffer(memory.data(), memory.size(), this, 7);
    EXPECT_EQ(buffer->GetIZqStreamBufferInfo()->GetBaseAddress(), memory.data());
    EXPECT_EQ(buffer->GetIZqDataStream(), stream.get());
    Inside()->DeregisterStreamBuffer(buffer);
    EXPECT_EQ(producer.Log({"DSAnnounceBuffer", "DSRevokeBuffer"}),
              (Calls{"DSAnnounceBuffer(DS1, 100)", "DSRevokeBuffer(DS1, BUF1)"}));
    EXPECT_DEATH(Inside()->DeregisterStreamBuffer(nullptr), "pCZqStreamBuffer. != NULL");
}

} // namespace
} // namespace ZqTest
