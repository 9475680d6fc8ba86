#pragma once

#include <atomic>
#include <iosfwd>

namespace ZqTool {

/// Where a command writes: results to out, errors and progress to err. A progress bar is drawn only on a
/// terminal.
struct Console {
    std::ostream& out;
    std::ostream& err;
    bool terminal;
};

/// What the tool ends with.
enum ExitCode { Done = 0, Failed = 1, Usage = 2, NothingFound = 3, TimedOut = 5 };

/// Set by signal handlers; a grab then stops cleanly.
extern std::atomic<bool> interrupted;

/// Runs one command line and returns the exit code. Throws nothing.
int RunCommand(int argc, const char* const* argv, const Console& console);

} // namespace ZqTool
