#pragma once

#include "producer/sim/PictureFolder.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace zqgentl {

/// Numbered as the enumeration TestPattern of the cameras numbers them.
enum class TestPattern : int64_t {
    GreyDiagonalRampMoving,
    GreyHorizontalRampMoving,
    GreyVerticalRampMoving,
    Black,
    White,
    GreyDiagonalRamp,
    GreyHorizontalRamp,
    GreyVerticalRamp,
    ColorBar,
    ColorBarMoving,
    ColorRampMoving,
    HorizontalLineMoving,
    VerticalLineMoving,
    FrameCounter,
    Noise,
    NoiseMoving,
    Picture,
};
constexpr int64_t testPatternCount = 17;

/// The part of the sensor that a picture shows, in pixels of the picture.
struct Region {
    uint32_t x = 0;
    uint32_t y = 0;
    uint32_t width = 0;
    uint32_t height = 0;
};

/// What there is to be seen, and through which part of the sensor. The picture follows from it and the frame
/// id alone.
struct Scene {
    TestPattern pattern = TestPattern::GreyDiagonalRampMoving;
    Region region;
    uint32_t sensorWidth = 1;
    uint32_t sensorHeight = 1;
    uint32_t binningX = 1;
    uint32_t binningY = 1;
    bool reverseX = false;
    bool reverseY = false;
    uint32_t seed = 0;
    Pictures pictures; ///< what Picture shows, resized to the region; black without any
};

/// A line of a picture: one value for each pixel and colour, each of `bits` bits. The three point to the same
/// values in a grey line.
struct ColourLine {
    const uint16_t* red;
    const uint16_t* green;
    const uint16_t* blue;

    [[nodiscard]] bool Grey() const noexcept { return red == green && red == blue; }
};

/// Looks at a line of the scene. The values are written into `room`, which has space for three times the
/// width. A moving ramp is fixed to the sensor, one level of the format per pixel, and moves by one pixel
/// from frame to frame, so that every picture tells its frame id modulo the number of levels.
ColourLine LookAt(const Scene& scene, uint64_t frameId, uint32_t row, uint32_t bits, uint16_t* room);

/// Whether all lines of a picture are alike.
bool LinesRepeat(TestPattern pattern);

/// Whether a line begins anew after as many pixels as there are levels.
bool LevelsRepeat(TestPattern pattern);

/// What becomes of each level of eight bits.
using ByteLevels = std::array<uint8_t, 256>;

/// Draws a line of bytes, one a pixel, where that is no more than copying; false for every other scene.
/// Without levels they stay as they are.
bool CopyGreyLine(const Scene& scene, uint64_t frameId, uint32_t row, const ByteLevels* levels,
                  uint8_t* target, size_t count);

/// Whether a line shows the same as the one before it, because the picture has fewer of them.
bool RepeatsLineBefore(const Scene& scene, uint64_t frameId, uint32_t row);

} // namespace zqgentl
