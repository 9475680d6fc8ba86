#include "ProducerTest.h"

namespace {

class Parts : public CameraTest {
protected:
    void SetUp() override {
        CameraTest::SetUp();
        Open();
        OpenStream();
        MakeSmallAndFast();
        ASSERT_EQ(WriteInt(camera::PixelFormat, 0x01100005), GC_ERR_SUCCESS);
    }

    void EnableConfidence() {
        ASSERT_EQ(WriteInt(camera::ComponentSelector, 1), GC_ERR_SUCCESS);
        ASSERT_EQ(WriteInt(camera::ComponentEnable, 1), GC_ERR_SUCCESS);
    }

    BUFFER_HANDLE Acquire(size_t size) {
        Queue(Announce(1, size));
        Start(1);
        return Next();
    }

    uint64_t Info(BUFFER_HANDLE buffer, uint32_t part, BUFFER_PART_INFO_CMD command, INFO_DATATYPE expected) {
        uint64_t value = 0;
        size_t size = sizeof value;
        INFO_DATATYPE type = 0;
        EXPECT_EQ(gentl.DSGetBufferPartInfo(stream, buffer, part, command, &type, &value, &size),
                  GC_ERR_SUCCESS);
        EXPECT_EQ(type, expected);
        return value;
    }
};

} // namespace

TEST_F(Parts, AreNoneInAPlainFrame) {
    const BUFFER_HANDLE buffer = Acquire(128);
    uint32_t count = 0;
    EXPECT_EQ(gentl.DSGetNumBufferParts(stream, buffer, &count), GC_ERR_NO_DATA);
    uint64_t value = 0;
    size_t size = sizeof value;
    INFO_DATATYPE type = 0;
    EXPECT_EQ(gentl.DSGetBufferPartInfo(stream, buffer, 0, BUFFER_PART_INFO_WIDTH, &type, &value, &size),
              GC_ERR_NO_DATA);
    EXPECT_EQ(WriteInt(camera::ComponentEnable, 0), GC_ERR_ACCESS_DENIED);
}

TEST_F(Parts, FollowEachOther) {
    EnableConfidence();
    EXPECT_EQ(StreamInfo<size_t>(STREAM_INFO_PAYLOAD_SIZE), 128U + 64);
    const BUFFER_HANDLE buffer = Acquire(192);
    ASSERT_NE(buffer, nullptr);
    uint32_t count = 0;
    ASSERT_EQ(gentl.DSGetNumBufferParts(stream, buffer, &count), GC_ERR_SUCCESS);
    EXPECT_EQ(count, 2U);
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_PAYLOADTYPE), size_t{PAYLOAD_TYPE_MULTI_PART});
    for (const BUFFER_INFO_CMD ofParts :
         {BUFFER_INFO_WIDTH, BUFFER_INFO_HEIGHT, BUFFER_INFO_XOFFSET, BUFFER_INFO_YOFFSET,
          BUFFER_INFO_XPADDING, BUFFER_INFO_PIXELFORMAT, BUFFER_INFO_PIXELFORMAT_NAMESPACE,
          BUFFER_INFO_DELIVERED_IMAGEHEIGHT})
        EXPECT_EQ(BufferInfoResult(buffer, ofParts), GC_ERR_NO_DATA) << ofParts;
    const auto base = BufferInfo<uint64_t>(buffer, BUFFER_INFO_BASE);
    EXPECT_EQ(Info(buffer, 0, BUFFER_PART_INFO_BASE, INFO_DATATYPE_PTR), base);
    EXPECT_EQ(Info(buffer, 1, BUFFER_PART_INFO_BASE, INFO_DATATYPE_PTR), base + 128);
    EXPECT_EQ(Info(buffer, 0, BUFFER_PART_INFO_DATA_SIZE, INFO_DATATYPE_SIZET), 128U);
    EXPECT_EQ(Info(buffer, 1, BUFFER_PART_INFO_DATA_SIZE, INFO_DATATYPE_SIZET), 64U);
    EXPECT_EQ(Info(buffer, 0, BUFFER_PART_INFO_DATA_TYPE, INFO_DATATYPE_SIZET),
              uint64_t{PART_DATATYPE_2D_IMAGE});
    EXPECT_EQ(Info(buffer, 1, BUFFER_PART_INFO_DATA_TYPE, INFO_DATATYPE_SIZET),
              uint64_t{PART_DATATYPE_CONFIDENCE_MAP});
    EXPECT_EQ(Info(buffer, 0, BUFFER_PART_INFO_DATA_FORMAT, INFO_DATATYPE_UINT64), 0x01100005U);
    EXPECT_EQ(Info(buffer, 1, BUFFER_PART_INFO_DATA_FORMAT, INFO_DATATYPE_UINT64), 0x010800C6U);
    EXPECT_EQ(Info(buffer, 1, BUFFER_PART_INFO_WIDTH, INFO_DATATYPE_SIZET), 8U);
    uint64_t value = 0;
    size_t size = sizeof value;
    INFO_DATATYPE type = 0;
    EXPECT_EQ(gentl.DSGetBufferPartInfo(stream, buffer, 2, BUFFER_PART_INFO_WIDTH, &type, &value, &size),
              GC_ERR_INVALID_INDEX);
    EXPECT_EQ(gentl.DSGetBufferPartInfo(stream, buffer, 0, 999, &type, &value, &size),
              GC_ERR_NOT_IMPLEMENTED);
}

TEST_F(Parts, ShareOneChunkSection) {
    EnableConfidence();
    ASSERT_EQ(WriteInt(camera::ChunkModeActive, 1), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::ChunkSelector, 1), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::ChunkEnable, 1), GC_ERR_SUCCESS);
    const BUFFER_HANDLE buffer = Acquire(192 + 8 + 16);
    ASSERT_NE(buffer, nullptr);
    SINGLE_CHUNK_DATA chunks[2];
    size_t count = 2;
    ASSERT_EQ(gentl.DSGetBufferChunkData(stream, buffer, chunks, &count), GC_ERR_SUCCESS);
    EXPECT_EQ(chunks[0].ChunkLength, 192U);
    EXPECT_EQ(chunks[1].ChunkOffset, 200);
}

TEST_F(Parts, OfACutOffFrameSayWhatTheyHave) {
    EnableConfidence();
    const BUFFER_HANDLE buffer = Acquire(128 + 24);
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(Info(buffer, 0, BUFFER_PART_INFO_DATA_SIZE, INFO_DATATYPE_SIZET), 128U);
    EXPECT_EQ(Info(buffer, 1, BUFFER_PART_INFO_DATA_SIZE, INFO_DATATYPE_SIZET), 24U);
    EXPECT_EQ(Info(buffer, 1, BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT, INFO_DATATYPE_SIZET), 3U);
}
