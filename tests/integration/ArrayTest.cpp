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
    struct Account {
        uint64_t next = 0;
        uint64_t lost = 0;
    };
    std::map<IZqDataStream*, Account> accounts;
    const auto end = Clock::now() + StreamingTime();
    while (Clock::now() < end) {
        const Buffer buffer(streams.RetrieveBuffer(5000, ZqTimeoutHandling_ThrowException));
        const IZqStreamBufferInfo& info = *buffer->GetIZqStreamBufferInfo();
        EXPECT_FALSE(info.IsIncomplete());
        Account& account = accounts[buffer->GetIZqDataStream()];
        ASSERT_GE(info.GetFrameID(), account.next);
        account.lost += info.GetFrameID() - account.next;
        account.next = info.GetFrameID() + 1;
    }
    EXPECT_TRUE(streams.IsGrabbingAll());
    devices.AcquisitionStop();
    streams.StopAcquisition(ACQ_STOP_FLAGS_DEFAULT);
    EXPECT_EQ(accounts.size(), 4u);
    for (const auto& [stream, account] : accounts) {
        // On a machine that is too busy a camera finds no buffer, and says so.
        EXPECT_LE(account.lost, stream->GetIZqDataStreamInfo()->GetNumUnderrun());
        EXPECT_GE(account.next, 30 * static_cast<uint64_t>(StreamingTime().count()));
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
