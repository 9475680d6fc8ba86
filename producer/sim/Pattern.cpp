#include "producer/sim/Pattern.h"

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

// A row of a ramp is a piece of this one, so drawing it is a copy.
constexpr std::array<uint8_t, rampSize> ramp = MakeRamp();

void DrawRow(TestPattern pattern, const Region& region, uint64_t row, uint64_t frameId, uint8_t* pixels,
             size_t count) {
    const uint64_t y = region.y + row;
    switch (pattern) {
    case TestPattern::DiagonalRampMoving:
        std::memcpy(pixels, &ramp[(region.x + y + frameId) % rampLevels], count);
        break;
    case TestPattern::HorizontalRampMoving:
        std::memcpy(pixels, &ramp[(region.x + frameId) % rampLevels], count);
        break;
    case TestPattern::VerticalRampMoving:
        std::memset(pixels, static_cast<uint8_t>(y + frameId), count);
        break;
    case TestPattern::Black:
        std::memset(pixels, 0, count);
        break;
    case TestPattern::White:
        std::memset(pixels, 255, count);
        break;
    }
}

} // namespace

size_t DrawMono8(TestPattern pattern, const Region& region, uint64_t frameId, uint8_t* pixels, size_t size) {
    const size_t total = std::min<size_t>(size, size_t{region.width} * region.height);
    size_t drawn = 0;
    for (uint64_t row = 0; drawn < total; ++row) {
        const size_t count = std::min<size_t>(region.width, total - drawn);
        DrawRow(pattern, region, row, frameId, pixels + drawn, count);
        drawn += count;
    }
    return drawn;
}

} // namespace zqgentl
