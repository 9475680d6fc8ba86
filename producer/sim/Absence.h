#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

namespace zqgentl {

/// Whether something that was taken away is still away. Any thread may call any member.
class Absence {
public:
    /// Away for a time, or, with a time of 0, until it is released.
    void Begin(std::chrono::milliseconds time) noexcept {
        m_until = time.count() == 0 ? INT64_MAX : Now() + std::chrono::nanoseconds(time).count();
    }
    /// Ends an absence that has no time of its own; false when there is none.
    bool Release() noexcept {
        int64_t endless = INT64_MAX;
        return m_until.compare_exchange_strong(endless, 0);
    }
    [[nodiscard]] bool Away() const noexcept { return m_until != 0 && Now() < m_until; }

private:
    static int64_t Now() {
        const auto sinceBoot = std::chrono::steady_clock::now().time_since_epoch();
        return std::chrono::duration_cast<std::chrono::nanoseconds>(sinceBoot).count();
    }

    std::atomic<int64_t> m_until{0};
};

} // namespace zqgentl
