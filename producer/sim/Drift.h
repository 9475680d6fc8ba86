#pragma once

#include <chrono>
#include <cmath>

namespace zqgentl {

/// A quantity that creeps towards a target, fast at first, and is shown in steps of a tenth.
class Drift {
public:
    using Clock = std::chrono::steady_clock;

    Drift() = default;
    Drift(double value, std::chrono::seconds timeConstant)
        : m_start(value), m_target(value), m_timeConstant(timeConstant) {}

    void SetTarget(double target) {
        if (target == m_target)
            return;
        m_start = Exact();
        m_since = Clock::now();
        m_target = target;
    }
    [[nodiscard]] double Value() const { return std::round(Exact() * 10) / 10; }
    [[nodiscard]] bool Settled() const { return std::abs(Exact() - m_target) < 0.05; }

private:
    [[nodiscard]] double Exact() const {
        const std::chrono::duration<double> passed = Clock::now() - m_since;
        return m_target + (m_start - m_target) * std::exp(-passed.count() / m_timeConstant.count());
    }

    double m_start = 0;
    double m_target = 0;
    Clock::time_point m_since = Clock::now();
    std::chrono::duration<double> m_timeConstant{1};
};

} // namespace zqgentl
