#pragma once

#include <cstdint>
#include <random>

namespace ZqSoak {

/// What happens next; the same for the same seed.
class Chance {
public:
    explicit Chance(uint64_t seed) : m_Engine(seed) {}

    /// From `first` to `last`, both included.
    int64_t Between(int64_t first, int64_t last) {
        const auto span = static_cast<uint64_t>(last - first) + 1;
        return first + static_cast<int64_t>(m_Engine() % span);
    }
    bool OneIn(int64_t n) { return Between(1, n) == 1; }

private:
    std::mt19937_64 m_Engine;
};

} // namespace ZqSoak
