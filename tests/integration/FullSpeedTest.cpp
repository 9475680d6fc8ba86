#include <atomic>
#include <chrono>
#include <fstream>
#include <thread>

#include <unistd.h>

#include "tests/integration/Cameras.h"

namespace ZqTest {
namespace {

constexpr uint64_t FRAMES = 1000000 / REPEAT_PART;

/// Resident memory of the process, in bytes.
size_t ResidentBytes() {
    std::ifstream statm("/proc/self/statm");
    size_t total = 0;
    size_t resident = 0;
    statm >> total >> resident;
    return resident * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

/// Checks that frames come each once, in order, and that memory stays as it was after the first tenth.
class FrameChecker {
public:
    void Take(IZqStreamBufferReleasable* pBuffer) {
        const Buffer buffer(pBuffer);
        const IZqStreamBufferInfo& info = *buffer->GetIZqStreamBufferInfo();
        if (info.GetFrameID() != m_Frames || info.IsIncomplete())
            ++m_Faults;
        ++m_Frames;
        if (m_Frames == FRAMES / 10)
            m_ResidentBefore = ResidentBytes();
    }

    uint64_t Frames() const { return m_Frames; }

    void Verify() const {
        EXPECT_EQ(m_Frames, FRAMES);
        EXPECT_EQ(m_Faults, 0u);
#ifndef ZQAPI_SLOWED_DOWN
        EXPECT_LT(ResidentBytes(), m_ResidentBefore + (1u << 20));
#endif
    }

private:
    std::atomic<uint64_t> m_Frames{0};
    uint64_t m_Faults = 0;
    size_t m_ResidentBefore = 0;
};

class FullSpeed : public Cameras {
protected:
    FullSpeed() : device(Open(0)) {
        SetSize(device, 8, 8);
        RunFreely(device);
        stream = OpenStream(device);
    }

    Device device;
    Stream stream;
};

TEST_F(FullSpeed, RetrievedFramesAreAllThereInOrder) {
    EXPECT_EQ(stream->GetIZqDataStreamInfo()->GetPayloadSize(), 64u);
    FrameChecker checker;
    Start(device, stream, FRAMES);
    while (checker.Frames() < FRAMES)
        checker.Take(stream->RetrieveBuffer(10000, ZqTimeoutHandling_ThrowException));
    EXPECT_EQ(stream->RetrieveBuffer(0, ZqTimeoutHandling_ReturnNull), nullptr);
    EXPECT_EQ(stream->GetIZqDataStreamInfo()->GetNumUnderrun(), 0u);
    checker.Verify();
    Stop(device, stream);
}

TEST_F(FullSpeed, FramesGivenToACallbackAreAllThereInOrder) {
    FrameChecker checker;
    void* const handle = stream->RegisterCallback(MakeCallback([&](IZqCallbackParamBase*) {
        if (IZqStreamBufferReleasable* const pBuffer =
                stream->RetrieveBuffer(0, ZqTimeoutHandling_ReturnNull))
            checker.Take(pBuffer);
    }));
    Start(device, stream, FRAMES);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(5);
    while (checker.Frames() < FRAMES && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    Stop(device, stream);
    stream->DeregisterCallback(handle);
    EXPECT_EQ(stream->GetIZqDataStreamInfo()->GetNumUnderrun(), 0u);
    checker.Verify();
}

} // namespace
} // namespace ZqTest
