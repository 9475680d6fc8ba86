#pragma once

#include <chrono>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>

namespace ZqTool {

/// Counts what a stream delivered.
class Tally {
public:
    using Clock = std::chrono::steady_clock;

    /// One frame. Gaps in the frame ids are frames that were lost; without ids that is not known.
    void Count(bool complete, size_t bytes, std::optional<uint64_t> frameId,
               Clock::time_point now = Clock::now());

    [[nodiscard]] uint64_t Frames() const { return m_frames; }
    [[nodiscard]] double FramesPerSecond() const;

    /// "CAM1: 10 frames, 10 complete, 0 incomplete, 0 lost, 30.0 fps, 9.2 MB/s"
    void Print(const std::string& device, std::ostream& out) const;

private:
    [[nodiscard]] double Seconds() const;

    uint64_t m_frames = 0;
    uint64_t m_complete = 0;
    uint64_t m_bytesAfterFirst = 0;
    uint64_t m_lost = 0;
    bool m_idsKnown = true;
    std::optional<uint64_t> m_lastId;
    Clock::time_point m_first;
    Clock::time_point m_last;
};

} // namespace ZqTool
