#include "producer/sim/Camera.h"

#include "gentl/GenTL.h"
#include "producer/sim/Failure.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <thread>

namespace zqgentl {

namespace {

constexpr double idleTemperature = 36.0;
constexpr double busyTemperature = 42.5;
constexpr std::chrono::seconds temperatureTimeConstant(10);
constexpr std::chrono::milliseconds temperaturePeriod(250);
constexpr int64_t exposureStepNs = 50'000'000;

std::string FloatText(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", value);
    return text;
}

} // namespace

double MaxFrameRate(const CameraSettings& settings) {
    return 1e6 / settings.exposureTimeUs;
}

double ResultingFrameRate(const CameraSettings& settings) {
    return settings.frameRateEnable != 0 ? std::min(settings.frameRate, MaxFrameRate(settings)) : 0.0;
}

int64_t SteadyNow() {
    const auto sinceBoot = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(sinceBoot).count();
}

Camera::Camera(const CameraModel& model)
    : m_model(model), m_registers(model.byteOrder),
      m_files("model=" + std::string(model.modelName) + "\nserial=" + model.serialNumber + "\n") {
    BindCameraRegisters(*this, m_registers);
}

void Camera::PowerOn(CameraListener& listener) {
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_settings = StoredSet(m_startupSet);
        m_counters = {};
        m_timersActive = {};
        m_files.CloseAll();
        m_portFaults = false;
        ++m_revision;
        m_acquiring = false;
        m_lost = false;
        m_temperature = Drift(idleTemperature, temperatureTimeConstant);
        m_temperatureTold = idleTemperature;
    }
    std::lock_guard<std::mutex> guard(m_listenerLock);
    m_listener = &listener;
}

void Camera::PowerOff() {
    m_agenda.Stop();
    {
        std::lock_guard<std::mutex> guard(m_listenerLock);
        m_listener = nullptr;
    }
    std::lock_guard<std::mutex> guard(m_lock);
    m_acquiring = false;
    m_lost = false;
}

template <class Call>
void Camera::Tell(Call call) {
    std::lock_guard<std::mutex> guard(m_listenerLock);
    if (m_listener != nullptr)
        call(*m_listener);
}

CameraSettings Camera::Settings() const {
    std::lock_guard<std::mutex> guard(m_lock);
    return m_settings;
}

int64_t Camera::PayloadSize() const {
    FrameTicket ticket;
    Refresh(ticket);
    return static_cast<int64_t>(ticket.plan.payloadSize);
}

std::string Camera::UserId() const {
    std::lock_guard<std::mutex> guard(m_lock);
    return m_userId;
}

void Camera::SetUserId(const std::string& userId) {
    std::lock_guard<std::mutex> guard(m_lock);
    m_userId = userId;
}

bool Camera::Refresh(FrameTicket& ticket) const {
    std::lock_guard<std::mutex> guard(m_lock);
    TakePlan(ticket);
    return m_acquiring;
}

bool Camera::BeginFrame(FrameTicket& ticket) {
    std::unique_lock<std::mutex> lock(m_lock);
    if (!m_acquiring)
        return false;
    const bool adjusted = m_settings.exposureAuto != static_cast<int64_t>(AutoMode::Off) && AdjustExposure();
    TakePlan(ticket);
    if (ticket.plan.lineStatusWanted)
        ticket.plan.lineStatus = LineStatusLocked();
    ticket.frameId = m_nextFrameId++;
    if (m_framesLeft != 0 && --m_framesLeft == 0)
        m_acquiring = false;
    if (adjusted) {
        const std::string value = FloatText(m_settings.exposureTimeUs);
        const bool once = m_settings.exposureAuto == static_cast<int64_t>(AutoMode::Off);
        lock.unlock();
        Tell([&](CameraListener& listener) {
            listener.OnFeatureInvalidated("ExposureTime");
            listener.OnFeatureChanged("ExposureTime", value);
            if (once)
                listener.OnFeatureInvalidated("ExposureAuto");
        });
    }
    return true;
}

bool Camera::AdjustExposure() {
    const int64_t now = SteadyNow();
    if (now - m_adjusted < exposureStepNs)
        return false;
    m_adjusted = now;
    // The scene grows brighter and darker again, over and over; half the way is made at each step.
    constexpr double brightestUs = 2000.0;
    constexpr double spanUs = 8000.0;
    constexpr int64_t cycleNs = 4'000'000'000;
    const double phase = static_cast<double>(now % cycleNs) / cycleNs;
    double target = brightestUs + spanUs * std::abs(2 * phase - 1);
    if (m_settings.frameRateEnable != 0)
        target = std::min(target, 1e6 / m_settings.frameRate);
    m_settings.exposureTimeUs = std::max(exposureTimeMinUs, (m_settings.exposureTimeUs + target) / 2);
    if (m_settings.exposureAuto == static_cast<int64_t>(AutoMode::Once))
        m_settings.exposureAuto = static_cast<int64_t>(AutoMode::Off);
    ++m_revision;
    return true;
}

void Camera::TakePlan(FrameTicket& ticket) const {
    ticket.run = m_run;
    if (ticket.revision == m_revision)
        return;
    ticket.revision = m_revision;
    PlanImage(ticket.plan);
    ticket.plan.chunks = ChunkLayout();
    if (m_settings.chunkModeActive != 0)
        ticket.plan.chunks = ChunkLayout(m_model.technology, m_settings.chunkMask, ticket.plan.imageSize,
                                         m_model.oldChunks ? ByteOrder::Big : ByteOrder::Little);
    ticket.plan.chunkLayoutId = ticket.plan.chunks.Id();
    ticket.plan.payloadSize =
        ticket.plan.chunks.Empty() ? ticket.plan.imageSize : ticket.plan.chunks.PayloadSize();
    ticket.plan.faults = m_settings.frameFaults;
    ticket.plan.events = m_settings.eventMask;
    ticket.plan.exposureTimeUs = m_settings.exposureTimeUs;
    ticket.plan.gainDb = m_settings.tone.gainDb;
    ticket.plan.lineStatusWanted = (ticket.plan.chunks.Mask() & MaskOf(Chunk::LineStatusAll)) != 0;
    ticket.plan.signals = false;
    for (size_t i = 0; i < counterCount; ++i)
        ticket.plan.signals |= m_settings.counters[i].source != 0 || m_settings.timers[i].source != 0;
    ticket.plan.paced = m_settings.frameRateEnable != 0;
    ticket.plan.exposure = std::chrono::nanoseconds(static_cast<int64_t>(m_settings.exposureTimeUs * 1e3));
    const TriggerSettings& trigger = TriggerOf(m_settings, TriggerKind::FrameStart);
    ticket.plan.triggered = trigger.mode != 0;
    ticket.plan.triggerDelay = std::chrono::nanoseconds(static_cast<int64_t>(trigger.delayUs * 1e3));
    ticket.plan.period = std::chrono::nanoseconds(0);
    if (ticket.plan.paced)
        ticket.plan.period =
            std::chrono::nanoseconds(static_cast<int64_t>(1e9 / ResultingFrameRate(m_settings)));
}

void Camera::PlanImage(FramePlan& plan) const {
    const auto number = [](int64_t value) { return static_cast<uint32_t>(value); };
    Scene& scene = plan.scene;
    scene.pattern = static_cast<TestPattern>(m_settings.testPattern);
    scene.region = {number(m_settings.offsetX), number(m_settings.offsetY), number(m_settings.width),
                    number(m_settings.height)};
    scene.sensorWidth = m_model.sensorWidth;
    scene.sensorHeight = m_model.sensorHeight;
    scene.binningX = number(m_settings.binningX);
    scene.binningY = number(m_settings.binningY);
    scene.reverseX = m_settings.reverseX != 0;
    scene.reverseY = m_settings.reverseY != 0;
    scene.seed = number(m_settings.seed);
    scene.pictures = m_settings.pictures;
    plan.format = FindPixelFormat(m_model.technology, m_settings.pixelFormat);
    plan.imageSize = plan.format->ImageSize(scene.region.width, scene.region.height);
    if (!(m_toneMade == m_settings.tone)) {
        m_toneMade = m_settings.tone;
        m_tone = MakeToneCurve(m_toneMade);
    }
    plan.tone = m_tone;
    const bool native = m_model.nativePixelCodes && plan.format->cxpCode != 0;
    plan.formatCode = native ? plan.format->cxpCode : plan.format->code;
    plan.formatNamespace =
        native ? GenTL::PIXELFORMAT_NAMESPACE_UNKNOWN : GenTL::PIXELFORMAT_NAMESPACE_PFNC_32BIT;
    PlanParts(plan);
}

void Camera::PlanParts(FramePlan& plan) const {
    plan.parts = PartList();
    if ((m_settings.components & MaskOf(Component::Confidence)) == 0)
        return;
    const size_t pixels = size_t{plan.scene.region.width} * plan.scene.region.height;
    plan.parts.count = componentCount;
    plan.parts.parts = {Part{Component::Intensity, 0, plan.imageSize, plan.formatCode},
                        Part{Component::Confidence, plan.imageSize, pixels, confidence8}};
    plan.imageSize += pixels;
}

void Camera::StartAcquisition() {
    {
        std::lock_guard<std::mutex> guard(m_lock);
        if (m_acquiring)
            return;
        ++m_run;
        ++m_revision; // a host that has a plan begins anew as well
        m_nextFrameId = 0;
        m_triggers = 0;
        m_startTriggered = false;
        m_armed = TriggerOf(m_settings, TriggerKind::AcquisitionStart).mode != 0;
        const auto mode = static_cast<AcquisitionMode>(m_settings.acquisitionMode);
        m_framesLeft = 0;
        if (mode == AcquisitionMode::SingleFrame)
            m_framesLeft = 1;
        else if (mode == AcquisitionMode::MultiFrame)
            m_framesLeft = static_cast<uint64_t>(m_settings.acquisitionFrameCount);
        m_acquiring = true;
    }
    FollowTemperature();
    NotifyChanged();
}

void Camera::StopAcquisition() {
    bool stopped = false;
    {
        std::lock_guard<std::mutex> guard(m_lock);
        stopped = m_acquiring.exchange(false);
    }
    if (stopped)
        FollowTemperature();
    NotifyChanged();
}

void Camera::Send(const CameraEvent& event) {
    {
        std::lock_guard<std::mutex> guard(m_lock);
        const EventMask bit = MaskOf(event.kind);
        if ((m_settings.eventMask & bit) == 0)
            return;
        if ((m_settings.eventsOnce & bit) != 0) {
            m_settings.eventMask &= ~bit;
            m_settings.eventsOnce &= ~bit;
            ++m_revision;
        }
    }
    Tell([&](CameraListener& listener) { listener.OnCameraEvent(event); });
}

double Camera::Temperature() const {
    std::lock_guard<std::mutex> guard(m_lock);
    return m_temperature.Value();
}

void Camera::FollowTemperature() {
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_temperature.SetTarget(m_acquiring ? busyTemperature : idleTemperature);
    }
    m_agenda.After(temperaturePeriod, Agenda::Job::Temperature, [this] { CheckTemperature(); });
}

void Camera::CheckTemperature() {
    bool moved = false;
    bool settled = false;
    {
        std::lock_guard<std::mutex> guard(m_lock);
        // An acquisition of some frames ends without a command.
        m_temperature.SetTarget(m_acquiring ? busyTemperature : idleTemperature);
        const double temperature = m_temperature.Value();
        moved = temperature != m_temperatureTold;
        m_temperatureTold = temperature;
        settled = m_temperature.Settled() && !m_acquiring;
    }
    if (moved)
        Tell([](CameraListener& listener) { listener.OnFeatureInvalidated("DeviceTemperature"); });
    if (!settled)
        m_agenda.After(temperaturePeriod, Agenda::Job::Temperature, [this] { CheckTemperature(); });
}

void Camera::Lose() {
    std::chrono::milliseconds absence{0};
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_acquiring = false;
        m_lost = true;
        absence = std::chrono::milliseconds(m_settings.returnTimeMs);
        if (absence.count() != 0)
            m_absence.Begin(absence);
    }
    Tell([](CameraListener& listener) { listener.OnCameraLost(); });
    if (absence.count() != 0)
        m_bus->OnCameraAway(absence);
}

std::chrono::milliseconds Camera::LossDelay() const {
    return std::chrono::milliseconds(Settings().lossDelayMs);
}

void Camera::LoseLater() {
    const std::chrono::milliseconds delay = LossDelay();
    if (delay.count() == 0)
        Lose();
    else
        m_agenda.After(delay, Agenda::Job::LoseDevice, [this] { Lose(); });
}

void Camera::LoseInterfaceLater() {
    const auto lose = [this] { m_bus->Lose(std::chrono::milliseconds(Settings().returnTimeMs)); };
    const std::chrono::milliseconds delay = LossDelay();
    if (delay.count() == 0)
        lose();
    else
        m_agenda.After(delay, Agenda::Job::LoseInterface, lose);
}

void Camera::PassPort(uint64_t address, size_t size, Access access,
                      std::chrono::microseconds patience) const {
    const bool simulation = address >= firstFaultlessAddress && address < endOfFaultlessAddresses;
    if (!m_portFaults || simulation)
        return;
    const PortFaults faults = Settings().portFaults;
    const std::chrono::microseconds delay = std::chrono::milliseconds(faults.delayMs);
    std::this_thread::sleep_for(std::min(delay, patience));
    if (delay > patience)
        throw Failure(GenTL::GC_ERR_IO, "the camera has not answered in time");
    const int64_t broken = access == Access::Write ? faults.writeErrorAddress : faults.readErrorAddress;
    if (broken >= 0 && static_cast<uint64_t>(broken) - address < size)
        throw Failure(static_cast<GenTL::GC_ERROR>(faults.errorCode),
                      "a failure of the port that is simulated");
}

void Camera::RequireUnlocked() const {
    if (m_settings.tlParamsLocked != 0)
        throw Failure(GenTL::GC_ERR_ACCESS_DENIED, "locked while TLParamsLocked is 1");
}

void Camera::NotifyChanged() {
    Tell([](CameraListener& listener) { listener.OnCameraChanged(); });
}

} // namespace zqgentl
