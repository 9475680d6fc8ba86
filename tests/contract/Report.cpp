#include "Report.h"

#include <algorithm>
#include <cstdio>

namespace contract {

namespace {

struct CodeName {
    GenTL::GC_ERROR code;
    const char* name;
};

constexpr CodeName names[] = {
    {0, "SUCCESS"},
    {-1001, "ERROR"},
    {-1002, "NOT_INITIALIZED"},
    {-1003, "NOT_IMPLEMENTED"},
    {-1004, "RESOURCE_IN_USE"},
    {-1005, "ACCESS_DENIED"},
    {-1006, "INVALID_HANDLE"},
    {-1007, "INVALID_ID"},
    {-1008, "NO_DATA"},
    {-1009, "INVALID_PARAMETER"},
    {-1010, "IO"},
    {-1011, "TIMEOUT"},
    {-1012, "ABORT"},
    {-1013, "INVALID_BUFFER"},
    {-1014, "NOT_AVAILABLE"},
    {-1015, "INVALID_ADDRESS"},
    {-1016, "BUFFER_TOO_SMALL"},
    {-1017, "INVALID_INDEX"},
    {-1018, "PARSING_CHUNK_DATA"},
    {-1019, "INVALID_VALUE"},
    {-1020, "RESOURCE_EXHAUSTED"},
    {-1021, "OUT_OF_MEMORY"},
    {-1022, "BUSY"},
};

} // namespace

std::string NameOf(GenTL::GC_ERROR code) {
    for (const CodeName& row : names) {
        if (row.code == code)
            return row.name;
    }
    return std::to_string(code);
}

bool Report::Result(const std::string& function, GenTL::GC_ERROR got,
                    std::initializer_list<GenTL::GC_ERROR> expected) {
    std::string text;
    for (const GenTL::GC_ERROR code : expected)
        text += (text.empty() ? "" : " or ") + NameOf(code);
    const bool holds = std::find(expected.begin(), expected.end(), got) != expected.end();
    return Holds(function, holds, text, NameOf(got));
}

bool Report::Holds(const std::string& function, bool holds, const std::string& expected,
                   const std::string& got) {
    ++(holds ? m_passed : m_failed);
    if (!holds || m_verbose)
        std::printf("%s | %s | %s | expected %s | got %s\n", holds ? "ok  " : "FAIL", function.c_str(),
                    m_state.c_str(), expected.c_str(), holds && got == "not so" ? "it" : got.c_str());
    return holds;
}

void Report::Skip(const std::string& what) {
    ++m_skipped;
    std::printf("skip | %s | %s\n", what.c_str(), m_state.c_str());
}

bool Report::Finish() const {
    const size_t total = m_passed + m_failed;
    std::printf("%zu of %zu checks passed (%.2f %%), %zu skipped\n", m_passed, total,
                total == 0 ? 0.0 : 100.0 * static_cast<double>(m_passed) / static_cast<double>(total),
                m_skipped);
    return total > 0 && m_failed == 0;
}

} // namespace contract
