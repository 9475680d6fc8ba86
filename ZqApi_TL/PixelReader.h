#pragma once

#include <algorithm>
#include <cstring>

#include "ZqApi_TL/PixelComponentList.h"
#include "ZqSDKCommon/IZqPixelComponentValueInside.h"

namespace ZqApi {

/// An image's memory while one pixel is read: bytes behind its end read as 0.
class PixelSource {
public:
    /// Pixels take `bits` bits of their line.
    PixelSource(const ImageMemory& memory, size_t planes, size_t bits)
        : m_Memory(memory), m_pBegin(memory.begin),
          m_Size(m_pBegin == nullptr
                     ? 0
                     : std::min(memory.readable, PlaneAt(planes - 1) + LineAt(memory.height - 1) +
                                                     (memory.width * bits + 7) / 8)) {}

    size_t LineAt(size_t y) const { return y * m_Memory.linePitch; }
    size_t PlaneAt(size_t plane) const { return plane * m_Memory.planePitch; }

    uint64_t Byte(size_t offset) const { return offset < m_Size ? m_pBegin[offset] : ByteBehind(offset); }
    /// 16 bits, little-endian.
    uint64_t Word(size_t offset) const { return Byte(offset) | Byte(offset + 1) << 8; }
    /// 64 bits, little-endian.
    uint64_t LongWord(size_t offset) const {
        uint64_t word = 0;
        if (m_Size >= sizeof word && offset <= m_Size - sizeof word) {
            std::memcpy(&word, m_pBegin + offset, sizeof word);
            return word;
        }
        for (size_t byte = 0; byte < sizeof word; ++byte)
            word |= Byte(offset + byte) << 8 * byte;
        return word;
    }

private:
    uint64_t ByteBehind(size_t offset) const;

    const ImageMemory& m_Memory;
    const uint8_t* const m_pBegin;
    // Up to the last pixel; what follows it on its line belongs to the image too, unless that is a region.
    const size_t m_Size;
};

struct PixelReader;

/// Decodes the pixel at (x, y).
using ReadPixel = void (*)(const PixelSource& source, const PixelReader& reader, size_t x, size_t y,
                           PixelComponents& pixel);

/// Where luma and chroma lie in a group of four pixels.
struct LumaChromaGroup {
    size_t bytes;
    uint8_t luma[4];
    uint8_t chroma1[4];
    uint8_t chroma2[4];
    /// Luma is reported first; else between the two chromas.
    bool lumaFirst;
};

/// How pixels of one format are decoded: its row of the dispatch table and what follows from its record.
struct PixelReader {
    EZqPixelFormatNamingConvention_t format;
    ReadPixel read;
    const LumaChromaGroup* group;
    size_t planes;
    /// Bits that a pixel takes on its line.
    size_t bits;
    /// Significant bits of a sample.
    size_t validBits;
    /// Samples from one pixel to the next.
    size_t samples;
    /// Of a single sample by its position in the mosaic (y odd is 2, x odd is 1); of several in their order.
    EZqPixelComponent_t components[4];
};

void SetPixelComponentRaw8(const PixelSource&, const PixelReader&, size_t x, size_t y, PixelComponents&);
void SetPixelComponentRaw16(const PixelSource&, const PixelReader&, size_t x, size_t y, PixelComponents&);
void SetPixelComponentPacked8(const PixelSource&, const PixelReader&, size_t x, size_t y, PixelComponents&);
void SetPixelComponentPacked16(const PixelSource&, const PixelReader&, size_t x, size_t y, PixelComponents&);
void SetPixelComponentGEVPacked16(const PixelSource&, const PixelReader&, size_t x, size_t y,
                                  PixelComponents&);
void SetPixelComponentBGR8(const PixelSource&, const PixelReader&, size_t x, size_t y, PixelComponents&);
void SetPixelComponentBGR16(const PixelSource&, const PixelReader&, size_t x, size_t y, PixelComponents&);
void SetPixelComponentBGRx10p32(const PixelSource&, const PixelReader&, size_t x, size_t y, PixelComponents&);
void SetPixelComponentBGRxp(const PixelSource&, const PixelReader&, size_t x, size_t y, PixelComponents&);
void SetPixelComponentRGB8_Planar(const PixelSource&, const PixelReader&, size_t x, size_t y,
                                  PixelComponents&);
void SetPixelComponentRGB16_Planar(const PixelSource&, const PixelReader&, size_t x, size_t y,
                                   PixelComponents&);
void SetPixelComponentYCbCr8(const PixelSource&, const PixelReader&, size_t x, size_t y, PixelComponents&);
void SetPixelComponentYUV8(const PixelSource&, const PixelReader&, size_t x, size_t y, PixelComponents&);

/// Null for a format that nothing can decode.
const PixelReader* FindPixelReader(EZqPixelFormatNamingConvention_t format);

} // namespace ZqApi
