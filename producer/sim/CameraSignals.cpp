// What a camera does with its lines, counters, timers and action commands.

#include "producer/sim/Camera.h"

#include <utility>

namespace zqgentl {

namespace {

uint64_t Now() {
    return static_cast<uint64_t>(SteadyNow());
}

std::chrono::nanoseconds Microseconds(double time) {
    return std::chrono::nanoseconds(static_cast<int64_t>(time * 1e3));
}

/// What the end of a counter or of a timer of one number is to the rest of the camera.
struct Ends {
    EventKind counterEvent;
    TriggerSource counterTrigger;
    Signal counter;
    EventKind timerEvent;
    TriggerSource timerTrigger;
    Signal timer;
    Agenda::Job job;
};

constexpr Ends endsOf[counterCount] = {
    {EventKind::Counter0End, TriggerSource::Counter0End, Signal::Counter0End, EventKind::Timer0End,
     TriggerSource::Timer0End, Signal::Timer0End, Agenda::Job::Timer0},
    {EventKind::Counter1End, TriggerSource::Counter1End, Signal::Counter1End, EventKind::Timer1End,
     TriggerSource::Timer1End, Signal::Timer1End, Agenda::Job::Timer1},
};

bool Activates(const TriggerSettings& trigger, TriggerSource source, bool level) {
    if (trigger.source != static_cast<int64_t>(source))
        return false;
    if (source != TriggerSource::Line0 && source != TriggerSource::Line1)
        return true;
    switch (static_cast<TriggerActivation>(trigger.activation)) {
    case TriggerActivation::RisingEdge:
        return level;
    case TriggerActivation::FallingEdge:
        return !level;
    case TriggerActivation::AnyEdge:
        break;
    }
    return true;
}

} // namespace

template <class Wanted>
void Camera::Fire(Wanted wanted) {
    {
        std::lock_guard<std::mutex> guard(m_lock);
        // One signal is one trigger: that which the frames begin with is none for the first of them.
        const TriggerKind awaited = m_armed ? TriggerKind::AcquisitionStart : TriggerKind::FrameStart;
        const TriggerSettings& trigger = TriggerOf(m_settings, awaited);
        if (!m_acquiring || trigger.mode == 0 || !wanted(awaited, trigger))
            return;
        if (m_armed)
            StartFramesLater();
        else
            ++m_triggers;
    }
    NotifyChanged();
}

void Camera::Trigger(TriggerSource source, bool level) {
    Fire([&](TriggerKind, const TriggerSettings& trigger) { return Activates(trigger, source, level); });
}

void Camera::TriggerBySoftware() {
    Fire([this](TriggerKind kind, const TriggerSettings& trigger) {
        return static_cast<int64_t>(kind) == m_settings.triggerSelector &&
               Activates(trigger, TriggerSource::Software, true);
    });
}

void Camera::StartFramesLater() {
    if (std::exchange(m_startTriggered, true))
        return;
    const auto delay = Microseconds(TriggerOf(m_settings, TriggerKind::AcquisitionStart).delayUs);
    if (delay.count() == 0)
        m_armed = false;
    else
        m_agenda.After(delay, Agenda::Job::StartTrigger, [this, run = m_run] { StartFrames(run); });
}

void Camera::StartFrames(uint64_t run) {
    {
        std::lock_guard<std::mutex> guard(m_lock);
        if (run != m_run)
            return;
        m_armed = false;
    }
    NotifyChanged();
}

void Camera::Happen(Signal signal) {
    const CameraSettings settings = Settings();
    for (size_t i = 0; i < counterCount; ++i) {
        if (settings.counters[i].source == static_cast<int64_t>(signal))
            Count(i);
    }
    StartTimersOn(signal);
}

void Camera::StartTimersOn(Signal signal) {
    const CameraSettings settings = Settings();
    for (size_t i = 0; i < counterCount; ++i) {
        if (settings.timers[i].source == static_cast<int64_t>(signal))
            StartTimer(i);
    }
}

void Camera::DriveLine(size_t line, bool level) {
    bool seen = false;
    {
        std::lock_guard<std::mutex> guard(m_lock);
        LineSettings& lines = m_settings.lines;
        const uint32_t bit = uint32_t{1} << line;
        if (((lines.inputs & bit) != 0) == level)
            return;
        lines.inputs ^= bit;
        seen = level != ((lines.inverted & bit) != 0);
    }
    if (line == 0)
        Send({seen ? EventKind::Line0RisingEdge : EventKind::Line0FallingEdge, 0, Now(), 0});
    Trigger(line == 0 ? TriggerSource::Line0 : TriggerSource::Line1, seen);
    if (seen)
        Happen(line == 0 ? Signal::Line0 : Signal::Line1);
}

uint32_t Camera::LineStatusLocked() const {
    const LineSettings& lines = m_settings.lines;
    uint32_t status = lines.inputs;
    for (size_t line = inputCount; line < lineCount; ++line) {
        bool level = false;
        switch (static_cast<LineSource>(lines.sources[line])) {
        case LineSource::Off:
            break;
        case LineSource::UserOutput0:
            level = (lines.userOutputs & 1) != 0;
            break;
        case LineSource::UserOutput1:
            level = (lines.userOutputs & 2) != 0;
            break;
        case LineSource::Timer0Active:
            level = m_timersActive[0];
            break;
        case LineSource::Counter0Active:
            level = m_counters[0] > 0;
            break;
        case LineSource::Timer1Active:
            level = m_timersActive[1];
            break;
        case LineSource::Counter1Active:
            level = m_counters[1] > 0;
            break;
        }
        status |= uint32_t{level} << line;
    }
    return status ^ lines.inverted;
}

uint32_t Camera::LineStatus() const {
    std::lock_guard<std::mutex> guard(m_lock);
    return LineStatusLocked();
}

int64_t Camera::CounterValue() const {
    std::lock_guard<std::mutex> guard(m_lock);
    return m_counters[static_cast<size_t>(m_settings.counterSelector)];
}

void Camera::ResetCounter() {
    std::lock_guard<std::mutex> guard(m_lock);
    m_counters[static_cast<size_t>(m_settings.counterSelector)] = 0;
}

void Camera::Count(size_t counter) {
    {
        std::lock_guard<std::mutex> guard(m_lock);
        if (++m_counters[counter] < m_settings.counters[counter].duration)
            return;
        m_counters[counter] = 0;
    }
    const Ends& ends = endsOf[counter];
    Send({ends.counterEvent, 0, Now(), 0});
    Trigger(ends.counterTrigger);
    // Timers may follow a counter; no counter can be set to count what counters do.
    StartTimersOn(ends.counter);
}

void Camera::StartTimer() {
    StartTimer(static_cast<size_t>(Settings().timerSelector));
}

void Camera::StartTimer(size_t timer) {
    m_agenda.After(Microseconds(Settings().timers[timer].delayUs), endsOf[timer].job,
                   [this, timer] { TimerStarted(timer); });
}

void Camera::TimerStarted(size_t timer) {
    std::chrono::nanoseconds duration;
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_timersActive[timer] = true;
        duration = Microseconds(m_settings.timers[timer].durationUs);
    }
    m_agenda.After(duration, endsOf[timer].job, [this, timer] { EndTimer(timer); });
}

void Camera::EndTimer(size_t timer) {
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_timersActive[timer] = false;
    }
    const Ends& ends = endsOf[timer];
    Send({ends.timerEvent, 0, Now(), 0});
    Trigger(ends.timerTrigger);
    Happen(ends.timer);
}

bool Camera::TimerActive() const {
    std::lock_guard<std::mutex> guard(m_lock);
    return m_timersActive[static_cast<size_t>(m_settings.timerSelector)];
}

void Camera::Act(int64_t deviceKey, int64_t groupKey, int64_t groupMask, int64_t timeNs) {
    const CameraSettings settings = Settings();
    if (settings.actionDeviceKey != deviceKey || settings.actionGroupKey != groupKey ||
        (settings.actionGroupMask & groupMask) == 0)
        return;
    if (timeNs <= SteadyNow())
        Trigger(TriggerSource::Action0);
    else
        m_agenda.At(Agenda::Clock::time_point(std::chrono::nanoseconds(timeNs)),
                    [this] { Trigger(TriggerSource::Action0); });
}

} // namespace zqgentl
