#pragma once

#include <string>

#include "tests/faults/Fault.h"
#include "tests/faults/Scenario.h"

namespace ZqTest {

/// A failed call as a test knows it.
struct FailedCall {
    std::string line; ///< as in the producer's log
    std::string step; ///< empty on threads of the library
    bool onOpener;
    bool isFirst;          ///< the first of its kind on threads of the library
    bool explained = true; ///< the producer has a text for it
};

/// What an application must see of a failed call: empty when `outcome` is that, else what is wrong with it.
std::string Judge(const Way& way, const FailedCall& call, const Fault& fault, const Outcome& outcome);

/// Empty when the failure is the report of that call.
std::string JudgeReport(const FailedCall& call, const Fault& fault, const Failure& failure);

/// For messages of tests.
std::string Show(const Failure& failure);

/// What an application must see when nothing has gone wrong.
std::string JudgeHealthy(const Way& way, const Outcome& outcome);

} // namespace ZqTest
