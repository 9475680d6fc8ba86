// Every call of the producer fails once, in every way through the library.
#include <gtest/gtest.h>

#include <array>

#include "tests/faults/Runs.h"

namespace ZqTest {

using namespace GenTL;

namespace {

constexpr std::array<Fault, 5> failures = {{
    {"ERROR", GC_ERR_ERROR, 0, false, 0, false},
    {"ACCESS_DENIED", GC_ERR_ACCESS_DENIED, 0, false, 0, false},
    {"TIMEOUT", GC_ERR_TIMEOUT, 0, false, 0, false},
    {"NOT_IMPLEMENTED", GC_ERR_NOT_IMPLEMENTED, 0, false, 0, false},
    {"an unknown code", -12345, 0, false, 0, false},
}};

// All codes in the first way; in the others they take turns.
size_t CodesPerCall(const Way& way) {
    return Amount<size_t>(failures.size(), way.name == ways.front().name ? failures.size() : 3, 1);
}

class FailingCall : public testing::TestWithParam<Way> {
protected:
    FailingCall() : m_Runs(GetParam()), m_Recorded(m_Runs.Record()) {}

    /// Each fault on that call, then a run without any.
    void FailOnce(const Target& target, const std::string& expectedLine, const std::string& step) {
        for (size_t i = 0; i < CodesPerCall(GetParam()); ++i)
            FailOnce(target, expectedLine, step, failures[(target.number + i) % failures.size()]);
        m_Runs.RunHealthy("call " + std::to_string(target.number) + " of " + target.function + ", " +
                          expectedLine);
    }

    Runs m_Runs;
    Runs::Recorded m_Recorded;

private:
    void FailOnce(const Target& target, const std::string& expectedLine, const std::string& step,
                  const Fault& fault) {
        const std::string what = "call " + std::to_string(target.number) + ", " + expectedLine + ", " +
                                 fault.name + (step.empty() ? "" : ", in step '" + step + "'");
        const std::string function = FunctionOf(expectedLine);
        std::unique_ptr<PlacedFault> placed;
        std::string line;
        m_Runs.CountFault();
        const Outcome outcome = m_Runs.Run(
            what,
            [&] {
                placed = std::make_unique<PlacedFault>(m_Runs.Producer(), target, fault,
                                                       MustRunAllTheSame(function, fault));
            },
            [&] {
                line = placed->Answered();
                return LeftOpenBy(FunctionOf(line));
            });
        ASSERT_NE(line, "") << GetParam().name << ", " << what << ": the call was not made";
        // The same call as in the first run: what went before has left the process as it was.
        if (target.onOpener) {
            ASSERT_EQ(line, expectedLine) << GetParam().name << ", " << what;
        }
        const FailedCall call{line, step, target.onOpener, target.number == 1};
        EXPECT_EQ(Judge(GetParam(), call, fault, outcome), "") << GetParam().name << ", " << what;
    }

    /// A library left open would refuse the next run. A thread that is not woken sleeps half a second, which
    /// one code in one way is enough for.
    bool MustRunAllTheSame(const std::string& function, const Fault& fault) const {
        return function == "GCCloseLib" ||
               (function == "EventKill" && !(fault.result == GC_ERR_ERROR && !GetParam().restart));
    }
};

std::string NameOf(const testing::TestParamInfo<Way>& info) {
    return info.param.name;
}

} // namespace

TEST_P(FailingCall, OfTheApplicationIsReportedOrSwallowedAsStated) {
    for (size_t n = 0; n < m_Recorded.calls.size(); ++n)
        FailOnce({true, "", "", n + 1}, m_Recorded.calls[n], m_Recorded.stepOfCall[n]);
}

TEST_P(FailingCall, OfAnEventThreadCostsItsEventAtMost) {
    const std::vector<Target> targets = TargetsOfThreads(m_Recorded.threadCalls);
    for (size_t n = 0; n < targets.size(); ++n)
        FailOnce(targets[n], WithoutResult(m_Recorded.threadCalls[n]), "");
}

INSTANTIATE_TEST_SUITE_P(Ways, FailingCall, testing::ValuesIn(ways), NameOf);

} // namespace ZqTest
