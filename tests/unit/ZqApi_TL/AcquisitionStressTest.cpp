#include <algorithm>
#include <array>
#include <atomic>
#include <optional>

#include "tests/unit/ZqApi_TL/OpenedStream.h"

namespace ZqTest {
namespace {

using Clock = std::chrono::steady_clock;

#ifdef ZQAPI_SLOWED_DOWN
constexpr int ROUNDS = 60;
constexpr std::chrono::milliseconds PROMPT(1000);
#else
constexpr int ROUNDS = 300;
constexpr std::chrono::milliseconds PROMPT(50);
#endif

class AcquisitionStress : public OpenedStream {
protected:
    void SetUp() override {
        for (const char* function : {"EventGetData", "DSGetBufferInfo", "DSGetInfo", "DSQueueBuffer"})
            producer.DontLog(function);
        OpenedStream::SetUp();
    }
};

/// Retrieves and releases from a thread of its own until it is told to end.
class Consumer {
public:
    explicit Consumer(IZqDataStream* stream, size_t held = 0)
        : m_Thread([this, stream, held] { Run(stream, held); }) {}
    ~Consumer() { End(); }
    Consumer(const Consumer&) = delete;
    Consumer& operator=(const Consumer&) = delete;

    /// How many frames came.
    uint64_t End() {
        m_End = true;
        if (m_Thread.joinable())
            m_Thread.join();
        return m_Frames;
    }
    uint64_t Frames() const { return m_Frames; }

private:
    void Run(IZqDataStream* stream, size_t held) {
        std::vector<Buffer> buffers;
        while (!m_End) {
            Buffer buffer(stream->RetrieveBuffer(1, ReturnNull));
            if (!buffer)
                continue;
            ++m_Frames;
            buffers.push_back(std::move(buffer));
            if (buffers.size() > held)
                buffers.erase(buffers.begin());
        }
    }

    std::atomic<bool> m_End{false};
    std::atomic<uint64_t> m_Frames{0};
    std::thread m_Thread;
};

TEST_F(AcquisitionStress, ThousandStartsDeliverEachTime) {
    const uint64_t registered = producer.Opened("EVENT") - producer.Closed("EVENT");
    producer.AutoStream(3);
    for (int round = 0; round < 1000; ++round) {
        Start();
        ASSERT_TRUE(Retrieve()) << round;
        Stop();
    }
    EXPECT_EQ(producer.Log("DSAllocAndAnnounceBuffer").size(), 6u);
    EXPECT_EQ(producer.Count("DSStopAcquisition"), 1000u);
    // One for each buffer is left.
    EXPECT_EQ(producer.Opened("EVENT") - producer.Closed("EVENT"), registered + 6);
}

TEST_F(AcquisitionStress, TwoBlockedReadersAreReleasedByEveryStop) {
    int slow = 0;
    for (int round = 0; round < ROUNDS; ++round) {
        Start();
        std::array<Clock::time_point, 2> released;
        Clock::time_point stopping;
        {
            const auto read = [&](size_t reader) {
                EXPECT_FALSE(Retrieve(INFINITE, ThrowException));
                released[reader] = Clock::now();
            };
            const SleepyThread first([&] { read(0); });
            const SleepyThread second([&] { read(1); });
            first.WaitUntilAsleep();
            second.WaitUntilAsleep();
            stopping = Clock::now();
            Stop();
        }
        for (const Clock::time_point time : released) {
            ASSERT_LT(time - stopping, std::chrono::seconds(5)) << round;
            slow += time - stopping > PROMPT;
        }
    }
    // The machine may keep a thread waiting now and then; the library may not.
    EXPECT_LE(slow, ROUNDS / 50);
}

TEST_F(AcquisitionStress, ConsumersWithHeldBuffersSurviveRestarts) {
    producer.AutoStream(20);
    std::optional<Consumer> first(std::in_place, stream.get());
    std::optional<Consumer> second(std::in_place, stream.get(), 2);
    for (int round = 0; round < ROUNDS; ++round) {
        const uint64_t before = first->Frames() + second->Frames();
        Start();
        EXPECT_TRUE(Eventually([&] { return first->Frames() + second->Frames() > before + 3; })) << round;
        Stop();
    }
    first.reset();
    second.reset();
    producer.AutoStream(0);
    Start();
    EXPECT_EQ(Info()->GetNumQueued(), 6u);
    EXPECT_EQ(producer.Log("DSAllocAndAnnounceBuffer").size(), 6u);
}

TEST_F(AcquisitionStress, ConsumersWithHeldBuffersSurviveReplacements) {
    producer.AutoStream(20);
    Consumer first(stream.get());
    Consumer second(stream.get(), 2);
    for (int round = 0; round < ROUNDS; ++round) {
        stream->SetStreamBufferCount(round % 2 == 0 ? 6 : 5);
        const uint64_t before = first.Frames() + second.Frames();
        Start();
        EXPECT_TRUE(Eventually([&] { return first.Frames() + second.Frames() > before + 3; })) << round;
        Stop();
    }
    first.End();
    second.End();
    EXPECT_GE(producer.Log("DSRevokeBuffer").size(), static_cast<size_t>(ROUNDS / 2 * 6));
}

TEST_F(AcquisitionStress, ErrorsAreReportedWhileAcquisitionEnds) {
    producer.Answer("EventGetData").On("DS1").With(GC_ERR_IO);
    std::atomic<bool> end{false};
    std::atomic<int> errors{0};
    std::thread reader([&] {
        while (!end) {
            try {
                stream->RetrieveBuffer(1, ReturnNull);
            } catch (const CZqGenTLErrorException& exception) {
                EXPECT_EQ(exception.GetError(), GC_ERR_IO);
                ++errors;
            }
        }
    });
    for (int round = 0; round < ROUNDS / 10; ++round) {
        const int before = errors;
        Start();
        EXPECT_TRUE(Eventually([&] { return errors > before; }));
        Stop();
    }
    end = true;
    reader.join();
}

TEST_F(AcquisitionStress, QuestionsFromAnotherThreadAreAnsweredMeanwhile) {
    producer.AutoStream(10);
    std::atomic<bool> end{false};
    std::thread asking([&] {
        while (!end) {
            stream->IsGrabbing();
            stream->GetCurrentFPS();
            stream->GetCurrentBPS();
            EXPECT_LE(Info()->GetNumAwaitDelivery(), 12u);
            stream->DeregisterCallback(stream->RegisterCallback(MakeCallback([](IZqCallbackParamBase*) {})));
        }
    });
    Consumer consumer(stream.get());
    for (int round = 0; round < ROUNDS; ++round) {
        Start();
        Stop();
    }
    end = true;
    asking.join();
}

class DeviceStress : public ModuleTree {};

TEST_F(DeviceStress, TwoHundredOpeningsAndClosings) {
    producer.AutoStream(2);
    for (int round = 0; round < 200; ++round) {
        System system = OpenSystem();
        const Device device = OpenDevice(system);
        const Stream stream(device->CreateIZqDataStream(0, nullptr));
        if (round % 4 != 0)
            continue;
        stream->StartAcquisition(GENTL_INFINITE, ACQ_START_FLAGS_DEFAULT);
        ASSERT_TRUE(Buffer(stream->RetrieveBuffer(10000, ReturnNull))) << round;
    }
    EXPECT_EQ(producer.Closed("DEV"), 200u);
    EXPECT_EQ(producer.Closed("DS"), 200u);
}

TEST_F(DeviceStress, EveryLossReleasesItsBlockedReaders) {
    System system = OpenSystem();
    for (int round = 0; round < ROUNDS / 3; ++round) {
        const Device device = OpenDevice(system);
        const Stream stream(device->CreateIZqDataStream(0, nullptr));
        stream->StartAcquisition(GENTL_INFINITE, ACQ_START_FLAGS_DEFAULT);
        const auto read = [&] {
            const Thrown thrown =
                Catch<GenICam::AccessException>([&] { stream->RetrieveBuffer(INFINITE, ReturnNull); });
            EXPECT_EQ(thrown.text, "The device is lost.");
        };
        const SleepyThread first(read);
        const SleepyThread second(read);
        first.WaitUntilAsleep();
        second.WaitUntilAsleep();
        EXPECT_TRUE(producer.PushDeviceLost("DEV1"));
    }
}

} // namespace
} // namespace ZqTest
