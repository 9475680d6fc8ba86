#pragma once

#include "tools/zq/Commands.h"

#include <chrono>
#include <cstdint>

namespace ZqTool {

/// A bar on the terminal's last line, redrawn at most ten times a second; nothing when it is no terminal.
class Progress {
public:
    Progress(const Console& console, uint64_t total) : m_console(console), m_total(total) {}
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    /// Clears the line.
    ~Progress();

    void Show(uint64_t done, double framesPerSecond);

private:
    const Console& m_console;
    uint64_t m_total;
    bool m_drawn = false;
    std::chrono::steady_clock::time_point m_last;
};

} // namespace ZqTool
