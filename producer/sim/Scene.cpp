#include "producer/sim/Scene.h"

#include "producer/sim/SceneParts.h"

namespace zqgentl {

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

uint64_t NoiseOf(const Scene& scene, uint64_t y, uint64_t time) {
    return Hash((uint64_t{scene.seed} << 32 | (y & 0xFFFFFFFF)) ^ (time << 17));
}

namespace {

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

} // namespace zqgentl
