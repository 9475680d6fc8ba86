#pragma once

#include <chrono>
#include <cstdint>

namespace zqgentl {

/// What goes wrong with frames on purpose. Each number n hits every n-th frame of an acquisition, the first
/// time the one with frame id n - 1; 0 never.
struct FrameFaults {
    int64_t dropEvery = 0;
    int64_t incompleteEvery = 0;
    int64_t lateEvery = 0;
    int64_t lateTimeMs = 100;
    int64_t largerEvery = 0;
    int64_t badChunksEvery = 0;
    int64_t errorEvery = 0;
    int64_t errorCode = 1;

    /// Never reaches the host, nor any buffer.
    [[nodiscard]] bool Drops(uint64_t frameId) const noexcept { return Hits(dropEvery, frameId); }
    /// Ends in the middle.
    [[nodiscard]] bool Interrupts(uint64_t frameId) const noexcept { return Hits(incompleteEvery, frameId); }
    [[nodiscard]] std::chrono::milliseconds Delay(uint64_t frameId) const noexcept {
        return std::chrono::milliseconds(Hits(lateEvery, frameId) ? lateTimeMs : 0);
    }
    /// Is larger than any buffer.
    [[nodiscard]] bool Outgrows(uint64_t frameId) const noexcept { return Hits(largerEvery, frameId); }
    [[nodiscard]] bool BreaksChunks(uint64_t frameId) const noexcept { return Hits(badChunksEvery, frameId); }
    [[nodiscard]] bool SendsError(uint64_t frameId) const noexcept { return Hits(errorEvery, frameId); }

private:
    static bool Hits(int64_t every, uint64_t frameId) noexcept {
        return every != 0 && (frameId + 1) % static_cast<uint64_t>(every) == 0;
    }
};

/// What goes wrong with accesses to the registers on purpose.
struct PortFaults {
    static constexpr int64_t noAddress = -1;

    int64_t readErrorAddress = noAddress;
    int64_t writeErrorAddress = noAddress;
    int64_t errorCode = -1010;
    int64_t delayMs = 0;

    [[nodiscard]] bool Any() const noexcept {
        return readErrorAddress != noAddress || writeErrorAddress != noAddress || delayMs != 0;
    }
};

/// The registers of the simulation are never hit, so that a fault can be ended.
constexpr uint64_t firstFaultlessAddress = 0x700;
constexpr uint64_t endOfFaultlessAddresses = 0x800;

} // namespace zqgentl
