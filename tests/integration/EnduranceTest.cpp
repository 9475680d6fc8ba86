#include <chrono>
#include <future>
#include <thread>

#include "tests/integration/Cameras.h"

namespace ZqTest {
namespace {

using Endurance = Cameras;
using Clock = std::chrono::steady_clock;

constexpr uint64_t STARTS = 1000 / REPEAT_PART;
constexpr uint64_t OPENINGS = 200 / REPEAT_PART;

TEST_F(Endurance, StartsAndStopsAThousandTimes) {
    Device device = Open(0);
    SetSize(device, 64, 8);
    RunFreely(device);
    Stream stream = OpenStream(device);
    for (uint64_t round = 0; round < STARTS; ++round) {
        Start(device, stream);
        for (int frame = 0; frame < 3; ++frame)
            ASSERT_NE(Buffer(stream->RetrieveBuffer(5000, ZqTimeoutHandling_ThrowException)), nullptr)
                << round;
        Stop(device, stream);
        while (Buffer(stream->RetrieveBuffer(0, ZqTimeoutHandling_ReturnNull)))
            continue;
    }
}

TEST_F(Endurance, RestartsWithUnreadFramesLoseNoBuffer) {
    Device device = Open(1);
    SetSize(device, 64, 8);
    RunFreely(device);
    Stream stream = OpenStream(device);
    for (int round = 0; round < 20; ++round) {
        Start(device, stream);
        ASSERT_NE(Buffer(stream->RetrieveBuffer(5000, ZqTimeoutHandling_ThrowException)), nullptr) << round;
        Stop(device, stream);
    }
    EXPECT_EQ(stream->GetIZqDataStreamInfo()->GetNumAnnounced(), 6u);
}

TEST_F(Endurance, OpensAndClosesTwoHundredTimes) {
    for (uint64_t round = 0; round < OPENINGS; ++round) {
        Device device = Open(round % 3);
        Stream stream = OpenStream(device);
        Start(device, stream);
        ASSERT_NE(Buffer(stream->RetrieveBuffer(5000, ZqTimeoutHandling_ThrowException)), nullptr) << round;
    }
}

TEST(EnduranceOfSystems, OpenAndReleaseTwoHundredTimes) {
    ZqApiInitialize(ZqApiBuildVersion);
    for (uint64_t round = 0; round < OPENINGS; ++round) {
        const System system(CreateIZqSystem(ZqSystemVendor_Default, ZqInterfaceType_All));
        ASSERT_EQ(system->GetInterfaceCount(), 3u) << round;
        for (size_t i = 0; i < 3; ++i)
            ASSERT_EQ(system->GetIZqInterface(i)->GetDeviceCount(), 1u) << round;
        EXPECT_FALSE(system->UpdateInterfaceList());
    }
    ZqApiTerminate();
}

TEST_F(Endurance, StreamsOfAllCamerasRunAtOnce) {
    std::vector<std::thread> threads;
    for (size_t camera = 0; camera < 3; ++camera)
        threads.emplace_back([this, camera] {
            Device device = Open(camera);
            SetSize(device, 320, 240);
            RunFreely(device);
            Stream stream = OpenStream(device);
            Start(device, stream);
            for (uint64_t frame = 0; frame < 2000 / REPEAT_PART; ++frame) {
                const Buffer buffer(stream->RetrieveBuffer(10000, ZqTimeoutHandling_ThrowException));
                EXPECT_EQ(buffer->GetIZqStreamBufferInfo()->GetFrameID(), frame);
            }
            Stop(device, stream);
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(Endurance, StopReleasesABlockedReaderWithin50Milliseconds) {
    Device device = Open(0);
    Stream stream = OpenStream(device);
    for (int round = 0; round < 10; ++round) {
        // The camera is not started, so no frame comes.
        stream->StartAcquisition(GENTL_INFINITE, ACQ_START_FLAGS_DEFAULT);
        std::promise<void> entering;
        auto reader = std::async(std::launch::async, [&] {
            entering.set_value();
            IZqStreamBufferReleasable* const buffer =
                stream->RetrieveBuffer(INFINITE, ZqTimeoutHandling_ReturnNull);
            EXPECT_EQ(buffer, nullptr);
            return Clock::now();
        });
        entering.get_future().wait();
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        const auto stopped = Clock::now();
        stream->StopAcquisition(ACQ_STOP_FLAGS_DEFAULT);
        EXPECT_LT(reader.get() - stopped, std::chrono::milliseconds(50));
    }
}

TEST_F(Endurance, LossReleasesABlockedReaderAndTheCameraComesBack) {
    for (size_t camera = 0; camera < 3; ++camera) {
        SCOPED_TRACE(camera);
        Device device = Open(camera);
        Stream stream = OpenStream(device);
        stream->StartAcquisition(GENTL_INFINITE, ACQ_START_FLAGS_DEFAULT);
        auto reader = std::async(std::launch::async, [&]() -> std::string {
            try {
                stream->RetrieveBuffer(INFINITE, ZqTimeoutHandling_ReturnNull);
            } catch (const GenICam::AccessException& exception) {
                return exception.GetDescription();
            }
            return "nothing was thrown";
        });
        EXPECT_FALSE(device->IsDeviceLost());
        Execute(device, "SimulationDeviceLost");
        EXPECT_EQ(reader.get(), "The device is lost.");
        EXPECT_TRUE(device->IsDeviceLost());
        EXPECT_THROW(Stream(OpenStream(device)), GenICam::GenericException);
        const auto closing = Clock::now();
        stream.reset();
        device.reset();
        EXPECT_LT(Clock::now() - closing, std::chrono::seconds(2));

        Device again = Open(camera);
        EXPECT_FALSE(again->IsDeviceLost());
        EXPECT_EQ(Integer(again, "Width")->GetValue(), 640);
    }
}

} // namespace
} // namespace ZqTest
