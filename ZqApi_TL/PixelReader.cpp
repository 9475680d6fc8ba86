#include "ZqApi_TL/PixelReader.h"

#include "ZqSDKCommon/ZqROIImage.h"

namespace ZqApi {
namespace {

uint64_t LowBits(uint64_t word, size_t bits) {
    return word & ((uint64_t{1} << bits) - 1);
}

/// The only sample of a pixel, named by its place in the mosaic.
void AppendSingle(const PixelReader& reader, size_t x, size_t y, uint64_t value, PixelComponents& pixel) {
    pixel.Append(reader.components[y % 2 * 2 + x % 2], value);
}

/// Fields that follow each other from the low end of a word.
void AppendFields(const PixelReader& reader, uint64_t word, PixelComponents& pixel) {
    for (size_t i = 0; i < MaximalComponentCount; ++i)
        pixel.Append(reader.components[i], LowBits(word >> i * reader.validBits, reader.validBits));
}

} // namespace

uint64_t PixelSource::ByteBehind(size_t offset) const {
    return m_pBegin != nullptr && offset < ReadableSizeOf(*m_Memory.image) ? m_pBegin[offset] : 0;
}

void SetPixelComponentRaw8(const PixelSource& source, const PixelReader& reader, size_t x, size_t y,
                           PixelComponents& pixel) {
    AppendSingle(reader, x, y, source.Byte(source.LineAt(y) + x), pixel);
}

void SetPixelComponentRaw16(const PixelSource& source, const PixelReader& reader, size_t x, size_t y,
                            PixelComponents& pixel) {
    // Kept: bits above the significant ones are part of the value.
    AppendSingle(reader, x, y, source.Word(source.LineAt(y) + 2 * x), pixel);
}

void SetPixelComponentPacked8(const PixelSource& source, const PixelReader& reader, size_t x, size_t y,
                              PixelComponents& pixel) {
    const size_t position = x * reader.validBits;
    const size_t shift = position % 8;
    size_t offset = source.LineAt(y) + position / 8;
    uint64_t word = source.Byte(offset);
    for (size_t held = 8; held < reader.validBits + shift; held += 8)
        word |= source.Byte(++offset) << held;
    AppendSingle(reader, x, y, LowBits(word >> shift, reader.validBits), pixel);
}

void SetPixelComponentPacked16(const PixelSource& source, const PixelReader& reader, size_t x, size_t y,
                               PixelComponents& pixel) {
    SetPixelComponentPacked8(source, reader, x, y, pixel);
}

void SetPixelComponentGEVPacked16(const PixelSource& source, const PixelReader& reader, size_t x, size_t y,
                                  PixelComponents& pixel) {
    const size_t pair = source.LineAt(y) + x / 2 * 3;
    const size_t lowBits = reader.validBits - 8;
    const uint64_t shared = source.Byte(pair + 1);
    const bool odd = x % 2 != 0;
    const uint64_t high = source.Byte(odd ? pair + 2 : pair);
    AppendSingle(reader, x, y, high << lowBits | LowBits(odd ? shared : shared >> 4, lowBits), pixel);
}

void SetPixelComponentBGR8(const PixelSource& source, const PixelReader& reader, size_t x, size_t y,
                           PixelComponents& pixel) {
    const size_t begin = source.LineAt(y) + x * reader.samples;
    for (size_t i = 0; i < MaximalComponentCount; ++i)
        pixel.Append(reader.components[i], source.Byte(begin + i));
}

void SetPixelComponentBGR16(const PixelSource& source, const PixelReader& reader, size_t x, size_t y,
                            PixelComponents& pixel) {
    const size_t begin = source.LineAt(y) + 2 * x * reader.samples;
    for (size_t i = 0; i < MaximalComponentCount; ++i)
        pixel.Append(reader.components[i], source.Word(begin + 2 * i));
}

void SetPixelComponentBGRx10p32(const PixelSource& source, const PixelReader& reader, size_t x, size_t y,
                                PixelComponents& pixel) {
    const size_t begin = source.LineAt(y) + 4 * x;
    AppendFields(reader, source.Word(begin) | source.Word(begin + 2) << 16, pixel);
}

void SetPixelComponentBGRxp(const PixelSource& source, const PixelReader& reader, size_t x, size_t y,
                            PixelComponents& pixel) {
    const size_t position = x * reader.bits;
    const uint64_t word = source.LongWord(source.LineAt(y) + position / 8);
    AppendFields(reader, word >> position % 8, pixel);
}

void SetPixelComponentRGB8_Planar(const PixelSource& source, const PixelReader& reader, size_t x, size_t y,
                                  PixelComponents& pixel) {
    for (size_t i = 0; i < MaximalComponentCount; ++i)
        pixel.Append(reader.components[i], source.Byte(source.PlaneAt(i) + source.LineAt(y) + x));
}

void SetPixelComponentRGB16_Planar(const PixelSource& source, const PixelReader& reader, size_t x, size_t y,
                                   PixelComponents& pixel) {
    for (size_t i = 0; i < MaximalComponentCount; ++i)
        pixel.Append(reader.components[i], source.Word(source.PlaneAt(i) + source.LineAt(y) + 2 * x));
}

void SetPixelComponentYCbCr8(const PixelSource& source, const PixelReader& reader, size_t x, size_t y,
                             PixelComponents& pixel) {
    const LumaChromaGroup& group = *reader.group;
    const size_t begin = source.LineAt(y) + x / 4 * group.bytes;
    const size_t j = x % 4;
    const uint64_t luma = source.Byte(begin + group.luma[j]);
    const uint64_t chroma1 = source.Byte(begin + group.chroma1[j]);
    pixel.Append(reader.components[0], group.lumaFirst ? luma : chroma1);
    pixel.Append(reader.components[1], group.lumaFirst ? chroma1 : luma);
    pixel.Append(reader.components[2], source.Byte(begin + group.chroma2[j]));
}

void SetPixelComponentYUV8(const PixelSource& source, const PixelReader& reader, size_t x, size_t y,
                           PixelComponents& pixel) {
    SetPixelComponentYCbCr8(source, reader, x, y, pixel);
}

} // namespace ZqApi
