#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include <GenApi/Synch.h>

namespace ZqApi {

/// The ring of the last deliveries that both meters measure over. Any thread; recording allocates nothing.
class CRateMeter {
public:
    /// Nanoseconds of a clock that never goes back.
    using Clock = int64_t (*)();

    /// Forgets all deliveries.
    void Reset();
    /// The clock in milliseconds.
    double GetCurrentMSec() const;

    CRateMeter(const CRateMeter&) = delete;
    CRateMeter& operator=(const CRateMeter&) = delete;

protected:
    static constexpr size_t N = 500;

    explicit CRateMeter(Clock clock);
    ~CRateMeter() = default;

    static int64_t SteadyNanoseconds();

    /// What the ring holds. The calls below need the lock.
    struct Span {
        size_t samples;
        size_t oldest;
        double elapsedMs;
    };
    /// Makes room for a delivery now and returns its slot.
    size_t Record();
    /// `samples` is below 2 when there is no interval to measure.
    Span Measure() const;
    static size_t Next(size_t slot) { return slot + 1 < N ? slot + 1 : 0; }

    mutable GenApi::CLock m_Lock;

private:
    const Clock m_Clock;
    uint64_t m_Index = 0;
    uint64_t m_Count = 0;
    std::array<int64_t, N> m_Timestamps{};
};

} // namespace ZqApi
