#pragma once

#include <atomic>
#include <cstddef>

namespace zqgentl {

/// The list of interfaces or devices as a consumer sees it: it changes only in an update. What the simulation
/// offers never changes, so the first update after opening shows all of it and every later one nothing new.
class ListState {
public:
    explicit ListState(size_t available) : m_available(available) {}

    /// True when the list is another one than before.
    bool Update() noexcept { return m_listed.exchange(m_available) != m_available; }
    [[nodiscard]] size_t Count() const noexcept { return m_listed; }

private:
    const size_t m_available;
    std::atomic<size_t> m_listed{0};
};

} // namespace zqgentl
