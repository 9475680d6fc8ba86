#include "tools/zq/Tally.h"

#include <iomanip>
#include <ostream>

namespace ZqTool {

void Tally::Count(bool complete, size_t bytes, std::optional<uint64_t> frameId, Clock::time_point now) {
    if (m_frames++ == 0)
        m_first = now;
    else
        m_bytesAfterFirst += bytes;
    m_last = now;
    m_complete += complete ? 1 : 0;
    m_idsKnown = m_idsKnown && frameId.has_value();
    // An id that is not above the last one has wrapped as its transport does.
    if (m_lastId && frameId && *frameId > *m_lastId)
        m_lost += *frameId - *m_lastId - 1;
    m_lastId = frameId;
}

double Tally::Seconds() const {
    return std::chrono::duration<double>(m_last - m_first).count();
}

double Tally::FramesPerSecond() const {
    return Seconds() > 0 ? static_cast<double>(m_frames - 1) / Seconds() : 0;
}

void Tally::Print(const std::string& device, std::ostream& out) const {
    const double megabytes = Seconds() > 0 ? static_cast<double>(m_bytesAfterFirst) / 1e6 / Seconds() : 0;
    out << device << ": " << m_frames << " frames, " << m_complete << " complete, " << m_frames - m_complete
        << " incomplete, " << (m_idsKnown ? std::to_string(m_lost) : "?") << " lost, " << std::fixed
        << std::setprecision(1) << FramesPerSecond() << " fps, " << megabytes << " MB/s\n";
}

} // namespace ZqTool
