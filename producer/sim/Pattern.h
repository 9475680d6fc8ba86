#pragma once

#include <cstddef>
#include <cstdint>

namespace zqgentl {

/// Numbered as the enumeration TestPattern of the cameras numbers them.
enum class TestPattern : int64_t {
    DiagonalRampMoving = 0,
    HorizontalRampMoving = 1,
    VerticalRampMoving = 2,
    Black = 3,
    White = 4,
};
constexpr int64_t testPatternCount = 5;

/// The part of the sensor that a picture shows, in pixels.
struct Region {
    uint32_t x = 0;
    uint32_t y = 0;
    uint32_t width = 0;
    uint32_t height = 0;
};

/// Draws a Mono8 picture, at most `size` bytes of it, and returns how many bytes it drew. A moving pattern is
/// fixed to the sensor, one grey level wide per pixel, and moves by one pixel from frame to frame, so that
/// every picture tells its frame id modulo 256.
size_t DrawMono8(TestPattern pattern, const Region& region, uint64_t frameId, uint8_t* pixels, size_t size);

} // namespace zqgentl
