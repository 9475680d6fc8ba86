#include "producer/sim/LinePacker.h"

#include <algorithm>
#include <cstring>

namespace zqgentl {

namespace {

/// Numbers of some bits each, without gaps, the lowest bit first.
class BitWriter {
public:
    explicit BitWriter(uint8_t* target) : m_target(target) {}

    void Put(uint32_t value, uint32_t bits) {
        m_held |= uint64_t{value} << m_count;
        for (m_count += bits; m_count >= 8; m_count -= 8) {
            *m_target++ = static_cast<uint8_t>(m_held);
            m_held >>= 8;
        }
    }

private:
    uint8_t* m_target;
    uint64_t m_held = 0;
    uint32_t m_count = 0;
};

uint8_t* PutWhole(uint8_t* target, uint32_t value, uint32_t bits) {
    *target++ = static_cast<uint8_t>(value);
    if (bits > 8)
        *target++ = static_cast<uint8_t>(value >> 8);
    return target;
}

/// Two pixels in three bytes: the high bits of the first, the low bits of both, the high bits of the second.
void PackGvsp(const uint16_t* values, size_t width, uint32_t bits, uint8_t* target) {
    const uint32_t low = bits - 8;
    const uint32_t mask = (1U << low) - 1;
    for (size_t i = 0; i + 1 < width; i += 2) {
        *target++ = static_cast<uint8_t>(values[i] >> low);
        *target++ = static_cast<uint8_t>((values[i] & mask) | ((values[i + 1] & mask) << 4));
        *target++ = static_cast<uint8_t>(values[i + 1] >> low);
    }
}

const uint16_t* ColourOf(const ColourLine& line, char letter) {
    switch (letter) {
    case 'R':
        return line.red;
    case 'B':
        return line.blue;
    default:
        return line.green;
    }
}

struct Weights {
    double red;
    double blue;
    double lumaSpan;
    double lumaBase;
    double chromaSpan;
};

Weights WeightsOf(LumaMatrix matrix) {
    switch (matrix) {
    case LumaMatrix::Bt601:
        return {0.299, 0.114, 219, 16, 224};
    case LumaMatrix::Bt709:
        return {0.2126, 0.0722, 219, 16, 224};
    default:
        return {0.299, 0.114, 255, 0, 255};
    }
}

uint8_t ToByte(double value) {
    return static_cast<uint8_t>(std::clamp(static_cast<int>(value + 0.5), 0, 255));
}

/// The three sums over the pixels of a group, and what they make of luma and chroma.
class LumaChroma {
public:
    explicit LumaChroma(LumaMatrix matrix) : m_weights(WeightsOf(matrix)) {}

    [[nodiscard]] uint8_t Luma(double red, double green, double blue) const {
        return ToByte(m_weights.lumaBase + m_weights.lumaSpan * Y(red, green, blue) / 255);
    }
    [[nodiscard]] uint8_t Blue(double red, double green, double blue) const {
        return Chroma(blue - Y(red, green, blue), m_weights.blue);
    }
    [[nodiscard]] uint8_t Red(double red, double green, double blue) const {
        return Chroma(red - Y(red, green, blue), m_weights.red);
    }

private:
    [[nodiscard]] double Y(double red, double green, double blue) const {
        return m_weights.red * red + m_weights.blue * blue + (1 - m_weights.red - m_weights.blue) * green;
    }
    [[nodiscard]] uint8_t Chroma(double difference, double weight) const {
        return ToByte(128 + m_weights.chromaSpan * difference / (2 * (1 - weight)) / 255);
    }

    Weights m_weights;
};

double Mean(const uint16_t* values, size_t count) {
    double sum = 0;
    for (size_t i = 0; i < count; ++i)
        sum += values[i];
    return sum / static_cast<double>(count);
}

/// Lumas of their own, chromas of the group's mean colour.
void PackLumaChroma(const PixelFormat& format, const ColourLine& line, size_t width, uint8_t* target) {
    const LumaChroma convert(format.matrix);
    const size_t length = std::strlen(format.order);
    const auto group = static_cast<size_t>(std::count(format.order, format.order + length, 'Y'));
    for (size_t x = 0; x + group <= width; x += group) {
        const double red = Mean(line.red + x, group);
        const double green = Mean(line.green + x, group);
        const double blue = Mean(line.blue + x, group);
        size_t pixel = x;
        for (const char* letter = format.order; *letter != '\0'; ++letter) {
            if (*letter == 'U') {
                *target++ = convert.Blue(red, green, blue);
            } else if (*letter == 'V') {
                *target++ = convert.Red(red, green, blue);
            } else {
                *target++ = convert.Luma(line.red[pixel], line.green[pixel], line.blue[pixel]);
                ++pixel;
            }
        }
    }
}

void PackWord32(const PixelFormat& format, const ColourLine& line, size_t width, uint8_t* target) {
    const uint16_t* low = ColourOf(line, format.order[0]);
    const uint16_t* middle = ColourOf(line, format.order[1]);
    const uint16_t* high = ColourOf(line, format.order[2]);
    for (size_t i = 0; i < width; ++i) {
        const uint32_t word = low[i] | uint32_t{middle[i]} << 10 | uint32_t{high[i]} << 20;
        StoreBytes(target + 4 * i, word, 4, ByteOrder::Little);
    }
}

/// Interleaved colours, each in whole bytes or all without gaps. Alpha is opaque.
void PackInterleaved(const PixelFormat& format, const ColourLine& line, size_t width, uint8_t* target) {
    const uint32_t opaque = (1U << format.bits) - 1;
    const size_t colours = std::min<size_t>(std::strlen(format.order), 3);
    const bool alpha = format.order[3] == 'A';
    const uint16_t* lines[3] = {};
    for (size_t i = 0; i < colours; ++i)
        lines[i] = ColourOf(line, format.order[i]);
    BitWriter writer(target);
    for (size_t x = 0; x < width; ++x) {
        for (const uint16_t* values : lines) {
            if (format.packing == Packing::Bits)
                writer.Put(values[x], format.bits);
            else
                target = PutWhole(target, values[x], format.bits);
        }
        if (alpha)
            target = PutWhole(target, opaque, format.bits);
    }
}

} // namespace

void PackSingle(const PixelFormat& format, const uint16_t* values, size_t width, uint8_t* target) {
    if (format.packing == Packing::Gvsp) {
        PackGvsp(values, width, format.bits, target);
    } else if (format.packing == Packing::Bits) {
        BitWriter writer(target);
        for (size_t x = 0; x < width; ++x)
            writer.Put(values[x], format.bits);
    } else if (format.bits <= 8) {
        for (size_t x = 0; x < width; ++x)
            target[x] = static_cast<uint8_t>(values[x]);
    } else {
        for (size_t x = 0; x < width; ++x)
            target = PutWhole(target, values[x], format.bits);
    }
}

void MixBayer(const PixelFormat& format, const ColourLine& line, size_t width, uint32_t row,
              uint16_t* mixed) {
    // The second row has the two colours that the first has not: red and blue swapped, green in the other
    // column.
    char letters[2] = {format.order[0], format.order[1]};
    if (row % 2 != 0) {
        std::swap(letters[0], letters[1]);
        for (char& letter : letters)
            letter = letter == 'R' ? 'B' : (letter == 'B' ? 'R' : letter);
    }
    const uint16_t* lines[2] = {ColourOf(line, letters[0]), ColourOf(line, letters[1])};
    for (size_t x = 0; x < width; ++x)
        mixed[x] = lines[x % 2][x];
}

void MixMono(const ColourLine& line, uint32_t bits, size_t width, uint16_t* mixed) {
    if (bits <= 8) {
        // A float has every sum of these exactly, and its product is never below a whole number that it
        // should reach. Compilers multiply several floats at once, but divide no whole numbers.
        for (size_t x = 0; x < width; ++x) {
            const float luma = 299.0F * line.red[x] + 587.0F * line.green[x] + 114.0F * line.blue[x];
            mixed[x] = static_cast<uint16_t>(static_cast<int32_t>(luma * 0.001F));
        }
    } else {
        for (size_t x = 0; x < width; ++x)
            mixed[x] = static_cast<uint16_t>(
                (299U * line.red[x] + 587U * line.green[x] + 114U * line.blue[x]) / 1000U);
    }
}

void PackColour(const PixelFormat& format, const ColourLine& line, size_t width, uint8_t* target) {
    if (format.matrix != LumaMatrix::None)
        PackLumaChroma(format, line, width, target);
    else if (format.packing == Packing::Word32)
        PackWord32(format, line, width, target);
    else
        PackInterleaved(format, line, width, target);
}

} // namespace zqgentl
