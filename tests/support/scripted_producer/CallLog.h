#pragma once

#include "tests/support/scripted_producer/Call.h"

#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace Scripted {

/// All calls in the order in which they came in, and how many of them opened and closed what.
class CallLog {
public:
    /// Returns the number that Finish takes.
    uint64_t Add(const Call& call, const std::vector<std::string>& handleSymbols, bool onOpener);
    void Finish(uint64_t number, const Call& call, GenTL::GC_ERROR result);

    /// The lines of one function, or of all when it is empty.
    [[nodiscard]] std::string Text(const std::string& function) const;
    /// The lines of those threads (ZQSP_ANY_THREAD and the others).
    [[nodiscard]] std::string TextOfThreads(int threads) const;
    /// The line of that number, empty when it was not kept.
    [[nodiscard]] std::string LineText(uint64_t number) const;
    void Clear() { m_lines.clear(); }
    void Reset();
    void Leave(const std::string& function) { m_left.insert(function); }

    [[nodiscard]] uint64_t Count(const std::string& function) const { return At(m_counts, function); }
    [[nodiscard]] uint64_t Opened(const std::string& kind) const { return At(m_opened, kind); }
    [[nodiscard]] uint64_t Closed(const std::string& kind) const { return At(m_closed, kind); }

private:
    struct Line {
        uint64_t number;
        const char* function;
        bool onOpener;
        std::string text;
    };
    template <class Wanted>
    [[nodiscard]] std::string Lines(Wanted wanted) const;
    using Counts = std::map<std::string, uint64_t>;

    static uint64_t At(const Counts& counts, const std::string& key);

    uint64_t m_lastNumber = 0;
    std::deque<Line> m_lines;
    std::set<std::string> m_left;
    Counts m_counts;
    Counts m_opened;
    Counts m_closed;
};

} // namespace Scripted
