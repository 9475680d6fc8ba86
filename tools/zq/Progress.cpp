#include "tools/zq/Progress.h"

#include <iomanip>
#include <ostream>
#include <string>

namespace ZqTool {

namespace {

constexpr uint64_t barWidth = 40;
constexpr auto interval = std::chrono::milliseconds(100);
constexpr const char* clearLine = "\r\033[K";

} // namespace

Progress::~Progress() {
    if (m_drawn)
        m_console.err << clearLine << std::flush;
}

void Progress::Show(uint64_t done, double framesPerSecond) {
    const auto now = std::chrono::steady_clock::now();
    if (!m_console.terminal || (m_drawn && done < m_total && now - m_last < interval))
        return;
    m_drawn = true;
    m_last = now;
    const auto filled = static_cast<size_t>(static_cast<double>(barWidth) * static_cast<double>(done) /
                                            static_cast<double>(m_total));
    m_console.err << clearLine << "[" << std::string(filled, '#') << std::string(barWidth - filled, '.')
                  << "] " << done << "/" << m_total << "  " << std::fixed << std::setprecision(1)
                  << framesPerSecond << " fps" << std::flush;
}

} // namespace ZqTool
