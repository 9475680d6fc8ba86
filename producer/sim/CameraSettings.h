#pragma once

#include "producer/sim/CameraEvents.h"
#include "producer/sim/Chunks.h"
#include "producer/sim/Faults.h"
#include "producer/sim/Lines.h"
#include "producer/sim/Parts.h"
#include "producer/sim/PictureFolder.h"
#include "producer/sim/ToneCurve.h"

#include <cstdint>

namespace zqgentl {

constexpr int64_t pixelFormatMono8 = 0x01080001;

/// Numbered as the enumeration AcquisitionMode numbers them.
enum class AcquisitionMode : int64_t { SingleFrame = 1, MultiFrame = 2, Continuous = 3 };

/// Numbered as the enumerations ExposureAuto, GainAuto and the like number them.
enum class AutoMode : int64_t { Off = 0, Once = 1, Continuous = 2 };

/// What waits for a trigger, numbered as the enumeration TriggerSelector numbers them.
enum class TriggerKind : int64_t { FrameStart, AcquisitionStart };
constexpr int64_t triggerCount = 2;

/// Where a trigger comes from, numbered as the enumeration TriggerSource numbers them.
enum class TriggerSource : int64_t {
    Software,
    Line0,
    Line1,
    Counter0End,
    Timer0End,
    Action0,
    Counter1End,
    Timer1End,
};
constexpr int64_t triggerSourceCount = 8;
enum class TriggerActivation : int64_t { RisingEdge, FallingEdge, AnyEdge };

struct TriggerSettings {
    int64_t mode = 0;
    int64_t source = static_cast<int64_t>(TriggerSource::Software);
    int64_t activation = static_cast<int64_t>(TriggerActivation::RisingEdge);
    double delayUs = 0.0;
};

/// What the registers of a camera set, with the values after power-up.
struct CameraSettings {
    int64_t width = 640;
    int64_t height = 480;
    int64_t offsetX = 0;
    int64_t offsetY = 0;
    int64_t pixelFormat = pixelFormatMono8;
    int64_t binningX = 1;
    int64_t binningY = 1;
    int64_t reverseX = 0;
    int64_t reverseY = 0;
    int64_t testPattern = 0;
    int64_t seed = 0;
    Pictures pictures;

    int64_t acquisitionMode = static_cast<int64_t>(AcquisitionMode::Continuous);
    int64_t acquisitionFrameCount = 1;
    int64_t frameRateEnable = 1;
    double frameRate = 30.0;
    double exposureTimeUs = 1000.0;
    int64_t exposureAuto = static_cast<int64_t>(AutoMode::Off);
    int64_t triggerSelector = static_cast<int64_t>(TriggerKind::FrameStart);
    std::array<TriggerSettings, triggerCount> triggers;
    ToneSettings tone;
    int64_t lutIndex = 0;

    LineSettings lines;
    int64_t counterSelector = 0;
    std::array<CounterSettings, counterCount> counters;
    int64_t timerSelector = 0;
    std::array<TimerSettings, counterCount> timers;

    int64_t userSetSelector = 0;
    int64_t actionDeviceKey = 0;
    int64_t actionGroupKey = 0;
    int64_t actionGroupMask = 0;

    int64_t componentSelector = 0;
    ComponentMask components = MaskOf(Component::Intensity);

    int64_t chunkModeActive = 0;
    int64_t chunkSelector = 0;
    ChunkMask chunkMask = MaskOf(Chunk::Image);

    int64_t eventSelector = 0;
    EventMask eventMask = 0; ///< those that are sent, once or always
    EventMask eventsOnce = 0;

    FrameFaults frameFaults;
    PortFaults portFaults;
    int64_t lossDelayMs = 0;
    int64_t returnTimeMs = 0;

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
constexpr double blackLevelMax = 64.0;
constexpr double gammaMin = 0.25;
constexpr double gammaMax = 4.0;
constexpr double timerMaxUs = 1e7;
constexpr int64_t counterMax = 0x7FFFFFFF;
/// Default, which no one can write, and two of the user's own.
constexpr int64_t userSetCount = 3;
constexpr double triggerDelayMaxUs = 1e6;
constexpr int64_t binningMax = 4;

inline int64_t WidthMax(const CameraModel& model, const CameraSettings& settings) {
    return model.sensorWidth / settings.binningX / widthIncrement * widthIncrement;
}
inline int64_t HeightMax(const CameraModel& model, const CameraSettings& settings) {
    return model.sensorHeight / settings.binningY;
}

inline const TriggerSettings& TriggerOf(const CameraSettings& settings, TriggerKind kind) {
    return settings.triggers[static_cast<size_t>(kind)];
}

/// The rate that the exposure time leaves room for, in frames per second.
double MaxFrameRate(const CameraSettings& settings);
/// The rate that results from the settings; 0 when the camera runs as fast as its host takes frames.
double ResultingFrameRate(const CameraSettings& settings);

} // namespace zqgentl
