#include "producer/sim/Camera.h"

#include "producer/sim/Failure.h"

#include <algorithm>

namespace zqgentl {

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

Camera::Camera(const CameraModel& model) : m_model(model), m_registers(model.byteOrder) {
    BindCameraRegisters(*this, m_registers);
}

void Camera::PowerOn(CameraListener& listener) {
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_settings = CameraSettings();
        ++m_revision;
        m_acquiring = false;
        m_lost = false;
    }
    std::lock_guard<std::mutex> guard(m_listenerLock);
    m_listener = &listener;
}

void Camera::PowerOff() {
    {
        std::lock_guard<std::mutex> guard(m_listenerLock);
        m_listener = nullptr;
    }
    std::lock_guard<std::mutex> guard(m_lock);
    m_acquiring = false;
    m_lost = false;
}

CameraSettings Camera::Settings() const {
    std::lock_guard<std::mutex> guard(m_lock);
    return m_settings;
}

int64_t Camera::PayloadSize() const {
    const CameraSettings settings = Settings();
    return settings.width * settings.height;
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
    std::lock_guard<std::mutex> guard(m_lock);
    if (!m_acquiring)
        return false;
    TakePlan(ticket);
    ticket.frameId = m_nextFrameId++;
    if (m_framesLeft != 0 && --m_framesLeft == 0)
        m_acquiring = false;
    return true;
}

void Camera::TakePlan(FrameTicket& ticket) const {
    ticket.run = m_run;
    if (ticket.revision == m_revision)
        return;
    ticket.revision = m_revision;
    ticket.plan.region = {static_cast<uint32_t>(m_settings.offsetX),
                          static_cast<uint32_t>(m_settings.offsetY), static_cast<uint32_t>(m_settings.width),
                          static_cast<uint32_t>(m_settings.height)};
    ticket.plan.pixelFormat = static_cast<uint64_t>(m_settings.pixelFormat);
    ticket.plan.pattern = static_cast<TestPattern>(m_settings.testPattern);
    ticket.plan.paced = m_settings.frameRateEnable != 0;
    ticket.plan.exposure = std::chrono::nanoseconds(static_cast<int64_t>(m_settings.exposureTimeUs * 1e3));
    ticket.plan.period = std::chrono::nanoseconds(0);
    if (ticket.plan.paced)
        ticket.plan.period =
            std::chrono::nanoseconds(static_cast<int64_t>(1e9 / ResultingFrameRate(m_settings)));
}

void Camera::StartAcquisition() {
    {
        std::lock_guard<std::mutex> guard(m_lock);
        if (m_acquiring)
            return;
        ++m_run;
        m_nextFrameId = 0;
        const auto mode = static_cast<AcquisitionMode>(m_settings.acquisitionMode);
        m_framesLeft = 0;
        if (mode == AcquisitionMode::SingleFrame)
            m_framesLeft = 1;
        else if (mode == AcquisitionMode::MultiFrame)
            m_framesLeft = static_cast<uint64_t>(m_settings.acquisitionFrameCount);
        m_acquiring = true;
    }
    NotifyChanged();
}

void Camera::StopAcquisition() {
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_acquiring = false;
    }
    NotifyChanged();
}

void Camera::Lose() {
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_acquiring = false;
        m_lost = true;
    }
    std::lock_guard<std::mutex> guard(m_listenerLock);
    if (m_listener != nullptr)
        m_listener->OnCameraLost();
}

void Camera::RequireUnlocked() const {
    if (m_settings.tlParamsLocked != 0)
        throw Failure(GenTL::GC_ERR_ACCESS_DENIED, "locked while TLParamsLocked is 1");
}

void Camera::NotifyChanged() {
    std::lock_guard<std::mutex> guard(m_listenerLock);
    if (m_listener != nullptr)
        m_listener->OnCameraChanged();
}

} // namespace zqgentl
