// The sets of settings that a camera keeps until GCCloseLib.

#include "producer/sim/Camera.h"
#include "producer/sim/CameraRegisters.h"

namespace zqgentl {

CameraSettings Camera::StoredSet(int64_t set) const {
    return set == 0 ? CameraSettings() : m_userSets[static_cast<size_t>(set) - 1];
}

void Camera::LoadUserSet() {
    Apply(Lockable::Yes, [&](CameraSettings& settings) {
        if (m_acquiring)
            throw Failure(GenTL::GC_ERR_ACCESS_DENIED, "no user set can be loaded during an acquisition");
        // What the outside world does to the camera is in no set.
        const CameraSettings before = settings;
        settings = StoredSet(before.userSetSelector);
        settings.userSetSelector = before.userSetSelector;
        settings.lines.inputs = before.lines.inputs;
        settings.frameFaults = before.frameFaults;
        settings.portFaults = before.portFaults;
        settings.lossDelayMs = before.lossDelayMs;
        settings.returnTimeMs = before.returnTimeMs;
    });
}

void Camera::SaveUserSet() {
    std::lock_guard<std::mutex> guard(m_lock);
    if (m_settings.userSetSelector == 0)
        throw Failure(GenTL::GC_ERR_ACCESS_DENIED, "the user set Default can't be written");
    CameraSettings& set = m_userSets[static_cast<size_t>(m_settings.userSetSelector) - 1];
    set = m_settings;
    set.tlParamsLocked = 0;
    set.userSetSelector = 0;
    set.lines.inputs = 0;
    set.frameFaults = FrameFaults();
    set.portFaults = PortFaults();
    set.lossDelayMs = 0;
    set.returnTimeMs = 0;
}

int64_t Camera::StartupSet() const {
    std::lock_guard<std::mutex> guard(m_lock);
    return m_startupSet;
}

void Camera::SetStartupSet(int64_t set) {
    CheckRange("UserSetDefault", set, 0, userSetCount - 1);
    std::lock_guard<std::mutex> guard(m_lock);
    m_startupSet = set;
}

} // namespace zqgentl
