#include "tests/integration/Cameras.h"

namespace ZqTest {
namespace {

/// The GigE Vision cameras with a description of schema 1.1 and of schema 1.0.
class Schemas : private SimulatedCameras, public Cameras {
protected:
    Schemas() : SimulatedCameras("GEV=2") {}

    Device OpenAt(size_t index) {
        return Device(system->GetIZqInterface(0)->CreateIZqDevice(index, DEVICE_ACCESS_CONTROL));
    }

    static std::string Mechanism(Device& device) {
        GenApi::CEnumerationPtr mechanism =
            device->GetLocalIZqPort()->GetINodeMap()->GetNode("DeviceEndianessMechanism");
        return mechanism->ToString(false, true).c_str();
    }

    static uint16_t MinorOf(Device& device) {
        GenApi::CDeviceInfoPtr description = device->GetRemoteIZqPort()->GetINodeMap();
        GenApi::Version_t schema{};
        description->GetSchemaVersion(schema);
        return schema.Minor;
    }
};

} // namespace

TEST_F(Schemas, DecideOnTheEndianessMechanism) {
    for (const size_t index : {0, 1}) {
        Device device = OpenAt(index);
        EXPECT_EQ(MinorOf(device), index == 0 ? 1 : 0);
        EXPECT_EQ(Mechanism(device), index == 0 ? "Standard" : "Legacy");
    }
}

TEST_F(Schemas, StreamAlikeWithChunks) {
    for (const size_t index : {0, 1}) {
        SCOPED_TRACE(index);
        Device device = OpenAt(index);
        Stream stream = OpenStream(device);
        SetSize(device, 64, 32);
        RunFreely(device);
        INodeMap* const nodes = device->GetRemoteIZqPort()->GetINodeMap();
        GenApi::CBooleanPtr(nodes->GetNode("ChunkModeActive"))->SetValue(true);
        for (const char* chunk : {"FrameID", "Width", "ExposureTime"}) {
            GenApi::CEnumerationPtr(nodes->GetNode("ChunkSelector"))->FromString(chunk);
            GenApi::CBooleanPtr(nodes->GetNode("ChunkEnable"))->SetValue(true);
        }
        Start(device, stream);
        for (int64_t frame = 0; frame < 10; ++frame) {
            const Buffer buffer(stream->RetrieveBuffer(10000, ZqTimeoutHandling_ThrowException));
            INodeMap* const chunks = buffer->GetChunkINodeMap();
            EXPECT_EQ(GenApi::CIntegerPtr(chunks->GetNode("ChunkFrameID"))->GetValue(), frame);
            EXPECT_EQ(GenApi::CIntegerPtr(chunks->GetNode("ChunkWidth"))->GetValue(), 64);
            EXPECT_EQ(GenApi::CFloatPtr(chunks->GetNode("ChunkExposureTime"))->GetValue(), 1000.0);
            const auto* image = static_cast<const uint8_t*>(buffer->GetIZqImage()->GetImageBuffer());
            EXPECT_EQ(image[64 + 1], static_cast<uint8_t>(frame + 2)); // a ramp from its id on
        }
        Stop(device, stream);
    }
}

} // namespace ZqTest
