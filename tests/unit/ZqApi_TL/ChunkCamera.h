#pragma once

#include <string>
#include <vector>

#include "tests/support/scripted_producer/Descriptions.h"
#include "tests/unit/ZqApi_TL/OpenedStream.h"

namespace ZqTest {

/// One chunk as it lies in the buffer, data and identifier.
struct Chunk {
    uint32_t id;
    std::string data;
};

inline std::string Number(uint64_t value, size_t size) {
    return std::string(reinterpret_cast<const char*>(&value), size);
}

inline std::string Reversed(const std::string& bytes) {
    return std::string(bytes.rbegin(), bytes.rend());
}

/// USB3 Vision's layout: each chunk's data, then its identifier and length, little-endian.
inline std::string LittleEndianChunks(const std::vector<Chunk>& chunks) {
    std::string bytes;
    for (const Chunk& chunk : chunks)
        bytes += chunk.data + Number(chunk.id, 4) + Number(chunk.data.size(), 4);
    return bytes;
}

/// GigE Vision's layout: the same, tags big-endian.
inline std::string BigEndianChunks(const std::vector<Chunk>& chunks) {
    std::string bytes;
    for (const Chunk& chunk : chunks)
        bytes += chunk.data + Reversed(Number(chunk.id, 4)) + Reversed(Number(chunk.data.size(), 4));
    return bytes;
}

/// The scripted camera with chunk features: ChunkTimestamp (id 1001), ChunkWidth and ChunkHeight (1002) and
/// ChunkPixelFormat (1003), little-endian registers, under a root of that name; the image has id 1. Opened
/// by the test.
class ChunkCamera : public OpenedStream {
protected:
    static constexpr uint32_t IMAGE = 1, TIMESTAMP = 0x1001, SIZE = 0x1002, FORMAT = 0x1003;

    explicit ChunkCamera(const std::string& variant = "full") : OpenedStream(variant) {}

    void SetUp() override { Describe("ChunkDataControl"); }

    void Describe(const std::string& root) {
        std::string text(20000, '\0');
        producer.ReadRegister("REMOTE1", 0x10000, text.data(), text.size());
        text = text.c_str();
        text.insert(text.find("<Port Name"), Nodes(root));
        producer.SetDescription("REMOTE", "camera.xml", text);
    }

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

private:
    static std::string Feature(const std::string& name, int address, int length, const std::string& port) {
        return "<Integer Name=\"" + name + "\"><pValue>" + name + "Reg</pValue></Integer>" +
               Register(name + "Reg", address, length, port);
    }
    static std::string Register(const std::string& name, int address, int length, const std::string& port) {
        return "<IntReg Name=\"" + name + "\"><Address>" + std::to_string(address) + "</Address><Length>" +
               std::to_string(length) + "</Length><AccessMode>RO</AccessMode><pPort>" + port +
               "</pPort><Cachable>WriteThrough</Cachable><Sign>Unsigned</Sign>"
               "<Endianess>LittleEndian</Endianess></IntReg>";
    }
    static std::string Port(const std::string& name, const std::string& id) {
        return "<Port Name=\"" + name + "\"><ChunkID>" + id + "</ChunkID></Port>";
    }
    static std::string Nodes(const std::string& root) {
        return "<Category Name=\"" + root +
               "\"><pFeature>ChunkTimestamp</pFeature><pFeature>ChunkWidth</pFeature>"
               "<pFeature>ChunkHeight</pFeature><pFeature>ChunkPixelFormat</pFeature>"
               "<pFeature>TLParamsLock</pFeature></Category>" +
               Feature("ChunkTimestamp", 0, 8, "TimestampPort") + Feature("ChunkWidth", 0, 4, "SizePort") +
               Feature("ChunkHeight", 4, 4, "SizePort") +
               "<Enumeration Name=\"ChunkPixelFormat\"><EnumEntry Name=\"Mono8\"><Value>17301505</Value>"
               "</EnumEntry><EnumEntry Name=\"Mono16\"><Value>17825799</Value></EnumEntry>"
               "<pValue>ChunkPixelFormatReg</pValue></Enumeration>" +
               Register("ChunkPixelFormatReg", 0, 4, "FormatPort") + Port("TimestampPort", "00001001") +
               Port("SizePort", "00001002") + Port("FormatPort", "00001003") +
               "<Integer Name=\"TLParamsLock\"><Value>0</Value></Integer>";
    }
};

} // namespace ZqTest
