#pragma once

#include "gentl/GenTL.h"

#include <initializer_list>
#include <string>
#include <vector>

namespace contract {

/// The name of a result code, or its number.
std::string NameOf(GenTL::GC_ERROR code);

/// What was checked and how it came out. Every check is one point.
class Report {
public:
    explicit Report(bool verbose) : m_verbose(verbose) {}

    /// The state that the checks after this are made in.
    void Enter(const std::string& state) { m_state = state; }

    /// Checks a result code; true when it is one of those expected.
    bool Result(const std::string& function, GenTL::GC_ERROR got,
                std::initializer_list<GenTL::GC_ERROR> expected);
    bool Success(const std::string& function, GenTL::GC_ERROR got) {
        return Result(function, got, {GenTL::GC_ERR_SUCCESS});
    }
    /// Checks anything else.
    bool Holds(const std::string& function, bool holds, const std::string& expected,
               const std::string& got = "not so");
    template <class T>
    bool Equal(const std::string& function, const T& got, const T& expected) {
        return Holds(function, got == expected, std::to_string(expected), std::to_string(got));
    }
    bool Equal(const std::string& function, const std::string& got, const std::string& expected) {
        return Holds(function, got == expected, "'" + expected + "'", "'" + got + "'");
    }
    /// What can't be checked on this producer; no point.
    void Skip(const std::string& what);

    /// Prints the score; true when every check passed.
    bool Finish() const;

private:
    bool m_verbose;
    std::string m_state;
    size_t m_passed = 0;
    size_t m_failed = 0;
    size_t m_skipped = 0;
};

} // namespace contract
