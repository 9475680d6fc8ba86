#include <chrono>
#include <cstdlib>
#include <map>
#include <string>

#include "tests/integration/Cameras.h"

namespace ZqTest {
namespace {

using Clock = std::chrono::steady_clock;

/// ZQAPI_ENDURANCE_SECONDS, or two seconds.
std::chrono::seconds StreamingTime() {
    const char* const text = std::getenv("ZQAPI_ENDURANCE_SECONDS");
    return std::chrono::seconds(text != nullptr ? std::atoi(text) : 2);
}

/// Sets a variable before the cameras are looked for, and takes it back.
class SimulatedCameras {
public:
    explicit SimulatedCameras(const char* cameras) { ::setenv("ZQGENTL_SIM", cameras, 1); }
    ~SimulatedCameras() { ::unsetenv("ZQGENTL_SIM"); }
};

/// Two USB3 Vision cameras, a GigE Vision and a CoaXPress one, in one array.
class FourCameras : private SimulatedCameras, public Cameras {
protected:
    FourCameras() : SimulatedCameras("U3V=2,GEV=1,CXP=1") {
        for (uint32_t index = 0; index < system->GetInterfaceCount(); ++index) {
            IZqInterface& interface = *system->GetIZqInterface(index);
            for (uint32_t device = 0; device < interface.GetDeviceCount(); ++device)
                devices.Register(interface.CreateIZqDevice(device, DEVICE_ACCESS_CONTROL));
        }
        for (size_t index = 0; index < devices.GetSize(); ++index) {
            GenApi::CFloatPtr rate =
                devices[index]->GetRemoteIZqPort()->GetINodeMap()->GetNode("AcquisitionFrameRate");
            rate->SetValue(60.0);
            streams.Register(devices[index]->CreateIZqDataStream(0, nullptr));
        }
    }
    ~FourCameras() override {
        streams.Release();
        devices.Release();
    }

    CIZqDevicePtrArray devices;
    CIZqDataStreamPtrArray streams;
};

TEST_F(FourCameras, StreamThroughOneArrayInOrder) {
    ASSERT_EQ(streams.GetSize(), 4u);
    EXPECT_EQ(streams.RetrieveBuffer(0, ZqTimeoutHandling_ReturnNull), nullptr);
    streams.StartAcquisition(GENTL_INFINITE, ACQ_START_FLAGS_DEFAULT);
    devices.AcquisitionStart();
    std::map<IZqDataStream*, uint64_t> next;
    const auto end = Clock::now() + StreamingTime();
    while (Clock::now() < end) {
        const Buffer buffer(streams.RetrieveBuffer(5000, ZqTimeoutHandling_ThrowException));
        const IZqStreamBufferInfo& info = *buffer->GetIZqStreamBufferInfo();
        EXPECT_FALSE(info.IsIncomplete());
        ASSERT_EQ(info.GetFrameID(), next[buffer->GetIZqDataStream()]++);
    }
    EXPECT_TRUE(streams.IsGrabbingAll());
    devices.AcquisitionStop();
    streams.StopAcquisition(ACQ_STOP_FLAGS_DEFAULT);
    EXPECT_EQ(next.size(), 4u);
    for (const auto& [stream, frames] : next) {
        EXPECT_EQ(stream->GetIZqDataStreamInfo()->GetNumUnderrun(), 0u);
        EXPECT_NEAR(static_cast<double>(frames), 60.0 * static_cast<double>(StreamingTime().count()),
                    60.0 * static_cast<double>(StreamingTime().count()) / 4);
    }
}

TEST_F(FourCameras, TimeOutAndLossAreThoseOfTheStreams) {
    streams.StartAcquisition(GENTL_INFINITE, ACQ_START_FLAGS_DEFAULT);
    try {
        streams.RetrieveBuffer(20, ZqTimeoutHandling_ThrowException);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const GenICam::TimeoutException& exception) {
        EXPECT_STREQ(
            exception.GetDescription(),
            "A timeout occurred during the processing of CIZqDataStreamPtrArray::RetrieveBuffer(20, 1)");
    }
    streams.StopAcquisition(ACQ_STOP_FLAGS_DEFAULT);
    EXPECT_FALSE(streams.IsGrabbingAny());
}

} // namespace
} // namespace ZqTest
