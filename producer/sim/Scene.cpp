#include "producer/sim/Scene.h"

#include "producer/sim/Bytes.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace zqgentl {

namespace {

constexpr size_t rampLevels = 256;
constexpr size_t rampSize = rampLevels + 8192;

constexpr std::array<uint8_t, rampSize> MakeRamp() {
    std::array<uint8_t, rampSize> ramp{};
    for (size_t i = 0; i < rampSize; ++i)
        ramp[i] = static_cast<uint8_t>(i);
    return ramp;
}

// A line of a ramp is a piece of this one, so drawing it is a copy.
constexpr std::array<uint8_t, rampSize> ramp = MakeRamp();

/// The sensor's pixels that a line of the picture shows: the first, and the way to the next.
struct Walk {
    uint64_t x;
    int64_t step;
    uint64_t y;
};

Walk WalkOf(const Scene& scene, uint32_t row) {
    Walk walk{};
    walk.x = uint64_t{scene.region.x} * scene.binningX;
    walk.y = (uint64_t{scene.region.y} + row) * scene.binningY;
    walk.step = scene.binningX;
    if (scene.reverseX) {
        walk.x = scene.sensorWidth - 1 - walk.x;
        walk.step = -walk.step;
    }
    if (scene.reverseY)
        walk.y = scene.sensorHeight - 1 - walk.y;
    return walk;
}

/// Fills a row of values from a function of the sensor's column. Numbers of 32 bits are enough for columns,
/// and let a compiler work on several at once.
template <class Level>
void Fill(uint16_t* values, const Scene& scene, const Walk& walk, Level level) {
    const auto first = static_cast<uint32_t>(walk.x);
    const auto step = static_cast<uint32_t>(walk.step);
    const uint32_t width = scene.region.width;
    for (uint32_t i = 0; i < width; ++i)
        values[i] = static_cast<uint16_t>(level(first + i * step));
}

template <class Level>
ColourLine Grey(uint16_t* room, const Scene& scene, const Walk& walk, Level level) {
    Fill(room, scene, walk, level);
    return {room, room, room};
}

/// A line of three colours, each full or empty as the bits of one number say.
template <class Bars>
ColourLine Primaries(uint16_t* room, const Scene& scene, const Walk& walk, uint16_t full, Bars bars) {
    uint16_t* lines[] = {room, room + scene.region.width, room + 2 * scene.region.width};
    for (uint32_t bit = 0; bit < 3; ++bit)
        Fill(lines[bit], scene, walk, [&](uint32_t x) { return ((bars(x) >> bit) & 1) != 0 ? full : 0; });
    return {lines[0], lines[1], lines[2]};
}

/// White, yellow, cyan, green, magenta, red, blue, black; the lowest bit is red.
uint32_t BarAt(uint64_t x, uint32_t width) {
    constexpr uint32_t bars[] = {7, 3, 6, 2, 5, 1, 4, 0};
    return bars[x % width * 8 / width];
}

uint64_t Hash(uint64_t number) {
    number ^= number >> 33;
    number *= 0xFF51AFD7ED558CCDULL;
    number ^= number >> 33;
    number *= 0xC4CEB9FE1A85EC53ULL;
    return number ^ (number >> 33);
}

constexpr uint32_t hashBytes = 8;

/// What the noise of a line follows from.
uint64_t NoiseOf(const Scene& scene, uint64_t y, uint64_t time) {
    return Hash((uint64_t{scene.seed} << 32 | (y & 0xFFFFFFFF)) ^ (time << 17));
}

/// A hash is the noise of eight pixels that lie together on the sensor.
uint8_t NoiseAt(uint64_t line, uint32_t x) {
    return static_cast<uint8_t>(Hash(line + x / hashBytes) >> (8 * (x % hashBytes)));
}

void CopyNoise(uint64_t line, uint64_t x, uint8_t* target, size_t count) {
    size_t done = 0;
    for (; done < count && (x + done) % hashBytes != 0; ++done)
        target[done] = NoiseAt(line, static_cast<uint32_t>(x + done));
    for (; done + hashBytes <= count; done += hashBytes)
        StoreBytes(target + done, Hash(line + (x + done) / hashBytes), hashBytes, ByteOrder::Little);
    for (; done < count; ++done)
        target[done] = NoiseAt(line, static_cast<uint32_t>(x + done));
}

bool Moves(TestPattern pattern) {
    switch (pattern) {
    case TestPattern::GreyDiagonalRamp:
    case TestPattern::GreyHorizontalRamp:
    case TestPattern::GreyVerticalRamp:
    case TestPattern::ColorBar:
    case TestPattern::Noise:
        return false;
    default:
        return true;
    }
}

ColourLine ColourRamp(uint16_t* room, const Scene& scene, const Walk& walk, uint64_t time, uint32_t mask) {
    uint16_t* green = room + scene.region.width;
    uint16_t* blue = green + scene.region.width;
    const auto red0 = static_cast<uint32_t>(time);
    const auto green0 = static_cast<uint32_t>(walk.y + time);
    Fill(room, scene, walk, [=](uint32_t x) { return (x + red0) & mask; });
    Fill(green, scene, walk, [=](uint32_t) { return green0 & mask; });
    Fill(blue, scene, walk, [=](uint32_t x) { return (x + green0) & mask; });
    return {room, green, blue};
}

/// The line of a picture that falls on a line of the region, each value from the nearest pixel.
ColourLine PictureLine(uint16_t* room, const Scene& scene, uint64_t frameId, uint32_t row, uint32_t bits) {
    const PictureFile& picture = scene.pictures->Of(frameId);
    const uint32_t width = scene.region.width;
    const uint32_t line = scene.reverseY ? scene.region.height - 1 - row : row;
    const size_t start = uint64_t{line} * picture.height / scene.region.height * picture.width;
    uint16_t* lines[] = {room, room + width, room + 2 * size_t{width}};
    // The source of a column is column * picture.width / width, here without its division.
    const uint32_t whole = picture.width / width;
    const uint32_t rest = picture.width % width;
    size_t source = start;
    uint32_t part = 0;
    for (uint32_t column = 0; column < width; ++column) {
        const uint32_t x = scene.reverseX ? width - 1 - column : column;
        lines[0][x] = static_cast<uint16_t>(picture.red[source] >> (16 - bits));
        lines[1][x] = static_cast<uint16_t>(picture.green[source] >> (16 - bits));
        lines[2][x] = static_cast<uint16_t>(picture.blue[source] >> (16 - bits));
        part += rest;
        const bool carries = part >= width;
        source += whole + (carries ? 1 : 0);
        part -= carries ? width : 0;
    }
    return {lines[0], lines[1], lines[2]};
}

} // namespace

ColourLine LookAt(const Scene& scene, uint64_t frameId, uint32_t row, uint32_t bits, uint16_t* room) {
    const uint32_t mask = (uint32_t{1} << bits) - 1;
    const auto full = static_cast<uint16_t>(mask);
    const Walk walk = WalkOf(scene, row);
    const uint64_t y = walk.y;
    const uint64_t t = Moves(scene.pattern) ? frameId : 0;
    switch (scene.pattern) {
    case TestPattern::GreyDiagonalRampMoving:
    case TestPattern::GreyDiagonalRamp:
        return Grey(room, scene, walk,
                    [=, base = static_cast<uint32_t>(y + t)](uint32_t x) { return (x + base) & mask; });
    case TestPattern::GreyHorizontalRampMoving:
    case TestPattern::GreyHorizontalRamp:
        return Grey(room, scene, walk,
                    [=, base = static_cast<uint32_t>(t)](uint32_t x) { return (x + base) & mask; });
    case TestPattern::GreyVerticalRampMoving:
    case TestPattern::GreyVerticalRamp:
        return Grey(room, scene, walk, [=, level = (y + t) & mask](uint32_t) { return level; });
    case TestPattern::White:
        return Grey(room, scene, walk, [=](uint32_t) { return full; });
    case TestPattern::ColorBar:
    case TestPattern::ColorBarMoving:
        return Primaries(room, scene, walk, full,
                         [&](uint32_t x) { return BarAt(x + t, scene.sensorWidth); });
    case TestPattern::ColorRampMoving:
        return ColourRamp(room, scene, walk, t, mask);
    case TestPattern::HorizontalLineMoving:
        return Grey(room, scene, walk,
                    [level = y == t % scene.sensorHeight ? full : uint16_t{0}](uint32_t) { return level; });
    case TestPattern::VerticalLineMoving:
        return Grey(room, scene, walk,
                    [=, at = t % scene.sensorWidth](uint32_t x) { return x == at ? full : uint16_t{0}; });
    case TestPattern::FrameCounter:
        // 64 stripes of 8 pixels, the lowest bit on the left.
        return Grey(room, scene, walk,
                    [=](uint32_t x) { return x < 512 && ((t >> (x / 8)) & 1) != 0 ? full : uint16_t{0}; });
    case TestPattern::Noise:
    case TestPattern::NoiseMoving: {
        const uint64_t low = NoiseOf(scene, y, t);
        const uint64_t high = Hash(low);
        return Grey(room, scene, walk, [=](uint32_t x) {
            return (NoiseAt(low, x) | (mask > 0xFF ? uint32_t{NoiseAt(high, x)} << 8 : 0U)) & mask;
        });
    }
    case TestPattern::Picture:
        if (scene.pictures != nullptr)
            return PictureLine(room, scene, frameId, row, bits);
        break;
    case TestPattern::Black:
        break;
    }
    return Grey(room, scene, walk, [](uint32_t) { return 0; });
}

bool LinesRepeat(TestPattern pattern) {
    switch (pattern) {
    case TestPattern::GreyHorizontalRampMoving:
    case TestPattern::GreyHorizontalRamp:
    case TestPattern::Black:
    case TestPattern::White:
    case TestPattern::ColorBar:
    case TestPattern::ColorBarMoving:
    case TestPattern::VerticalLineMoving:
    case TestPattern::FrameCounter:
        return true;
    default:
        return false;
    }
}

bool LevelsRepeat(TestPattern pattern) {
    switch (pattern) {
    case TestPattern::GreyDiagonalRampMoving:
    case TestPattern::GreyDiagonalRamp:
    case TestPattern::ColorRampMoving:
        return true;
    default:
        return false;
    }
}

bool CopyGreyLine(const Scene& scene, uint64_t frameId, uint32_t row, uint8_t* target, size_t count) {
    if (scene.binningX != 1 || scene.reverseX)
        return false;
    const Walk walk = WalkOf(scene, row);
    const uint64_t t = Moves(scene.pattern) ? frameId : 0;
    switch (scene.pattern) {
    case TestPattern::GreyDiagonalRampMoving:
    case TestPattern::GreyDiagonalRamp:
        std::memcpy(target, &ramp[(walk.x + walk.y + t) % rampLevels], count);
        return true;
    case TestPattern::GreyHorizontalRampMoving:
    case TestPattern::GreyHorizontalRamp:
        std::memcpy(target, &ramp[(walk.x + t) % rampLevels], count);
        return true;
    case TestPattern::GreyVerticalRampMoving:
    case TestPattern::GreyVerticalRamp:
        std::memset(target, static_cast<uint8_t>(walk.y + t), count);
        return true;
    case TestPattern::Black:
    case TestPattern::White:
        std::memset(target, scene.pattern == TestPattern::White ? 255 : 0, count);
        return true;
    case TestPattern::HorizontalLineMoving:
        std::memset(target, walk.y == t % scene.sensorHeight ? 255 : 0, count);
        return true;
    case TestPattern::Noise:
    case TestPattern::NoiseMoving:
        CopyNoise(NoiseOf(scene, walk.y, t), walk.x, target, count);
        return true;
    default:
        return false;
    }
}

} // namespace zqgentl
