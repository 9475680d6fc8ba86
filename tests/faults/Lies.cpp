#include "tests/faults/Lies.h"

#include <algorithm>
#include <set>

namespace ZqTest {

bool IsTextQuery(const std::vector<std::string>& calls, size_t n) {
    const std::string line = WithoutResult(calls[n]);
    const std::string sizeQuery = line.substr(0, line.rfind(' ') + 1) + "null)";
    // Calls of other threads may stand between the two.
    const auto before = std::find_if(calls.rend() - static_cast<std::ptrdiff_t>(n), calls.rend(),
                                     [&](const auto& call) { return FunctionOf(call) == FunctionOf(line); });
    return before != calls.rend() && *before == sizeQuery;
}

std::string JudgeKind(const Failure& failure) {
    static const std::set<std::string> kinds = {
        "ZqGenTLErrorException", "BadAllocException", "OutOfRangeException",   "InvalidArgumentException",
        "RuntimeException",      "AccessException",   "LogicalErrorException", "GenericException"};
    return failure.kind.empty() || kinds.count(failure.kind) != 0 ? std::string() : Show(failure);
}

std::string JudgeLie(const Runs::Recorded& recorded, const FailedCall& call, const Outcome& outcome) {
    if (outcome.failure.kind.empty())
        return {};
    if (const std::string wrong = JudgeKind(outcome.failure); !wrong.empty())
        return wrong;
    const auto stepIndex = [&](const std::string& step) {
        return std::find(recorded.steps.begin(), recorded.steps.end(), step) - recorded.steps.begin();
    };
    if (stepIndex(outcome.step) < stepIndex(call.step) || outcome.step.rfind("release", 0) == 0)
        return "left step '" + outcome.step + "': " + Show(outcome.failure);
    return {};
}

} // namespace ZqTest
