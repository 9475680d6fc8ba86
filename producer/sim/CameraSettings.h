#pragma once

#include "producer/sim/CameraEvents.h"
#include "producer/sim/Chunks.h"

#include <cstdint>

namespace zqgentl {

constexpr int64_t pixelFormatMono8 = 0x01080001;

/// Numbered as the enumeration AcquisitionMode numbers them.
enum class AcquisitionMode : int64_t { SingleFrame = 1, MultiFrame = 2, Continuous = 3 };

/// Numbered as the enumerations ExposureAuto, GainAuto and the like number them.
enum class AutoMode : int64_t { Off = 0, Once = 1, Continuous = 2 };

/// What the registers of a camera set, with the values after power-up.
struct CameraSettings {
    int64_t width = 640;
    int64_t height = 480;
    int64_t offsetX = 0;
    int64_t offsetY = 0;
    int64_t pixelFormat = pixelFormatMono8;
    int64_t testPattern = 0;

    int64_t acquisitionMode = static_cast<int64_t>(AcquisitionMode::Continuous);
    int64_t acquisitionFrameCount = 1;
    int64_t frameRateEnable = 1;
    double frameRate = 30.0;
    double exposureTimeUs = 1000.0;
    int64_t exposureAuto = static_cast<int64_t>(AutoMode::Off);
    double gainDb = 0.0;

    int64_t chunkModeActive = 0;
    int64_t chunkSelector = 0;
    ChunkMask chunkMask = MaskOf(Chunk::Image);

    int64_t eventSelector = 0;
    EventMask eventMask = 0;

    int64_t tlParamsLocked = 0;
    int64_t timestampLatch = 0;
};

/// The ranges that the registers keep and the descriptions state.
constexpr int64_t widthMin = 8;
constexpr int64_t widthIncrement = 8;
constexpr int64_t heightMin = 1;
constexpr double exposureTimeMinUs = 10.0;
constexpr double exposureTimeMaxUs = 1e6;
constexpr double frameRateMin = 0.1;
constexpr double gainMaxDb = 24.0;

/// The rate that the exposure time leaves room for, in frames per second.
double MaxFrameRate(const CameraSettings& settings);
/// The rate that results from the settings; 0 when the camera runs as fast as its host takes frames.
double ResultingFrameRate(const CameraSettings& settings);

} // namespace zqgentl
