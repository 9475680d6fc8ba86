#pragma once

#include "producer/sim/Absence.h"
#include "producer/sim/Agenda.h"
#include "producer/sim/CameraModel.h"
#include "producer/sim/CameraSettings.h"
#include "producer/sim/DeviceFiles.h"
#include "producer/sim/Drift.h"
#include "producer/sim/Painter.h"
#include "producer/sim/RegisterMap.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>

namespace zqgentl {

/// How the next frames are to be made. Without pace the camera is as fast as its host takes frames.
struct FramePlan {
    Scene scene;
    const PixelFormat* format = nullptr;
    ToneCurve tone;
    uint64_t formatCode = 0; ///< in the namespace
    int32_t formatNamespace = 0;
    size_t imageSize = 0;
    size_t payloadSize = 0;
    ChunkLayout chunks;
    FrameFaults faults;
    uint32_t chunkLayoutId = 0;
    EventMask events = 0;
    double exposureTimeUs = 0;
    double gainDb = 0;
    PartList parts;
    bool lineStatusWanted = false;
    bool signals = false; ///< counter or timer listen to frames
    uint32_t lineStatus = 0;
    bool paced = true;
    bool triggered = false;
    std::chrono::nanoseconds triggerDelay{0};
    std::chrono::nanoseconds period{0};
    std::chrono::nanoseconds exposure{0};
};

/// What a host keeps from frame to frame: the plan, which revision of the settings it was made from, which
/// execution of AcquisitionStart it belongs to, and the id of the frame begun last.
struct FrameTicket {
    uint64_t revision = 0;
    uint64_t run = 0;
    uint64_t frameId = 0;
    FramePlan plan;
};

/// Who wants to know of changes that the camera's registers cause. Called without any lock of the camera's
/// settings, on the thread that wrote the register.
class CameraListener {
public:
    virtual void OnCameraChanged() = 0;
    virtual void OnCameraLost() = 0;
    /// The camera sends an event that is switched on.
    virtual void OnCameraEvent(const CameraEvent& event) = 0;
    /// A feature changed by itself: its value, where it is told along, is the text a host may write.
    virtual void OnFeatureInvalidated(const char* feature) = 0;
    virtual void OnFeatureChanged(const char* feature, const std::string& value) = 0;

protected:
    ~CameraListener() = default;
};

/// What a camera is connected to.
class CameraBus {
public:
    /// It is gone for a time, or, with a time of 0, until it is opened anew.
    virtual void Lose(std::chrono::milliseconds absence) = 0;
    /// A camera is away, for that time; not for one that can be opened at once.
    virtual void OnCameraAway(std::chrono::milliseconds absence) = 0;

protected:
    ~CameraBus() = default;
};

/// A simulated camera: its registers and the frames it has to give. Any thread may use it.
class Camera {
public:
    explicit Camera(const CameraModel& model);
    Camera(const Camera&) = delete;
    Camera& operator=(const Camera&) = delete;

    /// Once, before any other thread knows the camera.
    void ConnectTo(CameraBus& bus) noexcept { m_bus = &bus; }

    /// Opening a camera switches it on: settings are those of power-up and a loss is over. The user-defined
    /// name stays.
    void PowerOn(CameraListener& listener);
    /// No call to the listener is under way or comes later once this has returned.
    void PowerOff();

    [[nodiscard]] const CameraModel& Model() const noexcept { return m_model; }
    [[nodiscard]] const RegisterMap& Registers() const noexcept { return m_registers; }
    [[nodiscard]] bool Lost() const noexcept { return m_lost; }
    [[nodiscard]] bool Acquiring() const noexcept { return m_acquiring; }
    [[nodiscard]] uint64_t Revision() const noexcept { return m_revision; }
    [[nodiscard]] CameraSettings Settings() const;
    [[nodiscard]] int64_t PayloadSize() const;
    [[nodiscard]] std::string UserId() const;
    void SetUserId(const std::string& userId);

    /// Brings the ticket's plan up to date; false when the camera isn't acquiring.
    bool Refresh(FrameTicket& ticket) const;
    /// Begins the next frame: the plan and the frame's id, which counts from 0 at each AcquisitionStart. The
    /// last frame of a finite acquisition ends it. False when the camera isn't acquiring.
    bool BeginFrame(FrameTicket& ticket);

    /// An acquisition is under way, but its frames wait for the trigger AcquisitionStart, or for its delay to
    /// pass.
    [[nodiscard]] bool Armed() const noexcept { return m_armed; }
    /// A source fires; a line comes with the level that it has now. It triggers what is waited for during an
    /// acquisition, if that is to come from this source: first its frames, then each of them.
    void Trigger(TriggerSource source, bool level = true);
    /// The same of the trigger that is selected, and of no other.
    void TriggerBySoftware();
    [[nodiscard]] bool Triggered() const noexcept { return m_triggers > 0; }
    void TakeTrigger() noexcept { --m_triggers; }

    /// Something happened that counters and timers may listen to.
    void Happen(Signal signal);
    /// The simulation puts a level on an input.
    void DriveLine(size_t line, bool level);
    [[nodiscard]] uint32_t LineStatus() const;
    /// Of the counter and of the timer that are selected.
    [[nodiscard]] int64_t CounterValue() const;
    void ResetCounter();
    void StartTimer();
    [[nodiscard]] bool TimerActive() const;
    /// An action command with these keys came in. It is followed at the time it says, at once when that is
    /// over or 0; of commands that wait there is room for Agenda::namelessMax, and more are not followed.
    void Act(int64_t deviceKey, int64_t groupKey, int64_t groupMask, int64_t timeNs);

    void LoadUserSet();
    void SaveUserSet();
    [[nodiscard]] int64_t StartupSet() const;
    void SetStartupSet(int64_t set);
    [[nodiscard]] DeviceFiles& Files() noexcept { return m_files; }
    [[nodiscard]] const DeviceFiles& Files() const noexcept { return m_files; }

    /// Changes the settings as one step. A change to what frames look like is refused while the
    /// transport-layer parameters are locked.
    enum class Lockable { No, Yes };
    template <class Change>
    void Apply(Lockable lockable, Change change);
    /// Sends an event if it is switched on.
    void Send(const CameraEvent& event);
    /// In degrees Celsius, in steps of a tenth. It drifts: up while the camera acquires, down otherwise.
    [[nodiscard]] double Temperature() const;

    /// Changes nothing while an acquisition is under way.
    void StartAcquisition();
    void StopAcquisition();
    /// The camera is gone; see SimulationReturnTime for when it comes back.
    void Lose();
    /// The same, or the whole interface, after the time that SimulationLossDelay sets.
    void LoseLater();
    void LoseInterfaceLater();
    /// Gone for some time: it can't be found or opened. A camera lost without such a time can be opened anew.
    [[nodiscard]] bool Away() const noexcept { return m_absence.Away(); }

    /// Throws what the settings of the simulation want an access to the registers to end with, after the time
    /// that they want it to take; GC_ERR_IO after the patience of who waits for it.
    enum class Access { Read, Write };
    void PassPort(uint64_t address, size_t size, Access access, std::chrono::microseconds patience) const;

private:
    void RequireUnlocked() const;
    void TakePlan(FrameTicket& ticket) const;
    void PlanImage(FramePlan& plan) const;
    void PlanParts(FramePlan& plan) const;
    [[nodiscard]] uint32_t LineStatusLocked() const;
    [[nodiscard]] CameraSettings StoredSet(int64_t set) const;
    void Count(size_t counter);
    void StartTimer(size_t timer);
    void TimerStarted(size_t timer);
    void EndTimer(size_t timer);
    void StartTimersOn(Signal signal);
    template <class Wanted>
    void Fire(Wanted wanted);
    void StartFramesLater();
    void StartFrames(uint64_t run);
    void NotifyChanged();
    template <class Call>
    void Tell(Call call);
    bool AdjustExposure();
    [[nodiscard]] std::chrono::milliseconds LossDelay() const;
    void FollowTemperature();
    void CheckTemperature();

    const CameraModel m_model;
    RegisterMap m_registers;

    std::mutex m_listenerLock;
    CameraListener* m_listener = nullptr;

    mutable std::mutex m_lock;
    CameraSettings m_settings;
    std::string m_userId;
    uint64_t m_run = 0;
    uint64_t m_nextFrameId = 0;
    uint64_t m_framesLeft = 0;
    std::atomic<uint64_t> m_revision{1};
    std::atomic<bool> m_acquiring{false};
    std::atomic<int64_t> m_triggers{0};
    std::atomic<bool> m_armed{false};
    bool m_startTriggered = false; // what is waited for is the delay
    std::atomic<bool> m_portFaults{false};
    Absence m_absence;
    CameraBus* m_bus = nullptr;
    std::atomic<bool> m_lost{false};
    std::array<CameraSettings, userSetCount - 1> m_userSets;
    int64_t m_startupSet = 0;
    std::array<int64_t, counterCount> m_counters{};
    std::array<bool, counterCount> m_timersActive{};
    mutable ToneSettings m_toneMade; // what the curve was made from
    mutable ToneCurve m_tone;
    DeviceFiles m_files;
    int64_t m_adjusted = 0; // when the automatic exposure last took a step
    double m_temperatureTold = 0;
    Drift m_temperature;
    Agenda m_agenda; // last: its thread uses the rest
};

template <class Change>
void Camera::Apply(Lockable lockable, Change change) {
    {
        std::lock_guard<std::mutex> guard(m_lock);
        if (lockable == Lockable::Yes)
            RequireUnlocked();
        change(m_settings);
        m_portFaults = m_settings.portFaults.Any();
        if (TriggerOf(m_settings, TriggerKind::AcquisitionStart).mode == 0)
            m_armed = false;
        ++m_revision;
    }
    NotifyChanged();
}

/// The steady clock in nanoseconds: the time base of every timestamp.
int64_t SteadyNow();

/// Adds the camera's registers to its map.
void BindCameraRegisters(Camera& camera, RegisterMap& map);

} // namespace zqgentl
