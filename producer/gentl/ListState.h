#pragma once

#include <cstddef>
#include <mutex>
#include <optional>
#include <vector>

namespace zqgentl {

/// The list of interfaces or devices as a consumer sees it: it changes only in an update. An entry is the
/// number that its place in the simulated hardware has. Any thread may call any member.
class ListState {
public:
    /// True when the list is another one than before; so is the first one after opening.
    bool Update(std::vector<size_t> present) {
        std::lock_guard<std::mutex> guard(m_lock);
        const bool changed = m_listed != present;
        m_listed = std::move(present);
        return changed;
    }
    [[nodiscard]] size_t Count() const {
        std::lock_guard<std::mutex> guard(m_lock);
        return m_listed.has_value() ? m_listed->size() : 0;
    }
    /// The entry at an index of the list, or nothing beyond it.
    [[nodiscard]] std::optional<size_t> At(size_t index) const {
        std::lock_guard<std::mutex> guard(m_lock);
        if (!m_listed.has_value() || index >= m_listed->size())
            return std::nullopt;
        return (*m_listed)[index];
    }

private:
    mutable std::mutex m_lock;
    std::optional<std::vector<size_t>> m_listed;
};

} // namespace zqgentl
