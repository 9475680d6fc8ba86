#include <atomic>
#include <thread>
#include <vector>

#include "tests/integration/Cameras.h"

namespace ZqTest {
namespace {

/// The CRC that the camera puts into the chunk PayloadCRC16: polynomial 0x1021, start value 0xFFFF.
uint16_t Crc16(const uint8_t* bytes, size_t size) {
    uint16_t crc = 0xFFFF;
    for (size_t at = 0; at < size; ++at) {
        crc = static_cast<uint16_t>(crc ^ bytes[at] << 8);
        for (int bit = 0; bit < 8; ++bit)
            crc = static_cast<uint16_t>(crc & 0x8000 ? crc << 1 ^ 0x1021 : crc << 1);
    }
    return crc;
}

class Chunks : public Cameras, public testing::WithParamInterface<size_t> {
protected:
    Chunks() : device(Open(GetParam())), stream(OpenStream(device)) {
        SetSize(device, 64, 32);
        RunFreely(device);
    }

    GenApi::INode* Node(const char* name) { return device->GetRemoteIZqPort()->GetINodeMap()->GetNode(name); }

    void EnableAll() {
        GenApi::CBooleanPtr(Node("ChunkModeActive"))->SetValue(true);
        GenApi::CEnumerationPtr selector = Node("ChunkSelector");
        GenApi::StringList_t chunks;
        selector->GetSymbolics(chunks);
        for (const auto& chunk : chunks) {
            selector->FromString(chunk);
            GenApi::CBooleanPtr(Node("ChunkEnable"))->SetValue(true);
        }
    }

    Buffer Retrieve() { return Buffer(stream->RetrieveBuffer(10000, ZqTimeoutHandling_ThrowException)); }

    static int64_t Value(const Buffer& buffer, const char* name) {
        return GenApi::CIntegerPtr(buffer->GetChunkINodeMap()->GetNode(name))->GetValue();
    }

    Device device;
    Stream stream;
};

TEST_P(Chunks, DescribeTheFrame) {
    EnableAll();
    Integer(device, "OffsetX")->SetValue(16);
    Start(device, stream);
    for (int frame = 0; frame < 20; ++frame) {
        const Buffer buffer = Retrieve();
        const IZqStreamBufferInfo& info = *buffer->GetIZqStreamBufferInfo();
        IZqImage& image = *buffer->GetIZqImage();
        EXPECT_EQ(Value(buffer, "ChunkFrameID"), static_cast<int64_t>(info.GetFrameID()));
        EXPECT_EQ(Value(buffer, "ChunkTimestamp"), static_cast<int64_t>(info.GetTimestamp()));
        EXPECT_EQ(Value(buffer, "ChunkWidth"), 64);
        EXPECT_EQ(Value(buffer, "ChunkHeight"), 32);
        EXPECT_EQ(Value(buffer, "ChunkOffsetX"), 16);
        EXPECT_EQ(Value(buffer, "ChunkPayloadCRC16"),
                  Crc16(static_cast<const uint8_t*>(image.GetImageBuffer()), 64 * 32));
        INodeMap* const pNodeMap = buffer->GetChunkINodeMap();
        EXPECT_EQ(GenApi::CFloatPtr(pNodeMap->GetNode("ChunkExposureTime"))->GetValue(),
                  GenApi::CFloatPtr(Node("ExposureTime"))->GetValue());
        EXPECT_STREQ(GenApi::CEnumerationPtr(pNodeMap->GetNode("ChunkPixelFormat"))->ToString().c_str(),
                     "Mono8");
    }
    Stop(device, stream);
}

TEST_P(Chunks, BelongToTheirFrameWhileSixBuffersAreInFlight) {
    EnableAll();
    const uint64_t frames = 20000 / REPEAT_PART;
    std::atomic<uint64_t> taken{0}, wrong{0};
    Start(device, stream);
    const auto read = [&] {
        while (taken++ < frames) {
            const Buffer buffer = Retrieve();
            const IZqStreamBufferInfo& info = *buffer->GetIZqStreamBufferInfo();
            if (Value(buffer, "ChunkFrameID") != static_cast<int64_t>(info.GetFrameID()) ||
                Value(buffer, "ChunkTimestamp") != static_cast<int64_t>(info.GetTimestamp()))
                ++wrong;
        }
    };
    std::vector<std::thread> readers;
    for (int reader = 0; reader < 4; ++reader)
        readers.emplace_back(read);
    for (std::thread& reader : readers)
        reader.join();
    Stop(device, stream);
    EXPECT_EQ(wrong, 0u);
}

TEST_P(Chunks, ThatAreSwitchedOffAreNotAvailable) {
    GenApi::CBooleanPtr(Node("ChunkModeActive"))->SetValue(true);
    GenApi::CEnumerationPtr(Node("ChunkSelector"))->FromString("FrameID");
    GenApi::CBooleanPtr(Node("ChunkEnable"))->SetValue(true);
    Start(device, stream);
    const Buffer buffer = Retrieve();
    EXPECT_EQ(Value(buffer, "ChunkFrameID"),
              static_cast<int64_t>(buffer->GetIZqStreamBufferInfo()->GetFrameID()));
    EXPECT_FALSE(GenApi::IsReadable(buffer->GetChunkINodeMap()->GetNode("ChunkWidth")));
    Stop(device, stream);
}

TEST_P(Chunks, AreNotAvailableWhileTheModeIsOff) {
    Start(device, stream);
    const Buffer buffer = Retrieve();
    EXPECT_FALSE(GenApi::IsReadable(buffer->GetChunkINodeMap()->GetNode("ChunkFrameID")));
    Stop(device, stream);
}

INSTANTIATE_TEST_SUITE_P(Cameras, Chunks, testing::Values(0, 1, 2));

} // namespace
} // namespace ZqTest
