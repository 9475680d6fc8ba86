#include "producer/sim/Painter.h"

#include "producer/sim/LinePacker.h"

#include <algorithm>
#include <cstring>

namespace zqgentl {

namespace {

/// A value of fewer bits as the same share of 16: the highest stays the highest.
uint32_t Widen(uint32_t value, uint32_t bits) {
    const uint32_t shift = 16 - bits;
    return bits >= 8 ? value << shift | value >> (bits - shift) : value * 65535 / ((1U << bits) - 1);
}

uint16_t ToneOf(const std::vector<uint16_t>& curve, uint32_t bits, uint32_t value) {
    return static_cast<uint16_t>(curve[Widen(value, bits)] >> (16 - bits));
}

bool IsSingleByte(const PixelFormat& format) {
    return format.packing == Packing::Whole && format.BitsPerPixel() == 8;
}

} // namespace

ColourLine Painter::Look(const Scene& scene, const PixelFormat& format, const ToneCurve& tone,
                         uint64_t frameId, uint32_t row) {
    const size_t width = scene.region.width;
    m_values.resize(3 * width);
    const ColourLine line = LookAt(scene, frameId, row, format.bits, m_values.data());
    if (tone == nullptr)
        return line;
    const size_t count = line.Grey() ? width : 3 * width;
    for (size_t i = 0; i < count; ++i)
        m_values[i] = format.bits <= 8 ? m_levels[m_values[i]] : ToneOf(*tone, format.bits, m_values[i]);
    return line;
}

void Painter::DrawLine(const Scene& scene, const PixelFormat& format, const ToneCurve& tone, uint64_t frameId,
                       uint32_t row, uint8_t* target) {
    const size_t width = scene.region.width;
    const ColourLine line = Look(scene, format, tone, frameId, row);
    if (!format.Mono() && !format.Bayer()) {
        PackColour(format, line, width, target);
        return;
    }
    const uint16_t* values = line.red;
    if (!line.Grey()) {
        m_mixed.resize(width);
        if (format.Bayer())
            MixBayer(format, line, width, row, m_mixed.data());
        else
            MixMono(line, format.bits, width, m_mixed.data());
        values = m_mixed.data();
    }
    PackSingle(format, values, width, target);
}

/// The few levels of a format with short values, each looked up once a picture.
void Painter::PrepareLevels(const PixelFormat& format, const ToneCurve& tone) {
    for (uint32_t level = 0; level < 1U << format.bits; ++level)
        m_levels[level] = static_cast<uint8_t>(ToneOf(*tone, format.bits, level));
}

bool Painter::DrawPeriod(const Scene& scene, const PixelFormat& format, const ToneCurve& tone,
                         uint64_t frameId, uint32_t row, uint8_t* target) {
    constexpr uint32_t levels = 256;
    if (!LevelsRepeat(scene.pattern) || format.bits != 8 || format.packing != Packing::Whole ||
        scene.region.width <= levels)
        return false;
    Scene period = scene;
    period.region.width = levels;
    DrawLine(period, format, tone, frameId, row, target);
    const size_t lineSize = size_t{scene.region.width} * format.BitsPerPixel() / 8;
    // What is there already is copied behind itself, twice as much each time.
    size_t done = size_t{levels} * format.BitsPerPixel() / 8;
    for (size_t piece = 0; done < lineSize; done += piece) {
        piece = std::min(done, lineSize - done);
        std::memcpy(target + done, target, piece);
    }
    return true;
}

size_t Painter::Draw(const Scene& scene, const PixelFormat& format, const ToneCurve& tone, uint64_t frameId,
                     uint8_t* target, size_t size) {
    const uint32_t planes = format.Planes();
    const size_t lineSize = size_t{scene.region.width} * format.BitsPerPixel() / 8 / planes;
    const size_t total = std::min(size, lineSize * planes * scene.region.height);
    const bool copied = IsSingleByte(format);
    if (tone != nullptr && format.bits <= 8)
        PrepareLevels(format, tone);
    const ByteLevels* const levels = tone == nullptr ? nullptr : &m_levels;
    size_t drawn = 0;
    for (uint32_t line = 0; drawn < total; ++line) {
        const uint32_t row = line % scene.region.height;
        const size_t count = std::min(lineSize, total - drawn);
        // Two lines make one of a Bayer mosaic.
        if (row >= 2 && LinesRepeat(scene.pattern)) {
            std::memcpy(target + drawn, target + drawn - 2 * lineSize, count);
            drawn += count;
            continue;
        }
        if (planes == 1 && !format.Bayer() && RepeatsLineBefore(scene, frameId, row)) {
            std::memcpy(target + drawn, target + drawn - lineSize, count);
            drawn += count;
            continue;
        }
        if (copied && CopyGreyLine(scene, frameId, row, levels, target + drawn, count)) {
            drawn += count;
            continue;
        }
        if (count == lineSize && planes == 1 &&
            DrawPeriod(scene, format, tone, frameId, row, target + drawn)) {
            drawn += count;
            continue;
        }
        m_line.resize(lineSize);
        uint8_t* place = count == lineSize ? target + drawn : m_line.data();
        if (planes == 1) {
            DrawLine(scene, format, tone, frameId, row, place);
        } else {
            const ColourLine colours = Look(scene, format, tone, frameId, row);
            const uint16_t* plane[] = {colours.red, colours.green, colours.blue};
            PackSingle(format, plane[line / scene.region.height], scene.region.width, place);
        }
        if (place == m_line.data())
            std::memcpy(target + drawn, place, count);
        drawn += count;
    }
    return drawn;
}

} // namespace zqgentl
