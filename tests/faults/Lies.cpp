#include "tests/faults/Lies.h"

#include <algorithm>
#include <set>

namespace ZqTest {

namespace {

bool Is(const std::string& call, const char* function, const char* arguments) {
    return FunctionOf(call) == function && call.find(arguments) != std::string::npos;
}

bool DeliversBuffer(const std::string& call) {
    return Is(call, "EventGetData", "/1, ") && call == WithoutResult(call);
}

} // namespace

bool CanBeTold(const std::vector<std::string>& calls, size_t n, const Fault& lie) {
    const bool announces = n > 0 && Is(calls[n - 1], "DSAllocAndAnnounceBuffer", "");
    const bool isAddress =
        DeliversBuffer(calls[n]) || (announces && Is(calls[n], "DSGetBufferInfo", ", 0, 8)"));
    return lie.unterminated ? IsTextQuery(calls, n) : !(lie.garbled && isAddress);
}

const char* MessageOfDeath(const std::string& call, const Fault& lie) {
    if (DeliversBuffer(call) && lie.hasSize && lie.size < sizeof(GenTL::EVENT_NEW_BUFFER_DATA))
        return "sizeof\\(EVENT_NEW_BUFFER_DATA\\) <= iSize";
    if (Is(call, "DSGetBufferInfo", ", 21, 8)") && lie.garbled)
        return "nPixelFormatNamespace <= UINT32_MAX";
    return nullptr;
}

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
