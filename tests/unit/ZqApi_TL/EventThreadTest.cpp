#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <thread>

#include "tests/support/AllocationFailure.h"
#include "tests/unit/ZqApi_TL/LoadedProducer.h"

namespace ZqTest {
namespace {

using Clock = std::chrono::steady_clock;

int64_t MillisecondsSince(Clock::time_point start) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

/// An event that keeps what it receives, and does what a test wants on top.
class RecordingEvent final : public CZqEvent {
public:
    explicit RecordingEvent(CZqGenTLLib* pGenTL, void* hSource, EVENT_TYPE type = EVENT_ERROR)
        : CZqEvent(pGenTL, hSource, type, "ZqApi_TL_EventRecording") {}
    ~RecordingEvent() override {
        try {
            Stop();
        } catch (const GenICam::GenericException&) {
        }
    }

    std::vector<std::string> Received() {
        const std::lock_guard<std::mutex> lock(m_Mutex);
        return m_Received;
    }

    Signal received;
    std::function<void()> onReceive;

protected:
    void OnRcvEvent(void* pBuffer, size_t iSize) override {
        {
            const std::lock_guard<std::mutex> lock(m_Mutex);
            m_Received.emplace_back(static_cast<const char*>(pBuffer), iSize);
        }
        received.Set();
        if (onReceive)
            onReceive();
    }

private:
    std::mutex m_Mutex;
    std::vector<std::string> m_Received;
};

class EventThread : public LoadedProducer {
protected:
    explicit EventThread(const std::string& variant = "full") : LoadedProducer(variant) {}

    std::unique_ptr<RecordingEvent> MakeEvent() { return std::make_unique<RecordingEvent>(genTL.get(), hTL); }

    void Push(const std::string& block) {
        PushedEvent event;
        event.block = block;
        EXPECT_TRUE(producer.Push("TL1", EVENT_ERROR, event));
    }

    Calls EventCalls() { return producer.Log({"GCRegisterEvent", "EventKill", "GCUnregisterEvent"}); }
};

TEST_F(EventThread, RegistersItsEventAndUnregistersInTheEnd) {
    auto event = MakeEvent();
    EXPECT_NE(event->GetEventHandle(), nullptr);
    EXPECT_EQ(event->GetReceiveTimeout(), 500u);
    EXPECT_FALSE(event->HasThread());
    event.reset();
    EXPECT_EQ(EventCalls(), (Calls{"GCRegisterEvent(TL1, 0)", "GCUnregisterEvent(TL1, 0)"}));
}

TEST_F(EventThread, NotImplementedRegistrationIsReported) {
    producer.Answer("GCRegisterEvent").With(GC_ERR_NOT_IMPLEMENTED).Saying("no such event");
    const Thrown thrown = CatchProducerError([this] { MakeEvent(); });
    EXPECT_EQ(thrown.text, "-1003 = GCRegisterEvent(PTR, 0, PTR) no such event");
    EXPECT_EQ(thrown.function, "GCRegisterEvent");
    EXPECT_EQ(thrown.error, -1003);
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqEvent");
    EXPECT_EQ(EventCalls(), (Calls{"GCRegisterEvent(TL1, 0) = -1003"}));
}

TEST_F(EventThread, OtherRefusalLeavesAnEventThatNeverStarts) {
    producer.Answer("GCRegisterEvent").With(GC_ERR_RESOURCE_IN_USE).Value<uintptr_t>(0xBAD);
    auto event = MakeEvent();
    EXPECT_EQ(event->GetEventHandle(), nullptr);
    EXPECT_EQ(event->GetReceiveBufferSize(), 4096u);
    event->Start();
    EXPECT_FALSE(event->HasThread());
    event.reset();
    EXPECT_EQ(producer.Count("EventGetInfo"), 0u);
    EXPECT_EQ(EventCalls(), (Calls{"GCRegisterEvent(TL1, 0) = -1004"}));
}

TEST_F(EventThread, PositiveResultOfTheRegistrationIsARefusalToo) {
    producer.Answer("GCRegisterEvent").With(5).Value<uintptr_t>(0xBAD);
    EXPECT_EQ(MakeEvent()->GetEventHandle(), nullptr);
}

TEST_F(EventThread, FailedAllocationInConstructionIsReported) {
    producer.Answer("GCRegisterEvent").With(GC_ERR_NOT_IMPLEMENTED);
    auto memory = std::make_unique<FailingAllocation>(2); // the first is the event itself
    EXPECT_EQ(Catch<GenICam::BadAllocException>([this] { MakeEvent(); }).text, "std::bad_alloc");
    EXPECT_TRUE(memory->Failed());
}

TEST_F(EventThread, BufferSizeIsWhatTheProducerPlausiblyWants) {
    struct Row {
        uint64_t answer;
        size_t size;
    };
    const Row rows[] = {{1, 1},       {64, 64}, {16u << 20, 16u << 20}, {0, 4096}, {(16u << 20) + 1, 4096},
                        {~0ull, 4096}};
    for (const Row& row : rows) {
        producer.Answer("EventGetInfo").Command(EVENT_SIZE_MAX).Value(row.answer);
        EXPECT_EQ(MakeEvent()->GetReceiveBufferSize(), row.size) << row.answer;
    }
    EXPECT_EQ(producer.Log("EventGetInfo").front(), "EventGetInfo(TL1/0, 3, 8)");
}

TEST_F(EventThread, BufferSizeOfFourBytesHasNoGarbageAboveThem) {
    producer.Answer("EventGetInfo").Value<uint32_t>(100);
    EXPECT_EQ(MakeEvent()->GetReceiveBufferSize(), 100u);
}

TEST_F(EventThread, BufferSizeThatCannotBeReadIs4096) {
    producer.Answer("EventGetInfo").With(GC_ERR_IO);
    EXPECT_EQ(MakeEvent()->GetReceiveBufferSize(), 4096u);
}

TEST_F(EventThread, NullProducerOrSourceStopsTheProcess) {
    EXPECT_DEATH(RecordingEvent(nullptr, hTL), "m_pCZqGenTL != NULL");
    EXPECT_DEATH(RecordingEvent(genTL.get(), nullptr), "hEventSrc != NULL");
}

TEST_F(EventThread, WaitsWithItsBufferFor500Milliseconds) {
    const auto event = MakeEvent();
    event->Start();
    EXPECT_TRUE(producer.WaitForCalls("EventGetData", 1));
    EXPECT_EQ(producer.Log("EventGetData").front(), "EventGetData(TL1/0, 1024, 500)");
}

TEST_F(EventThread, HandsEachReceivedBlockOn) {
    const auto event = MakeEvent();
    Push("first");
    Push("second block");
    Signal both;
    event->onReceive = [&] {
        if (event->Received().size() == 2)
            both.Set();
    };
    event->Start();
    EXPECT_TRUE(both.Wait());
    event->Stop();
    EXPECT_EQ(event->Received(), (Calls{"first", "second block"}));
}

TEST_F(EventThread, SizeAboveTheBufferIsNotBelieved) {
    producer.Answer("EventGetInfo").Value<uint64_t>(8);
    producer.Answer("EventGetData").OnCall(1).Size(5000);
    const auto event = MakeEvent();
    Push("12345678");
    event->Start();
    EXPECT_TRUE(event->received.Wait());
    EXPECT_EQ(event->Received(), (Calls{"12345678"}));
}

TEST_F(EventThread, TimeoutsAndAbortsAreNoErrors) {
    producer.Answer("EventGetData").Times(3).With(GC_ERR_TIMEOUT);
    producer.Answer("EventGetData").FromCall(4).Times(3).With(GC_ERR_ABORT);
    const auto event = MakeEvent();
    event->Start();
    EXPECT_TRUE(producer.WaitForCalls("EventGetData", 7));
    EXPECT_EQ(event->TakeLastError().code, GC_ERR_SUCCESS);
    EXPECT_FALSE(Signal::WaitFor(event->GetErrorEvent(), 1));
}

TEST_F(EventThread, FailedWaitIsAnnouncedAndTheThreadGoesOn) {
    for (const GC_ERROR result :
         std::initializer_list<GC_ERROR>{GC_ERR_IO, GC_ERR_ERROR, GC_ERR_INVALID_BUFFER, 5}) {
        SCOPED_TRACE(result);
        producer.Answer("EventGetData").OnCall(1).With(result);
        const auto event = MakeEvent();
        event->Start();
        ASSERT_TRUE(Signal::WaitFor(event->GetErrorEvent()));
        EXPECT_EQ(event->TakeLastError().code, result);
        EXPECT_FALSE(Signal::WaitFor(event->GetErrorEvent(), 1));
        Push("next");
        EXPECT_TRUE(event->received.Wait());
    }
}

TEST_F(EventThread, AnnouncedErrorStaysUntilItIsTaken) {
    producer.Answer("EventGetData").OnCall(1).With(GC_ERR_IO);
    const auto event = MakeEvent();
    Push("next");
    event->Start();
    ASSERT_TRUE(event->received.Wait());
    EXPECT_TRUE(Signal::WaitFor(event->GetErrorEvent(), 1));
    event->Stop();
    EXPECT_TRUE(Signal::WaitFor(event->GetErrorEvent(), 1));
}

TEST_F(EventThread, LastErrorNamesTheFailedCallAlsoAfterTheEnd) {
    producer.Answer("EventGetData").OnCall(1).With(GC_ERR_IO);
    const auto event = MakeEvent();
    EVENT_HANDLE const handle = event->GetEventHandle();
    event->Start();
    ASSERT_TRUE(Signal::WaitFor(event->GetErrorEvent()));
    event->Stop();
    event->UnregisterEvent();
    const CZqEvent::LastError error = event->TakeLastError();
    EXPECT_EQ(error.code, GC_ERR_IO);
    EXPECT_EQ(error.hEvent, handle);
    EXPECT_NE(error.pBuffer, nullptr);
}

TEST_F(EventThread, DeniedAccessEndsTheThreadUntilItIsStopped) {
    producer.Answer("EventGetData").OnCall(1).With(GC_ERR_ACCESS_DENIED);
    const auto event = MakeEvent();
    event->Start();
    ASSERT_TRUE(Signal::WaitFor(event->GetErrorEvent()));
    EXPECT_EQ(event->TakeLastError().code, GC_ERR_ACCESS_DENIED);
    EXPECT_TRUE(event->HasThread());
    event->Start();
    EXPECT_EQ(producer.Count("EventGetData"), 1u);
    event->Stop();
    EXPECT_EQ(producer.Count("EventGetData"), 1u);
    event->Start();
    EXPECT_TRUE(producer.WaitForCalls("EventGetData", 2));
}

TEST_F(EventThread, ExceptionOfAHandlerNeitherEndsNorAnnounces) {
    const auto event = MakeEvent();
    Signal third;
    int calls = 0;
    event->onReceive = [&] {
        if (++calls == 1)
            throw GenICam::RuntimeException("dropped", "here", 1, "RuntimeException");
        if (calls == 2)
            throw 42;
        third.Set();
    };
    for (const char* block : {"1", "2", "3"})
        Push(block);
    event->Start();
    EXPECT_TRUE(third.Wait());
    EXPECT_EQ(event->Received(), (Calls{"1", "2", "3"}));
    EXPECT_FALSE(Signal::WaitFor(event->GetErrorEvent(), 1));
}

TEST_F(EventThread, SecondStartChangesNothing) {
    const Latch latch(producer.Answer("EventGetData"));
    const auto event = MakeEvent();
    event->Start();
    ASSERT_TRUE(latch.WaitUntilHeld());
    void* const buffer = event->GetReceiveBuffer();
    event->Start();
    EXPECT_FALSE(latch.WaitUntilHeld(2, 50));
    EXPECT_EQ(event->GetReceiveBuffer(), buffer);
    latch.Release();
}

TEST_F(EventThread, StopKillsTheWaitAndMayBeRepeated) {
    const auto event = MakeEvent();
    event->Start();
    ASSERT_TRUE(producer.WaitForCalls("EventGetData", 1));
    event->Stop();
    event->Stop();
    EXPECT_FALSE(event->HasThread());
    EXPECT_EQ(event->GetReceiveBuffer(), nullptr);
    EXPECT_EQ(producer.Count("EventKill"), 1u);
}

TEST_F(EventThread, StopWithoutStartDoesNothing) {
    MakeEvent()->Stop();
    EXPECT_EQ(producer.Count("EventKill"), 0u);
}

TEST_F(EventThread, StartsAgainAfterAStop) {
    const auto event = MakeEvent();
    for (const char* block : {"1", "2", "3"}) {
        event->received.Reset();
        event->Start();
        Push(block);
        EXPECT_TRUE(event->received.Wait());
        event->Stop();
    }
    EXPECT_EQ(event->Received(), (Calls{"1", "2", "3"}));
}

TEST_F(EventThread, FailedKillIsReportedAfterTheJoin) {
    producer.Answer("EventKill").With(GC_ERR_IO).AlsoRuns().Saying("kill");
    const auto event = MakeEvent();
    event->Start();
    const Thrown thrown = CatchProducerError([&] { event->Stop(); });
    EXPECT_EQ(thrown.text, "-1010 = EventKill(PTR) kill");
    EXPECT_EQ(thrown.function, "EventKill");
    EXPECT_EQ(thrown.error, -1010);
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqEvent");
    EXPECT_FALSE(event->HasThread());
    EXPECT_EQ(event->GetReceiveBuffer(), nullptr);
    EXPECT_NO_THROW(event->Stop());
}

TEST_F(EventThread, StopOnItsOwnThreadOnlyAsks) {
    const auto event = MakeEvent();
    event->onReceive = [&] { event->Stop(); };
    Push("stop");
    Push("not delivered");
    event->Start();
    ASSERT_TRUE(event->received.Wait());
    while (event->IsRunning())
        std::this_thread::yield();
    EXPECT_TRUE(event->HasThread());
    EXPECT_EQ(event->Received(), (Calls{"stop"}));
    event->Stop();
    EXPECT_FALSE(event->HasThread());
}

TEST_F(EventThread, UnregistersOnce) {
    const auto event = MakeEvent();
    event->UnregisterEvent();
    EXPECT_EQ(event->GetEventHandle(), nullptr);
    event->UnregisterEvent();
    EXPECT_EQ(producer.Count("GCUnregisterEvent"), 1u);
}

TEST_F(EventThread, FailedUnregistrationIsReportedAndTheHandleGone) {
    producer.Answer("GCUnregisterEvent").With(GC_ERR_IO).AlsoRuns().Saying("kept");
    const auto event = MakeEvent();
    const Thrown thrown = CatchProducerError([&] { event->UnregisterEvent(); });
    EXPECT_EQ(thrown.text, "-1010 = GCUnregisterEvent(PTR, 0) kept");
    EXPECT_EQ(thrown.function, "GCUnregisterEvent");
    EXPECT_EQ(thrown.error, -1010);
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqEvent");
    EXPECT_EQ(event->GetEventHandle(), nullptr);
    expectNothingOpen = false;
}

TEST_F(EventThread, DestructionDropsWhatFails) {
    producer.Answer("EventKill").With(GC_ERR_IO).AlsoRuns();
    producer.Answer("GCUnregisterEvent").With(GC_ERR_ERROR).AlsoRuns();
    auto event = MakeEvent();
    event->Start();
    ASSERT_TRUE(producer.WaitForCalls("EventGetData", 1));
    EXPECT_NO_THROW(event.reset());
    EXPECT_EQ(EventCalls(), (Calls{"GCRegisterEvent(TL1, 0)", "EventKill(TL1/0) = -1010",
                                   "GCUnregisterEvent(TL1, 0) = -1001"}));
    expectNothingOpen = false;
}

TEST_F(EventThread, FailedReceiveBufferStartsNothing) {
    const auto event = MakeEvent();
    {
        FailingAllocation memory(1);
        EXPECT_EQ(Catch<GenICam::BadAllocException>([&] { event->Start(); }).text, "std::bad_alloc");
    }
    EXPECT_FALSE(event->HasThread());
    event->Start();
    EXPECT_TRUE(event->HasThread());
}

class EventThreadWithoutRegister : public EventThread {
protected:
    EventThreadWithoutRegister() : EventThread("without_GCRegisterEvent") {}
};

TEST_F(EventThreadWithoutRegister, RegistrationIsReportedAsNotImplemented) {
    const Thrown thrown = CatchProducerError([this] { MakeEvent(); });
    EXPECT_EQ(thrown.text, "\"GCRegisterEvent\" is not implemented.");
    EXPECT_EQ(thrown.function, "GCRegisterEvent");
    EXPECT_EQ(thrown.error, -1003);
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqEvent");
}

class EventThreadWithoutEventInfo : public EventThread {
protected:
    EventThreadWithoutEventInfo() : EventThread("without_EventGetInfo") {}
};

TEST_F(EventThreadWithoutEventInfo, BufferSizeIs4096) {
    EXPECT_EQ(MakeEvent()->GetReceiveBufferSize(), 4096u);
}

class EventThreadWithoutGetData : public EventThread {
protected:
    EventThreadWithoutGetData() : EventThread("without_EventGetData") {}
};

TEST_F(EventThreadWithoutGetData, ThreadAnnouncesThatUntilStopped) {
    const auto event = MakeEvent();
    event->Start();
    ASSERT_TRUE(Signal::WaitFor(event->GetErrorEvent()));
    EXPECT_EQ(event->TakeLastError().code, GC_ERR_NOT_IMPLEMENTED);
    ASSERT_TRUE(Signal::WaitFor(event->GetErrorEvent()));
    event->Stop();
    EXPECT_FALSE(event->IsRunning());
}

class EventThreadWithoutKill : public EventThread {
protected:
    EventThreadWithoutKill() : EventThread("without_EventKill") {}
};

TEST_F(EventThreadWithoutKill, ThreadEndsByItsOwnTimeout) {
    const auto event = MakeEvent();
    event->Start();
    ASSERT_TRUE(producer.WaitForCalls("EventGetData", 1));
    const auto start = Clock::now();
    EXPECT_EQ(CatchProducerError([&] { event->Stop(); }).text, "-1003 = EventKill(PTR)");
    EXPECT_LT(MillisecondsSince(start), 2000);
    EXPECT_FALSE(event->HasThread());
    EXPECT_EQ(producer.Count("EventGetData"), 1u);
}

class EventThreadWithoutUnregister : public EventThread {
protected:
    EventThreadWithoutUnregister() : EventThread("without_GCUnregisterEvent") { expectNothingOpen = false; }
};

TEST_F(EventThreadWithoutUnregister, UnregistrationIsReported) {
    const auto event = MakeEvent();
    EXPECT_EQ(CatchProducerError([&] { event->UnregisterEvent(); }).text,
              "-1003 = GCUnregisterEvent(PTR, 0)");
}

} // namespace
} // namespace ZqTest
