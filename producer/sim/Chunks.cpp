#include "producer/sim/Chunks.h"

#include <algorithm>
#include <cstring>

namespace zqgentl {

namespace {

constexpr size_t tagSize = 8;
constexpr size_t alignment = 4;

struct ChunkRow {
    Chunk chunk;
    uint32_t id;
    uint32_t length; // 0: that of the image
};

// In the order of the enumeration, which is the order in the payload.
constexpr ChunkRow chunkRows[chunkCount] = {
    {Chunk::Image, 0x0001, 0},        {Chunk::FrameId, 0x1001, 8},       {Chunk::Timestamp, 0x1002, 8},
    {Chunk::ExposureTime, 0x1003, 8}, {Chunk::Gain, 0x1004, 8},          {Chunk::Width, 0x1005, 4},
    {Chunk::Height, 0x1006, 4},       {Chunk::OffsetX, 0x1007, 4},       {Chunk::OffsetY, 0x1008, 4},
    {Chunk::PixelFormat, 0x1009, 4},  {Chunk::LineStatusAll, 0x100A, 4}, {Chunk::Crc16, 0x100B, 4},
};

const ChunkRow& RowOf(Chunk chunk) {
    return chunkRows[static_cast<size_t>(chunk)];
}

size_t RoundUp(size_t size) {
    return (size + alignment - 1) / alignment * alignment;
}

uint64_t BitsOf(double number) {
    uint64_t bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}

uint64_t ValueOf(Chunk chunk, const ChunkValues& values, const uint8_t* image, size_t imageSize) {
    switch (chunk) {
    case Chunk::FrameId:
        return values.frameId;
    case Chunk::Timestamp:
        return values.timestampNs;
    case Chunk::ExposureTime:
        return BitsOf(values.exposureTimeUs);
    case Chunk::Gain:
        return BitsOf(values.gainDb);
    case Chunk::Width:
        return values.width;
    case Chunk::Height:
        return values.height;
    case Chunk::OffsetX:
        return values.offsetX;
    case Chunk::OffsetY:
        return values.offsetY;
    case Chunk::PixelFormat:
        return values.pixelFormat;
    case Chunk::LineStatusAll:
        return values.lineStatus;
    case Chunk::Crc16:
        return Crc16(image, imageSize);
    case Chunk::Image:
        break;
    }
    return 0;
}

bool HasTags(Technology technology) {
    return technology != Technology::CoaXPress;
}

constexpr std::array<uint16_t, 256> MakeCrcTable() {
    std::array<uint16_t, 256> table{};
    for (uint32_t i = 0; i < 256; ++i) {
        uint32_t crc = i << 8;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x8000) != 0 ? (crc << 1) ^ 0x1021 : crc << 1;
        table[i] = static_cast<uint16_t>(crc);
    }
    return table;
}

constexpr std::array<uint16_t, 256> crcTable = MakeCrcTable();

} // namespace

ChunkLayout::ChunkLayout(Technology technology, ChunkMask mask, size_t imageSize, ByteOrder dataOrder)
    : m_technology(technology), m_dataOrder(dataOrder), m_mask(mask),
      m_imageSize((mask & MaskOf(Chunk::Image)) != 0 ? imageSize : 0) {
    size_t offset = 0;
    for (const ChunkRow& row : chunkRows) {
        if ((mask & MaskOf(row.chunk)) == 0)
            continue;
        const size_t length = row.chunk == Chunk::Image ? RoundUp(imageSize) : row.length;
        m_entries[m_count++] = {row.chunk, offset, length};
        offset += length + (HasTags(technology) ? tagSize : 0);
    }
    m_payloadSize = offset;
}

uint32_t ChunkLayout::Id() const noexcept {
    // FNV-1a over what the places of the chunks follow from.
    uint32_t hash = 2166136261U;
    for (const uint64_t part : {uint64_t{m_mask}, uint64_t{m_imageSize}}) {
        for (int shift = 0; shift < 64; shift += 8)
            hash = (hash ^ static_cast<uint8_t>(part >> shift)) * 16777619U;
    }
    return hash == 0 ? 1 : hash;
}

void ChunkLayout::AddPlaces(std::vector<ChunkPlace>& places) const {
    for (size_t i = 0; i < m_count; ++i)
        places.push_back({RowOf(m_entries[i].chunk).id, m_entries[i].offset, m_entries[i].length});
}

void ChunkLayout::Tag(uint8_t* at, uint32_t id, uint32_t length) const {
    if (!HasTags(m_technology))
        return;
    const ByteOrder order = m_technology == Technology::GigEVision ? ByteOrder::Big : ByteOrder::Little;
    StoreBytes(at, id, 4, order);
    StoreBytes(at + 4, length, 4, order);
}

void ChunkLayout::Write(const ChunkValues& values, uint8_t* base) const {
    for (size_t i = 0; i < m_count; ++i) {
        const Entry& entry = m_entries[i];
        uint8_t* data = base + entry.offset;
        if (entry.chunk == Chunk::Image)
            std::memset(base + m_imageSize, 0, entry.length - m_imageSize);
        else
            StoreBytes(data, ValueOf(entry.chunk, values, base, m_imageSize), entry.length, m_dataOrder);
        Tag(data + entry.length, RowOf(entry.chunk).id, static_cast<uint32_t>(entry.length));
    }
}

bool WalkChunks(ByteOrder order, const uint8_t* payload, size_t size, std::vector<ChunkPlace>& places) {
    size_t end = size;
    while (end > 0) {
        if (end < tagSize)
            return false;
        const uint64_t id = LoadBytes(payload + end - 8, 4, order);
        const uint64_t length = LoadBytes(payload + end - 4, 4, order);
        // An empty chunk is the sign of padding that was taken for a tag.
        if (length == 0 || length > end - tagSize)
            return false;
        end -= tagSize + static_cast<size_t>(length);
        places.push_back({id, end, static_cast<size_t>(length)});
    }
    std::reverse(places.begin(), places.end());
    return !places.empty();
}

uint16_t Crc16(const uint8_t* data, size_t size) {
    uint32_t crc = 0xFFFF;
    for (size_t i = 0; i < size; ++i)
        crc = ((crc << 8) ^ crcTable[((crc >> 8) ^ data[i]) & 0xFF]) & 0xFFFF;
    return static_cast<uint16_t>(crc);
}

} // namespace zqgentl
