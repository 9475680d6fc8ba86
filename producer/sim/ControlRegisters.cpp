// Registers of lines, counters, timers, user sets and actions.

#include "producer/sim/CameraRegisters.h"

namespace zqgentl {

namespace {

constexpr RegisterKind Integer = RegisterKind::Integer;
constexpr RegisterKind Float = RegisterKind::Float;

using L = LineSettings;

constexpr int64_t lastSignal = signalCount - 1;
constexpr int64_t lastCounter = counterCount - 1;

bool IsOutput(int64_t line) {
    return line >= static_cast<int64_t>(inputCount);
}

RegisterValue GetLineMode(const Camera& camera) {
    return Value(int64_t{IsOutput(camera.Settings().lines.selector)});
}

RegisterValue GetLineStatus(const Camera& camera) {
    return Value(int64_t{(camera.LineStatus() >> camera.Settings().lines.selector) & 1});
}

RegisterValue GetLineSource(const Camera& camera) {
    const LineSettings lines = camera.Settings().lines;
    return Value(lines.sources[static_cast<size_t>(lines.selector)]);
}

void SetLineSource(Camera& camera, const RegisterValue& value) {
    CheckRange("LineSource", Whole(value), 0, static_cast<int64_t>(LineSource::Counter1Active));
    camera.Apply(Camera::Lockable::No, [&](CameraSettings& settings) {
        if (!IsOutput(settings.lines.selector))
            throw Failure(GenTL::GC_ERR_ACCESS_DENIED, "the line is an input");
        settings.lines.sources[static_cast<size_t>(settings.lines.selector)] = Whole(value);
    });
}

/// The bit of a set of lines that a selector names.
template <auto Selector, auto Mask>
RegisterValue GetLineBit(const Camera& camera) {
    const LineSettings lines = camera.Settings().lines;
    return Value(int64_t{(lines.*Mask >> lines.*Selector) & 1});
}

template <auto Selector, auto Mask>
void SetLineBit(Camera& camera, const RegisterValue& value) {
    CheckRange("the switch", Whole(value), 0, 1);
    camera.Apply(Camera::Lockable::No, [&](CameraSettings& settings) {
        LineSettings& lines = settings.lines;
        const uint32_t bit = uint32_t{1} << lines.*Selector;
        lines.*Mask = Whole(value) != 0 ? lines.*Mask | bit : lines.*Mask & ~bit;
    });
}

template <size_t Line>
RegisterValue GetInput(const Camera& camera) {
    return Value(int64_t{(camera.Settings().lines.inputs >> Line) & 1});
}

template <size_t Line>
void SetInput(Camera& camera, const RegisterValue& value) {
    CheckRange("the level", Whole(value), 0, 1);
    camera.DriveLine(Line, Whole(value) != 0);
}

template <auto Member>
constexpr auto GetCounter = GetOf<&S::counters, &S::counterSelector, Member>;
template <auto Member>
constexpr auto GetTimer = GetOf<&S::timers, &S::timerSelector, Member>;

/// Counters listen to everything but the ends of counters: two could count each other's without an end.
void SetCounterSource(Camera& camera, const RegisterValue& value) {
    CheckRange("CounterEventSource", Whole(value), 0, lastSignal);
    const auto signal = static_cast<Signal>(Whole(value));
    if (signal == Signal::Counter0End || signal == Signal::Counter1End)
        throw Failure(GenTL::GC_ERR_INVALID_VALUE, "a counter can't count the ends of counters");
    SetOf<&S::counters, &S::counterSelector, &CounterSettings::source>(camera, Whole(value));
}

void SetCounterDuration(Camera& camera, const RegisterValue& value) {
    CheckRange("CounterDuration", Whole(value), 1, counterMax);
    SetOf<&S::counters, &S::counterSelector, &CounterSettings::duration>(camera, Whole(value));
}

void SetTimerSource(Camera& camera, const RegisterValue& value) {
    CheckRange("TimerTriggerSource", Whole(value), 0, lastSignal);
    SetOf<&S::timers, &S::timerSelector, &TimerSettings::source>(camera, Whole(value));
}

template <auto Member, int64_t Min>
void SetTimerTime(Camera& camera, const RegisterValue& value) {
    CheckRange("the time", std::get<double>(value), double{Min}, timerMaxUs);
    SetOf<&S::timers, &S::timerSelector, Member>(camera, std::get<double>(value));
}

void ResetCounter(Camera& camera) {
    camera.ResetCounter();
}

void StartTimer(Camera& camera) {
    camera.StartTimer();
}

void LoadUserSet(Camera& camera) {
    camera.LoadUserSet();
}

void SaveUserSet(Camera& camera) {
    camera.SaveUserSet();
}

constexpr int64_t lastLine = lineCount - 1;
constexpr int64_t lastUserOutput = userOutputCount - 1;
constexpr int64_t lastUserSet = userSetCount - 1;
constexpr auto Lines = &S::lines;

constexpr RegisterRow<Camera> rows[] = {
    {0x0B00, 4, Integer, GetIn<Lines, &L::selector>, SetIn<Lines, &L::selector, 0, lastLine>},
    {0x0B04, 4, Integer, GetLineMode, nullptr},
    {0x0B08, 4, Integer, GetLineBit<&L::selector, &L::inverted>, SetLineBit<&L::selector, &L::inverted>},
    {0x0B0C, 4, Integer, GetLineStatus, nullptr},
    {0x0B10, 4, Integer, [](const Camera& c) { return Value(int64_t{c.LineStatus()}); }, nullptr},
    {0x0B14, 4, Integer, GetLineSource, SetLineSource},
    {0x0B18, 4, Integer, GetIn<Lines, &L::userOutputSelector>,
     SetIn<Lines, &L::userOutputSelector, 0, lastUserOutput>},
    {0x0B1C, 4, Integer, GetLineBit<&L::userOutputSelector, &L::userOutputs>,
     SetLineBit<&L::userOutputSelector, &L::userOutputs>},
    {0x0760, 4, Integer, GetInput<0>, SetInput<0>},
    {0x0764, 4, Integer, GetInput<1>, SetInput<1>},

    {0x0C00, 4, Integer, Get<&S::counterSelector>, SetWhole<&S::counterSelector, 0, lastCounter>},
    {0x0C04, 4, Integer, GetCounter<&CounterSettings::source>, SetCounterSource},
    {0x0C08, 4, Integer, GetCounter<&CounterSettings::duration>, SetCounterDuration},
    {0x0C0C, 4, Integer, [](const Camera& c) { return Value(c.CounterValue()); }, nullptr},
    {0x0C10, 4, Integer, nullptr, Command<ResetCounter>},

    {0x0C40, 4, Integer, Get<&S::timerSelector>, SetWhole<&S::timerSelector, 0, lastCounter>},
    {0x0C44, 4, Integer, GetTimer<&TimerSettings::source>, SetTimerSource},
    {0x0C48, 8, Float, GetTimer<&TimerSettings::durationUs>, SetTimerTime<&TimerSettings::durationUs, 10>},
    {0x0C50, 8, Float, GetTimer<&TimerSettings::delayUs>, SetTimerTime<&TimerSettings::delayUs, 0>},
    {0x0C58, 4, Integer, nullptr, Command<StartTimer>},
    {0x0C5C, 4, Integer, [](const Camera& c) { return Value(int64_t{c.TimerActive()}); }, nullptr},

    {0x0D00, 4, Integer, Get<&S::userSetSelector>, SetWhole<&S::userSetSelector, 0, lastUserSet>},
    {0x0D04, 4, Integer, nullptr, Command<LoadUserSet>},
    {0x0D08, 4, Integer, nullptr, Command<SaveUserSet>},
    {0x0D0C, 4, Integer, [](const Camera& c) { return Value(c.StartupSet()); },
     [](Camera& c, const Value& v) { c.SetStartupSet(Whole(v)); }},

    {0x0E00, 4, Integer, nullptr, SetWhole<&S::actionDeviceKey, 0, 0xFFFFFFFF>},
    {0x0E04, 4, Integer, [](const Camera&) { return Value(int64_t{0}); }, SetNothing<0>},
    {0x0E08, 4, Integer, Get<&S::actionGroupKey>, SetWhole<&S::actionGroupKey, 0, 0xFFFFFFFF>},
    {0x0E0C, 4, Integer, Get<&S::actionGroupMask>, SetWhole<&S::actionGroupMask, 0, 0xFFFFFFFF>},
};

} // namespace

void BindControlRegisters(Camera& camera, RegisterMap& map) {
    map.Bind(camera, rows);
}

} // namespace zqgentl
