#include "producer/sim/Bytes.h"
#include "producer/sim/Inflate.h"
#include "producer/sim/PictureFile.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace zqgentl {

namespace {

constexpr size_t signatureSize = 8;
constexpr size_t chunkOverhead = 12;

struct Png {
    uint64_t width = 0;
    uint64_t height = 0;
    uint32_t bits = 0;
    uint32_t colour = 0;
    std::vector<uint8_t> palette;
    std::vector<uint8_t> packed;
};

/// Values per pixel, by the type of colour.
uint32_t ChannelsOf(const Png& png) {
    switch (png.colour) {
    case 0:
    case 3:
        return 1;
    case 2:
        return 3;
    case 4:
        return 2;
    case 6:
        return 4;
    default:
        RefusePicture("its type of colour is unknown");
    }
}

void ReadHeader(Png& png, const uint8_t* data, size_t size) {
    if (size < 13)
        RefusePicture("its header is too short");
    png.width = LoadBytes(data, 4, ByteOrder::Big);
    png.height = LoadBytes(data + 4, 4, ByteOrder::Big);
    png.bits = data[8];
    png.colour = data[9];
    if (data[12] != 0)
        RefusePicture("it is interlaced");
    const bool small = png.bits == 1 || png.bits == 2 || png.bits == 4;
    const bool single = png.colour == 0 || png.colour == 3;
    if (!(png.bits == 8 || (png.bits == 16 && png.colour != 3) || (small && single)))
        RefusePicture("its depth is unknown");
}

Png ReadChunks(const std::vector<uint8_t>& bytes) {
    Png png;
    size_t at = signatureSize;
    while (bytes.size() - at >= chunkOverhead) {
        const uint64_t size = LoadBytes(bytes.data() + at, 4, ByteOrder::Big);
        const uint8_t* name = bytes.data() + at + 4;
        const uint8_t* data = name + 4;
        if (size > bytes.size() - at - chunkOverhead)
            RefusePicture("it ends too early");
        if (std::memcmp(name, "IHDR", 4) == 0)
            ReadHeader(png, data, size);
        else if (std::memcmp(name, "PLTE", 4) == 0)
            png.palette.assign(data, data + size);
        else if (std::memcmp(name, "IDAT", 4) == 0)
            png.packed.insert(png.packed.end(), data, data + size);
        at += chunkOverhead + size;
    }
    if (png.width == 0)
        RefusePicture("it has no header");
    return png;
}

uint8_t Paeth(int left, int above, int corner) {
    const int guess = left + above - corner;
    const int fromLeft = std::abs(guess - left);
    const int fromAbove = std::abs(guess - above);
    const int fromCorner = std::abs(guess - corner);
    if (fromLeft <= fromAbove && fromLeft <= fromCorner)
        return static_cast<uint8_t>(left);
    return static_cast<uint8_t>(fromAbove <= fromCorner ? above : corner);
}

/// Turns the differences of a line back into values; `above` is the line before it.
void Unfilter(uint8_t kind, uint8_t* line, const uint8_t* above, size_t size, size_t step) {
    for (size_t i = 0; i < size; ++i) {
        const uint8_t left = i >= step ? line[i - step] : 0;
        const uint8_t corner = i >= step ? above[i - step] : 0;
        uint8_t guess = 0;
        if (kind == 1)
            guess = left;
        else if (kind == 2)
            guess = above[i];
        else if (kind == 3)
            guess = static_cast<uint8_t>((left + above[i]) / 2);
        else if (kind == 4)
            guess = Paeth(left, above[i], corner);
        line[i] = static_cast<uint8_t>(line[i] + guess);
    }
}

/// A value of a line, without a change of its depth.
uint32_t Sample(const uint8_t* line, size_t index, uint32_t bits) {
    if (bits == 16)
        return static_cast<uint32_t>(LoadBytes(line + 2 * index, 2, ByteOrder::Big));
    if (bits == 8)
        return line[index];
    const size_t perByte = 8 / bits;
    const uint32_t shift = static_cast<uint32_t>(8 - bits - (index % perByte) * bits);
    return (uint32_t{line[index / perByte]} >> shift) & ((1U << bits) - 1);
}

void PutLine(const Png& png, PictureFile& picture, size_t row, const uint8_t* line) {
    const uint32_t channels = ChannelsOf(png);
    const uint32_t highest = (1U << png.bits) - 1;
    std::vector<uint16_t>* planes[] = {&picture.red, &picture.green, &picture.blue};
    for (size_t x = 0; x < picture.width; ++x) {
        for (size_t colour = 0; colour < 3; ++colour) {
            const size_t channel = channels >= 3 ? colour : 0;
            uint32_t value = Sample(line, x * channels + channel, png.bits);
            if (png.colour == 3) {
                if (3 * value + colour >= png.palette.size())
                    RefusePicture("a colour is not in its palette");
                value = png.palette[3 * value + colour] * 257U;
            } else {
                value = value * 65535U / highest;
            }
            (*planes[colour])[row * picture.width + x] = static_cast<uint16_t>(value);
        }
    }
}

} // namespace

PictureFile DecodePng(const std::vector<uint8_t>& bytes) {
    const Png png = ReadChunks(bytes);
    PictureFile picture = MakePicture(png.width, png.height);
    const size_t pixelBits = size_t{png.bits} * ChannelsOf(png);
    const size_t lineSize = (picture.width * pixelBits + 7) / 8;
    const size_t step = std::max<size_t>(1, pixelBits / 8);
    std::vector<uint8_t> lines =
        Inflate(png.packed.data(), png.packed.size(), (lineSize + 1) * picture.height);
    const std::vector<uint8_t> blank(lineSize, 0);
    for (size_t row = 0; row < picture.height; ++row) {
        uint8_t* line = lines.data() + row * (lineSize + 1) + 1;
        Unfilter(line[-1], line, row == 0 ? blank.data() : line - lineSize - 1, lineSize, step);
        PutLine(png, picture, row, line);
    }
    return picture;
}

} // namespace zqgentl
