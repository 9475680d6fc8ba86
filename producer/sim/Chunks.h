#pragma once

#include "producer/sim/Bytes.h"
#include "producer/sim/CameraModel.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zqgentl {

/// Numbered as the enumeration ChunkSelector numbers them; they lie in the payload in this order.
enum class Chunk : uint32_t {
    Image,
    FrameId,
    Timestamp,
    ExposureTime,
    Gain,
    Width,
    Height,
    OffsetX,
    OffsetY,
    PixelFormat,
    LineStatusAll,
    Crc16,
};
constexpr size_t chunkCount = 12;

/// A set of chunks, one bit each.
using ChunkMask = uint32_t;
constexpr ChunkMask MaskOf(Chunk chunk) {
    return ChunkMask{1} << static_cast<uint32_t>(chunk);
}

/// Where one chunk's data lies, counted from the start of the payload.
struct ChunkPlace {
    uint64_t id;
    size_t offset;
    size_t length;
};

/// The values that go into the chunks of a frame.
struct ChunkValues {
    uint64_t frameId;
    uint64_t timestampNs;
    double exposureTimeUs;
    double gainDb;
    uint32_t width;
    uint32_t height;
    uint32_t offsetX;
    uint32_t offsetY;
    uint32_t pixelFormat;
    uint32_t lineStatus;
};

/// How a payload with chunks is built. GigE Vision and USB3 Vision put a tag of id and length behind the data
/// of every chunk, in the byte order of the transport; CoaXPress has no tags, its host is told the places.
/// The data itself has a byte order of its own. Chunks begin at multiples of 4, the padding counted as data.
class ChunkLayout {
public:
    ChunkLayout() = default;
    /// Without the image chunk the payload has chunks only.
    ChunkLayout(Technology technology, ChunkMask mask, size_t imageSize,
                ByteOrder dataOrder = ByteOrder::Little);

    [[nodiscard]] bool Empty() const noexcept { return m_count == 0; }
    [[nodiscard]] size_t PayloadSize() const noexcept { return m_payloadSize; }
    /// The image's bytes, without padding, that come before everything else.
    [[nodiscard]] size_t ImageSize() const noexcept { return m_imageSize; }
    [[nodiscard]] ChunkMask Mask() const noexcept { return m_mask; }
    /// Another number for every other layout; never 0.
    [[nodiscard]] uint32_t Id() const noexcept;
    /// Appends where the chunks lie, in their order.
    void AddPlaces(std::vector<ChunkPlace>& places) const;

    /// Writes what follows the image. The payload must have room for all of it; `base` points to its start.
    void Write(const ChunkValues& values, uint8_t* base) const;

private:
    void Tag(uint8_t* at, uint32_t id, uint32_t length) const;

    struct Entry {
        Chunk chunk;
        size_t offset;
        size_t length;
    };
    Technology m_technology = Technology::Mixed;
    ByteOrder m_dataOrder = ByteOrder::Little;
    ChunkMask m_mask = 0;
    size_t m_imageSize = 0;
    size_t m_payloadSize = 0;
    size_t m_count = 0;
    std::array<Entry, chunkCount> m_entries{};
};

/// Finds the chunks of a tagged payload by its tags, from the last to the first, and returns them in the
/// order in which they lie. False when the tags don't lead exactly to the start.
bool WalkChunks(ByteOrder order, const uint8_t* payload, size_t size, std::vector<ChunkPlace>& places);

/// CRC-16 with polynomial 0x1021 and start value 0xFFFF.
uint16_t Crc16(const uint8_t* data, size_t size);

} // namespace zqgentl
