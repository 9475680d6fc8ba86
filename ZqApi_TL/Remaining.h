#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>

#include <ZqApi/Wait.h>

namespace ZqApi {

/// What is left of a time-out that began with the object. Waits are on the real-time clock; this one says
/// whether a wait that ended early has really elapsed.
class Remaining {
public:
    explicit Remaining(uint32_t timeoutMs) : m_TimeoutMs(timeoutMs) {
        if (timeoutMs != 0 && timeoutMs != INFINITE)
            m_Deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    }

    uint32_t Milliseconds() const {
        if (m_TimeoutMs == 0 || m_TimeoutMs == INFINITE)
            return m_TimeoutMs;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_Deadline - Clock::now()).count();
        return static_cast<uint32_t>(std::max<int64_t>(0, left));
    }

private:
    using Clock = std::chrono::steady_clock;

    uint32_t m_TimeoutMs;
    Clock::time_point m_Deadline;
};

} // namespace ZqApi
