// Lines that are drawn without looking at each pixel.

#include "producer/sim/Bytes.h"
#include "producer/sim/SceneParts.h"

#include <algorithm>
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

void CopyNoise(uint64_t line, uint64_t x, uint8_t* target, size_t count) {
    size_t done = 0;
    for (; done < count && (x + done) % hashBytes != 0; ++done)
        target[done] = NoiseAt(line, static_cast<uint32_t>(x + done));
    for (; done + hashBytes <= count; done += hashBytes)
        StoreBytes(target + done, Hash(line + (x + done) / hashBytes), hashBytes, ByteOrder::Little);
    for (; done < count; ++done)
        target[done] = NoiseAt(line, static_cast<uint32_t>(x + done));
}

/// Every Step-th byte, forwards or backwards. Known steps let a compiler work on several at once.
template <size_t Step>
void Pick(const uint8_t* from, bool back, uint8_t* target, size_t count) {
    if (back) {
        for (size_t i = 0; i < count; ++i)
            target[i] = from[(count - 1 - i) * Step];
    } else {
        for (size_t i = 0; i < count; ++i)
            target[i] = from[i * Step];
    }
}

/// The same for any walk along the line: the noise on the way is made in pieces, and its pixels picked.
void CopyNoise(uint64_t line, const Walk& walk, uint8_t* target, size_t count) {
    if (walk.step == 1) {
        CopyNoise(line, walk.x, target, count);
        return;
    }
    const bool back = walk.step < 0;
    const auto step = static_cast<size_t>(back ? -walk.step : walk.step);
    if (step != 1 && step != 2 && step != 4) {
        for (size_t i = 0; i < count; ++i)
            target[i] = NoiseAt(line, static_cast<uint32_t>(walk.x + i * static_cast<uint64_t>(walk.step)));
        return;
    }
    constexpr size_t pieceMax = 512;
    uint8_t noise[(pieceMax - 1) * 4 + 1];
    for (size_t done = 0; done < count; done += pieceMax) {
        const size_t piece = std::min(pieceMax, count - done);
        const size_t span = (piece - 1) * step;
        const uint64_t lowest = back ? walk.x - done * step - span : walk.x + done * step;
        CopyNoise(line, lowest, noise, span + 1);
        if (step == 1)
            Pick<1>(noise, back, target + done, piece);
        else if (step == 2)
            Pick<2>(noise, back, target + done, piece);
        else
            Pick<4>(noise, back, target + done, piece);
    }
}

/// The one level that a whole line of some patterns has; false for every other.
bool LevelOfLine(const Scene& scene, const Walk& walk, uint64_t t, uint8_t& level) {
    switch (scene.pattern) {
    case TestPattern::GreyVerticalRampMoving:
    case TestPattern::GreyVerticalRamp:
        level = static_cast<uint8_t>(walk.y + t);
        return true;
    case TestPattern::Black:
    case TestPattern::White:
        level = scene.pattern == TestPattern::White ? 255 : 0;
        return true;
    case TestPattern::HorizontalLineMoving:
        level = walk.y == t % scene.sensorHeight ? 255 : 0;
        return true;
    default:
        return false;
    }
}

} // namespace

bool CopyGreyLine(const Scene& scene, uint64_t frameId, uint32_t row, const ByteLevels* levels,
                  uint8_t* target, size_t count) {
    const Walk walk = WalkOf(scene, row);
    const uint64_t t = Moves(scene.pattern) ? frameId : 0;
    uint8_t level = 0;
    if (LevelOfLine(scene, walk, t, level)) {
        std::memset(target, levels == nullptr ? level : (*levels)[level], count);
        return true;
    }
    switch (scene.pattern) {
    case TestPattern::GreyDiagonalRampMoving:
    case TestPattern::GreyDiagonalRamp:
    case TestPattern::GreyHorizontalRampMoving:
    case TestPattern::GreyHorizontalRamp: {
        if (walk.step != 1 || levels != nullptr)
            return false;
        const bool diagonal = LevelsRepeat(scene.pattern);
        std::memcpy(target, &ramp[(walk.x + (diagonal ? walk.y : 0) + t) % rampLevels], count);
        return true;
    }
    case TestPattern::Noise:
    case TestPattern::NoiseMoving:
        CopyNoise(NoiseOf(scene, walk.y, t), walk, target, count);
        for (size_t i = 0; levels != nullptr && i < count; ++i)
            target[i] = (*levels)[target[i]];
        return true;
    default:
        return false;
    }
}

} // namespace zqgentl
