#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zqgentl {

/// Line0 and Line1 are inputs that the simulation drives, Line2 and Line3 outputs.
constexpr size_t lineCount = 4;
constexpr size_t inputCount = 2;
constexpr size_t userOutputCount = 2;

/// Numbered as the enumeration LineSource numbers them.
enum class LineSource : int64_t {
    Off,
    UserOutput0,
    UserOutput1,
    Timer0Active,
    Counter0Active,
    Timer1Active,
    Counter1Active,
};

/// Numbered as the enumerations CounterEventSource and TimerTriggerSource number them.
enum class Signal : int64_t {
    Off,
    FrameStart,
    ExposureEnd,
    Line0,
    Line1,
    Timer0End,
    Counter0End,
    Timer1End,
    Counter1End,
};
constexpr int64_t signalCount = 9;

/// There are as many counters as timers.
constexpr size_t counterCount = 2;

struct LineSettings {
    int64_t selector = 0;
    int64_t userOutputSelector = 0;
    uint32_t inverted = 0;
    uint32_t inputs = 0;      ///< levels that the simulation puts on the inputs
    uint32_t userOutputs = 0; ///< bits
    std::array<int64_t, lineCount> sources{};
};

struct CounterSettings {
    int64_t source = static_cast<int64_t>(Signal::Off);
    int64_t duration = 1;
};

struct TimerSettings {
    int64_t source = static_cast<int64_t>(Signal::Off);
    double durationUs = 1000.0;
    double delayUs = 0.0;
};

} // namespace zqgentl
