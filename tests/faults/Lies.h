#pragma once

#include <array>
#include <string>
#include <vector>

#include "tests/faults/Runs.h"

namespace ZqTest {

/// What a producer may say of an answer that succeeds.
constexpr std::array<Fault, 10> lies = {{
    // name, result, size, hasSize, unwritten, unterminated
    {"success with nothing written", 0, 0, false, ZQSP_NO_DATA, false},
    {"success without a size", 0, 0, false, ZQSP_NO_SIZE, false},
    {"success without a type", 0, 0, false, ZQSP_NO_TYPE, false},
    {"a size of 0", 0, 0, true, 0, false},
    {"a size of 1", 0, 1, true, 0, false},
    {"a size of 2^40", 0, size_t{1} << 40, true, 0, false},
    {"the largest size", 0, SIZE_MAX, true, 0, false},
    {"no terminator", 0, 0, false, 0, true},
    {"every bit set", 0, 0, false, 0, false, true},
    {"an unknown type", 0, 0, false, 0, false, false, 4711},
}};

/// Whether call n is the second of a text query: the first asks for the size.
bool IsTextQuery(const std::vector<std::string>& calls, size_t n);

/// Whether a lie can be told about call n: the address of a buffer is believed when it is announced, and that
/// of the library's own object when it is delivered.
bool CanBeTold(const std::vector<std::string>& calls, size_t n, const Fault& lie);

/// The message, as a regular expression, with which the lie about this call ends the process; else null.
/// docs/testing.md has the list.
const char* MessageOfDeath(const std::string& call, const Fault& lie);

/// What can come of a lie that was believed: a report of the library or of the node maps, about the call
/// itself or about what is later done with its answer, at no time before it was told.
std::string JudgeLie(const Runs::Recorded& recorded, const FailedCall& call, const Outcome& outcome);

/// Empty when nothing was thrown or the report is one of the library or of the node maps.
std::string JudgeKind(const Failure& failure);

} // namespace ZqTest
