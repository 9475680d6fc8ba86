#pragma once

#include <string>
#include <vector>

#include "tests/support/ChunkNodes.h"
#include "tests/support/scripted_producer/Descriptions.h"
#include "tests/unit/ZqApi_TL/OpenedStream.h"

namespace ZqTest {

/// The scripted camera with chunk features: ChunkTimestamp (id 1001), ChunkWidth and ChunkHeight (1002) and
/// ChunkPixelFormat (1003), little-endian registers, under a root of that name; the image has id 1. Opened
/// by the test.
class ChunkCamera : public OpenedStream {
protected:
    static constexpr uint32_t IMAGE = 1, TIMESTAMP = 0x1001, SIZE = 0x1002, FORMAT = 0x1003;

    explicit ChunkCamera(const std::string& variant = "full") : OpenedStream(variant) {}

    void SetUp() override { Describe("ChunkDataControl"); }

    void Describe(const std::string& root) { DescribeChunks(producer, root); }

    void OpenAs(const std::string& tlType) {
        producer.Answer("GCGetPortInfo").On("REMOTE1").Command(PORT_INFO_TLTYPE).Text(tlType);
        producer.Answer("DevGetInfo").Command(DEVICE_INFO_TLTYPE).Text(tlType);
        OpenedStream::SetUp();
    }

    /// A complete frame whose payload is image and chunks.
    static Frame ChunkFrame(const std::string& bytes, size_t payloadType = PAYLOAD_TYPE_CHUNK_DATA) {
        return Frame(bytes).Info<size_t>(BUFFER_INFO_PAYLOADTYPE, INFO_DATATYPE_SIZET, payloadType);
    }
    static std::vector<Chunk> Stamped(uint64_t timestamp) {
        return {{IMAGE, "imageimage"}, {TIMESTAMP, Number(timestamp, 8)}};
    }
    static Frame StampedFrame(uint64_t timestamp) {
        return ChunkFrame(LittleEndianChunks(Stamped(timestamp)));
    }

    static GenApi::CIntegerPtr ChunkInteger(const Buffer& buffer, const char* name) {
        return buffer->GetChunkINodeMap()->GetNode(name);
    }
    /// -1 when it is not available.
    static int64_t Timestamp(const Buffer& buffer) {
        const GenApi::CIntegerPtr pTimestamp = ChunkInteger(buffer, "ChunkTimestamp");
        return GenApi::IsReadable(pTimestamp) ? pTimestamp->GetValue() : -1;
    }
};

} // namespace ZqTest
