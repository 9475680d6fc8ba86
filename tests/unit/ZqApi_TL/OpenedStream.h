#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <fstream>
#include <string>
#include <thread>

#include <unistd.h>

#include "ZqApi_TL/InsideInterfaces.h"
#include "tests/unit/ZqApi_TL/LoadedProducer.h"
#include "tests/unit/ZqApi_TL/ModuleTree.h"

namespace ZqTest {

constexpr auto ReturnNull = ZqTimeoutHandling_ReturnNull;
constexpr auto ThrowException = ZqTimeoutHandling_ThrowException;

/// A thread of which a test can tell that it sleeps.
class SleepyThread {
public:
    template <class Body>
    explicit SleepyThread(Body body)
        : m_Thread([this, body] {
              m_Id = gettid();
              body();
              m_Ended = true;
          }) {}
    ~SleepyThread() { m_Thread.join(); }
    SleepyThread(const SleepyThread&) = delete;
    SleepyThread& operator=(const SleepyThread&) = delete;

    bool HasEnded() const { return m_Ended; }
    /// Returns once the thread sleeps or has ended.
    void WaitUntilAsleep() const {
        while (!m_Ended && !(m_Id != 0 && State() == 'S'))
            std::this_thread::yield();
    }

private:
    char State() const {
        std::ifstream file("/proc/self/task/" + std::to_string(m_Id) + "/stat");
        std::string text;
        std::getline(file, text);
        const size_t at = text.rfind(") ");
        return at == std::string::npos ? '\0' : text[at + 2];
    }

    std::atomic<pid_t> m_Id{0};
    std::atomic<bool> m_Ended{false};
    std::thread m_Thread;
};

/// A system, its first device and that device's first stream, not started.
class OpenedStream : public OpenedDevice {
protected:
    explicit OpenedStream(const std::string& variant = "full") : OpenedDevice(variant) {}

    void SetUp() override {
        OpenedDevice::SetUp();
        stream = OpenStream();
    }

    void TearDown() override {
        stream.reset();
        OpenedDevice::TearDown();
    }

    void Start(uint64_t count = GENTL_INFINITE) { stream->StartAcquisition(count, ACQ_START_FLAGS_DEFAULT); }
    void Stop() { stream->StopAcquisition(ACQ_STOP_FLAGS_DEFAULT); }

    Buffer Retrieve(uint32_t timeoutMs = 10000, EZqTimeoutHandling_t handling = ReturnNull) {
        return Buffer(stream->RetrieveBuffer(timeoutMs, handling));
    }
    Buffer RetrieveNewFrame(const Frame& frame = Frame("pixels")) {
        EXPECT_TRUE(producer.PushFrame("DS1", frame));
        return Retrieve();
    }

    /// Pushes frames and waits until all of them stand in the stream's own queue.
    void PushUnread(size_t frames) {
        const uint64_t before = Unread();
        for (size_t frame = 0; frame < frames; ++frame)
            EXPECT_TRUE(producer.PushFrame("DS1", Frame("pixels")));
        EXPECT_TRUE(Eventually([&] { return Unread() == before + frames; }));
    }

    IZqDataStreamInside* Inside() { return dynamic_cast<IZqDataStreamInside*>(stream.get()); }
    const IZqDataStreamInfo* Info() { return stream->GetIZqDataStreamInfo(); }

    Stream stream;

private:
    /// What the producer has delivered and the stream does not yet count as delivered.
    uint64_t Unread() {
        const auto query = producer.Resolve<PDSGetInfo>("DSGetInfo");
        uint64_t delivered = 0;
        size_t size = sizeof delivered;
        INFO_DATATYPE type = 0;
        query(Inside()->GetDataStreamHandle(), STREAM_INFO_NUM_DELIVERED, &type, &delivered, &size);
        return delivered - Info()->GetNumDelivered();
    }
};

} // namespace ZqTest
