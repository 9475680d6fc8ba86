#include "ProducerTest.h"

#include <algorithm>

namespace {

namespace chunk {
constexpr uint32_t Image = 0;
constexpr uint32_t FrameID = 1;
constexpr uint32_t Timestamp = 2;
constexpr uint32_t ExposureTime = 3;
constexpr uint32_t Gain = 4;
constexpr uint32_t Width = 5;
constexpr uint32_t OffsetY = 8;
constexpr uint32_t PixelFormat = 9;
constexpr uint32_t Crc16 = 11;
constexpr uint32_t Count = 12;
} // namespace chunk

class Chunks : public CameraTest {
protected:
    void OpenSmall(const char* interfaceId) {
        Open(interfaceId);
        OpenStream();
        MakeSmallAndFast();
    }

    void Enable(const std::vector<uint32_t>& chunks, bool on = true) {
        ASSERT_EQ(WriteInt(camera::ChunkModeActive, 1), GC_ERR_SUCCESS);
        for (const uint32_t chunk : chunks) {
            ASSERT_EQ(WriteInt(camera::ChunkSelector, chunk), GC_ERR_SUCCESS);
            ASSERT_EQ(WriteInt(camera::ChunkEnable, on ? 1 : 0), GC_ERR_SUCCESS);
        }
    }

    size_t PayloadSize() { return StreamInfo<size_t>(STREAM_INFO_PAYLOAD_SIZE); }

    /// The first frame of an acquisition of one frame, in a buffer of this size.
    BUFFER_HANDLE Acquire(size_t size) {
        Queue(Announce(1, size));
        Start(1);
        return Next();
    }

    std::vector<SINGLE_CHUNK_DATA> List(BUFFER_HANDLE buffer) {
        size_t count = 0;
        EXPECT_EQ(gentl.DSGetBufferChunkData(stream, buffer, nullptr, &count), GC_ERR_SUCCESS);
        std::vector<SINGLE_CHUNK_DATA> list(count);
        EXPECT_EQ(gentl.DSGetBufferChunkData(stream, buffer, list.data(), &count), GC_ERR_SUCCESS);
        EXPECT_EQ(count, list.size());
        return list;
    }

    std::vector<uint8_t> Bytes(BUFFER_HANDLE buffer, size_t offset, size_t size) {
        const auto* base = BufferInfo<const uint8_t*>(buffer, BUFFER_INFO_BASE);
        return {base + offset, base + offset + size};
    }

    template <class T>
    T ValueOf(BUFFER_HANDLE buffer, uint64_t id) {
        for (const SINGLE_CHUNK_DATA& entry : List(buffer)) {
            if (entry.ChunkID != id)
                continue;
            T value{};
            EXPECT_EQ(entry.ChunkLength, sizeof value);
            std::memcpy(&value, Bytes(buffer, static_cast<size_t>(entry.ChunkOffset), sizeof value).data(),
                        sizeof value);
            return value;
        }
        ADD_FAILURE() << "no chunk " << id;
        return T{};
    }

    /// CRC-16 bit by bit.
    static uint32_t CrcOf(const std::vector<uint8_t>& bytes) {
        uint32_t crc = 0xFFFF;
        for (const uint8_t byte : bytes) {
            crc ^= uint32_t{byte} << 8;
            for (int bit = 0; bit < 8; ++bit)
                crc = ((crc << 1) ^ ((crc & 0x8000) != 0 ? 0x1021 : 0)) & 0xFFFF;
        }
        return crc;
    }
};

using Raw = std::vector<uint8_t>;

} // namespace

TEST_F(Chunks, AreOffAfterPowerUp) {
    OpenSmall(u3vInterface);
    EXPECT_EQ(PayloadSize(), 64U);
    EXPECT_EQ(WriteInt(camera::ChunkEnable, 1), GC_ERR_ACCESS_DENIED);
    const BUFFER_HANDLE buffer = Acquire(64);
    ASSERT_NE(buffer, nullptr);
    EXPECT_FALSE(BufferInfo<bool8_t>(buffer, BUFFER_INFO_CONTAINS_CHUNKDATA));
    size_t count = 0;
    EXPECT_EQ(gentl.DSGetBufferChunkData(stream, buffer, nullptr, &count), GC_ERR_NO_DATA);
    EXPECT_EQ(BufferInfoResult(buffer, BUFFER_INFO_CHUNKLAYOUTID), GC_ERR_NO_DATA);
    EXPECT_EQ(BufferInfoResult(buffer, BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE), GC_ERR_NO_DATA);
}

TEST_F(Chunks, PayloadSizeCountsEveryChunkAndItsTag) {
    OpenSmall(gevInterface);
    Enable({});
    EXPECT_EQ(PayloadSize(), 64U + 8);
    Enable({chunk::FrameID});
    EXPECT_EQ(PayloadSize(), 64U + 8 + 8 + 8);
    Enable({chunk::Crc16});
    EXPECT_EQ(PayloadSize(), 64U + 8 + 8 + 8 + 4 + 8);
    Enable({chunk::Image}, false);
    EXPECT_EQ(PayloadSize(), 8U + 8 + 4 + 8);
    uint8_t bytes[8];
    size_t size = sizeof bytes;
    ASSERT_EQ(gentl.GCReadPort(remote, 0x608, bytes, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(bytes[7], 28);
}

TEST_F(Chunks, OfCoaXPressHaveNoTags) {
    OpenSmall(cxpInterface);
    Enable({chunk::FrameID, chunk::Width});
    EXPECT_EQ(PayloadSize(), 64U + 8 + 4);
    const BUFFER_HANDLE buffer = Acquire(76);
    ASSERT_NE(buffer, nullptr);
    const auto list = List(buffer);
    ASSERT_EQ(list.size(), 3U);
    EXPECT_EQ(list[0].ChunkID, 1U);
    EXPECT_EQ(list[0].ChunkOffset, 0);
    EXPECT_EQ(list[0].ChunkLength, 64U);
    EXPECT_EQ(list[1].ChunkID, 0x1001U);
    EXPECT_EQ(list[1].ChunkOffset, 64);
    EXPECT_EQ(list[2].ChunkID, 0x1005U);
    EXPECT_EQ(list[2].ChunkOffset, 72);
    EXPECT_EQ(Bytes(buffer, 72, 4), (Raw{8, 0, 0, 0}));
}

TEST_F(Chunks, TagsOfGigEVisionAreBigEndianAndDataIsNot) {
    OpenSmall(gevInterface);
    Enable({chunk::Width});
    const BUFFER_HANDLE buffer = Acquire(PayloadSize());
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(Bytes(buffer, 64, 20),
              (Raw{0, 0, 0, 1, 0, 0, 0, 64, 8, 0, 0, 0, 0, 0, 0x10, 0x05, 0, 0, 0, 4}));
}

TEST_F(Chunks, TagsOfUsb3VisionAreLittleEndian) {
    OpenSmall(u3vInterface);
    Enable({chunk::Width});
    const BUFFER_HANDLE buffer = Acquire(PayloadSize());
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(Bytes(buffer, 64, 20),
              (Raw{1, 0, 0, 0, 64, 0, 0, 0, 8, 0, 0, 0, 0x05, 0x10, 0, 0, 4, 0, 0, 0}));
}

TEST_F(Chunks, TellWhatTheBufferTells) {
    for (const char* id : {u3vInterface, gevInterface, cxpInterface}) {
        SCOPED_TRACE(id);
        OpenSmall(id);
        WriteInt(camera::OffsetY, 3);
        WriteFloat(camera::ExposureTime, 250.0);
        WriteFloat(camera::Gain, 6.0);
        std::vector<uint32_t> all(chunk::Count);
        for (uint32_t i = 0; i < chunk::Count; ++i)
            all[i] = i;
        Enable(all);
        const BUFFER_HANDLE buffer = Acquire(PayloadSize());
        ASSERT_NE(buffer, nullptr);
        EXPECT_EQ(List(buffer).size(), chunk::Count);
        EXPECT_EQ(ValueOf<uint64_t>(buffer, 0x1001), BufferInfo<uint64_t>(buffer, BUFFER_INFO_FRAMEID));
        EXPECT_EQ(ValueOf<uint64_t>(buffer, 0x1002), BufferInfo<uint64_t>(buffer, BUFFER_INFO_TIMESTAMP));
        EXPECT_EQ(ValueOf<double>(buffer, 0x1003), 250.0);
        EXPECT_EQ(ValueOf<double>(buffer, 0x1004), 6.0);
        EXPECT_EQ(ValueOf<uint32_t>(buffer, 0x1005), 8U);
        EXPECT_EQ(ValueOf<uint32_t>(buffer, 0x1006), 8U);
        EXPECT_EQ(ValueOf<uint32_t>(buffer, 0x1007), 0U);
        EXPECT_EQ(ValueOf<uint32_t>(buffer, 0x1008), 3U);
        EXPECT_EQ(ValueOf<uint32_t>(buffer, 0x1009), 0x01080001U);
        EXPECT_EQ(ValueOf<uint32_t>(buffer, 0x100B), CrcOf(Bytes(buffer, 0, 64)));
        EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_PAYLOADTYPE), size_t{PAYLOAD_TYPE_IMAGE});
        EXPECT_TRUE(BufferInfo<bool8_t>(buffer, BUFFER_INFO_CONTAINS_CHUNKDATA));
        EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE), PayloadSize());
        EXPECT_EQ(gentl.IFClose(interface), GC_ERR_SUCCESS);
    }
}

TEST_F(Chunks, WithoutTheImageArePayloadOfTheirOwn) {
    OpenSmall(gevInterface);
    Enable({chunk::FrameID});
    Enable({chunk::Image}, false);
    const BUFFER_HANDLE buffer = Acquire(PayloadSize());
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_PAYLOADTYPE), size_t{PAYLOAD_TYPE_CHUNK_ONLY});
    EXPECT_FALSE(BufferInfo<bool8_t>(buffer, BUFFER_INFO_IMAGEPRESENT));
    for (const BUFFER_INFO_CMD ofImages :
         {BUFFER_INFO_WIDTH, BUFFER_INFO_XPADDING, BUFFER_INFO_YPADDING, BUFFER_INFO_IMAGEOFFSET})
        EXPECT_EQ(BufferInfoResult(buffer, ofImages), GC_ERR_NO_DATA) << ofImages;
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_SIZE_FILLED), 16U);
    EXPECT_EQ(List(buffer).size(), 1U);
}

TEST_F(Chunks, LayoutIdFollowsTheLayout) {
    OpenSmall(u3vInterface);
    std::vector<uint64_t> ids;
    const auto take = [&] {
        const BUFFER_HANDLE buffer = Acquire(4096);
        ids.push_back(BufferInfo<uint64_t>(buffer, BUFFER_INFO_CHUNKLAYOUTID));
        ASSERT_EQ(gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    };
    Enable({chunk::Gain});
    take();
    take();
    Enable({chunk::Timestamp});
    take();
    WriteInt(camera::Height, 9);
    take();
    EXPECT_EQ(ids[0], ids[1]);
    EXPECT_NE(ids[1], ids[2]);
    EXPECT_NE(ids[2], ids[3]);
    EXPECT_EQ(std::count(ids.begin(), ids.end(), 0U), 0);
}

TEST_F(Chunks, CutOffByASmallBufferCannotBeParsed) {
    for (const char* id : {u3vInterface, gevInterface, cxpInterface}) {
        SCOPED_TRACE(id);
        OpenSmall(id);
        Enable({chunk::FrameID});
        const BUFFER_HANDLE buffer = Acquire(70);
        ASSERT_NE(buffer, nullptr);
        EXPECT_TRUE(BufferInfo<bool8_t>(buffer, BUFFER_INFO_IS_INCOMPLETE));
        EXPECT_TRUE(BufferInfo<bool8_t>(buffer, BUFFER_INFO_DATA_LARGER_THAN_BUFFER));
        EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_SIZE_FILLED), 70U);
        EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_DELIVERED_IMAGEHEIGHT), 8U);
        size_t count = 0;
        EXPECT_EQ(gentl.DSGetBufferChunkData(stream, buffer, nullptr, &count), GC_ERR_PARSING_CHUNK_DATA);
        EXPECT_EQ(gentl.IFClose(interface), GC_ERR_SUCCESS);
    }
}

TEST_F(Chunks, ListNeedsRoomForAllEntries) {
    OpenSmall(u3vInterface);
    Enable({chunk::FrameID});
    const BUFFER_HANDLE buffer = Acquire(PayloadSize());
    SINGLE_CHUNK_DATA entry{};
    size_t count = 1;
    EXPECT_EQ(gentl.DSGetBufferChunkData(stream, buffer, &entry, &count), GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(gentl.DSGetBufferChunkData(stream, buffer, &entry, nullptr), GC_ERR_INVALID_PARAMETER);
}

TEST_F(Chunks, AreLockedWhileTheTransportLayerIs) {
    OpenSmall(u3vInterface);
    ASSERT_EQ(WriteInt(camera::ChunkModeActive, 1), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::TLParamsLocked, 1), GC_ERR_SUCCESS);
    EXPECT_EQ(WriteInt(camera::ChunkModeActive, 0), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(WriteInt(camera::ChunkEnable, 1), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(WriteInt(camera::ChunkSelector, chunk::PixelFormat), GC_ERR_SUCCESS);
    EXPECT_EQ(WriteInt(camera::ChunkSelector, chunk::Count), GC_ERR_INVALID_VALUE);
}
