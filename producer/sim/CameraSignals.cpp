// What a camera does with its lines, its counter, its timer and action commands.

#include "producer/sim/Camera.h"

namespace zqgentl {

namespace {

uint64_t Now() {
    return static_cast<uint64_t>(SteadyNow());
}

std::chrono::nanoseconds Microseconds(double time) {
    return std::chrono::nanoseconds(static_cast<int64_t>(time * 1e3));
}

bool Activates(int64_t activation, bool level) {
    switch (static_cast<TriggerActivation>(activation)) {
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

void Camera::Happen(Signal signal) {
    const CameraSettings settings = Settings();
    if (settings.counter.source == static_cast<int64_t>(signal))
        Count();
    if (settings.timer.source == static_cast<int64_t>(signal))
        StartTimer();
}

void Camera::DriveLine(size_t line, bool level) {
    bool seen = false;
    int64_t activation = 0;
    {
        std::lock_guard<std::mutex> guard(m_lock);
        LineSettings& lines = m_settings.lines;
        const uint32_t bit = uint32_t{1} << line;
        if (((lines.inputs & bit) != 0) == level)
            return;
        lines.inputs ^= bit;
        seen = level != ((lines.inverted & bit) != 0);
        activation = m_settings.triggerActivation;
    }
    if (line == 0)
        Send({seen ? EventKind::Line0RisingEdge : EventKind::Line0FallingEdge, 0, Now(), 0});
    if (Activates(activation, seen))
        Trigger(line == 0 ? TriggerSource::Line0 : TriggerSource::Line1);
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
            level = m_timerActive;
            break;
        case LineSource::Counter0Active:
            level = m_counter > 0;
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
    return m_counter;
}

void Camera::ResetCounter() {
    std::lock_guard<std::mutex> guard(m_lock);
    m_counter = 0;
}

void Camera::Count() {
    {
        std::lock_guard<std::mutex> guard(m_lock);
        if (++m_counter < m_settings.counter.duration)
            return;
        m_counter = 0;
    }
    Send({EventKind::Counter0End, 0, Now(), 0});
    Trigger(TriggerSource::Counter0End);
    // A timer may follow the counter; the counter can't be set to count its own ends.
    if (Settings().timer.source == static_cast<int64_t>(Signal::Counter0End))
        StartTimer();
}

void Camera::StartTimer() {
    m_agenda.After(Microseconds(Settings().timer.delayUs), Agenda::Job::Timer0, [this] { TimerStarted(); });
}

void Camera::TimerStarted() {
    std::chrono::nanoseconds duration;
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_timerActive = true;
        duration = Microseconds(m_settings.timer.durationUs);
    }
    m_agenda.After(duration, Agenda::Job::Timer0, [this] { EndTimer(); });
}

void Camera::EndTimer() {
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_timerActive = false;
    }
    Send({EventKind::Timer0End, 0, Now(), 0});
    Trigger(TriggerSource::Timer0End);
    Happen(Signal::Timer0End);
}

bool Camera::TimerActive() const {
    std::lock_guard<std::mutex> guard(m_lock);
    return m_timerActive;
}

void Camera::Act(int64_t deviceKey, int64_t groupKey, int64_t groupMask) {
    const CameraSettings settings = Settings();
    if (settings.actionDeviceKey == deviceKey && settings.actionGroupKey == groupKey &&
        (settings.actionGroupMask & groupMask) != 0)
        Trigger(TriggerSource::Action0);
}

} // namespace zqgentl
