#pragma once

#include "producer/sim/Scene.h"

/// What the ways to draw a scene have in common.
namespace zqgentl {

/// The sensor's pixels that a line of the picture shows: the first, and the way to the next.
struct Walk {
    uint64_t x;
    int64_t step;
    uint64_t y;
};

[[nodiscard]] Walk WalkOf(const Scene& scene, uint32_t row);

/// Whether the pattern is another from frame to frame.
[[nodiscard]] bool Moves(TestPattern pattern);

[[nodiscard]] inline uint64_t Hash(uint64_t number) {
    number ^= number >> 33;
    number *= 0xFF51AFD7ED558CCDULL;
    number ^= number >> 33;
    number *= 0xC4CEB9FE1A85EC53ULL;
    return number ^ (number >> 33);
}

/// What the noise of a line follows from.
[[nodiscard]] uint64_t NoiseOf(const Scene& scene, uint64_t y, uint64_t time);
/// A hash is the noise of eight pixels that lie together on the sensor.
constexpr uint32_t hashBytes = 8;
[[nodiscard]] inline uint8_t NoiseAt(uint64_t line, uint32_t x) {
    return static_cast<uint8_t>(Hash(line + x / hashBytes) >> (8 * (x % hashBytes)));
}

/// The line of a picture that falls on a line of the region, each value from the nearest pixel.
[[nodiscard]] ColourLine PictureLine(uint16_t* room, const Scene& scene, uint64_t frameId, uint32_t row,
                                     uint32_t bits);

} // namespace zqgentl
