// Producers that say one thing and do another.
#include <gtest/gtest.h>

#include "tests/faults/Lies.h"

namespace ZqTest {

using namespace GenTL;

namespace {

/// What an opening function opens, whose handle a producer may keep to itself.
std::string KindOpenedBy(const std::string& function) {
    static const std::map<std::string, std::string> kinds = {
        {"TLOpen", "TL"},
        {"TLOpenInterface", "IF"},
        {"IFOpenDevice", "DEV"},
        {"DevOpenDataStream", "DS"},
        {"DSAnnounceBuffer", "BUF"},
        {"DSAllocAndAnnounceBuffer", "BUF"},
        {"GCRegisterEvent", "EVENT"},
    };
    const auto found = kinds.find(function);
    return found == kinds.end() ? std::string() : found->second;
}

/// A handle that was not given is reported as an invalid one of the call that should have given it.
std::string JudgeMissingHandle(const Way& way, FailedCall call, const Outcome& outcome) {
    call.explained = false;
    if (way.firstDevice && call.step == "open device")
        return outcome.failure.text == "There is no available device." ? "" : Show(outcome.failure);
    if (outcome.step != call.step)
        return "expected in step '" + call.step + "', but in '" + outcome.step +
               "': " + Show(outcome.failure);
    return JudgeReport(call, {"no handle", GC_ERR_INVALID_HANDLE, 0, false, 0, false}, outcome.failure);
}

class LyingProducer : public testing::TestWithParam<Way> {
protected:
    LyingProducer() : m_Runs(GetParam()), m_Recorded(m_Runs.Record()) {}

    void LieOnce(size_t n, const Fault& lie) {
        const std::string& expectedLine = m_Recorded.calls[n];
        if (!CanBeTold(m_Recorded.calls, n, lie))
            return;
        const std::string what = "call " + std::to_string(n + 1) + ", " + expectedLine + ", " + lie.name +
                                 ", in step '" + m_Recorded.stepOfCall[n] + "'";
        const std::string function = FunctionOf(expectedLine);
        const std::string opened = KindOpenedBy(function);
        const bool withoutHandle = (lie.unwritten & ZQSP_NO_DATA) != 0 && !opened.empty();
        // The thread of an event under another handle is refused at once and never rests.
        const bool neverRests = function == "GCRegisterEvent" && lie.garbled;
        m_Runs.patienceMs = neverRests ? 10 : usualPatienceMs;
        std::unique_ptr<PlacedFault> placed;
        m_Runs.CountFault();
        const auto run = [&] {
            return m_Runs.Run(
                what,
                [&] {
                    placed = std::make_unique<PlacedFault>(m_Runs.Producer(), Target{true, "", "", n + 1},
                                                           lie, true);
                },
                [&] {
                    // What was opened under another handle can't be closed; events are closed by their
                    // source.
                    const bool wrongHandle = lie.garbled && !opened.empty() && opened != "EVENT";
                    return withoutHandle || wrongHandle ? LeftOpen{opened, 1} : LeftOpen();
                });
        };
        if (const char* const message = MessageOfDeath(expectedLine, lie)) {
            EXPECT_DEATH(run(), message) << what;
            return;
        }
        const Outcome outcome = run();
        ASSERT_EQ(placed->Answered(), expectedLine) << GetParam().name << ", " << what;
        const FailedCall call{expectedLine, m_Recorded.stepOfCall[n], true, false};
        // An event without a handle never comes, which is survived; see the table of failing calls.
        const bool needed = withoutHandle && function != "GCRegisterEvent";
        EXPECT_EQ(
            needed ? JudgeMissingHandle(GetParam(), call, outcome) : JudgeLie(m_Recorded, call, outcome), "")
            << GetParam().name << ", " << what;
    }

    Runs m_Runs;
    Runs::Recorded m_Recorded;
};

std::string NameOf(const testing::TestParamInfo<Way>& info) {
    return info.param.name;
}

} // namespace

TEST_P(LyingProducer, IsSurvivedWhateverItsAnswersHold) {
    for (size_t n = 0; n < m_Recorded.calls.size(); ++n) {
        // Where not all are told, they take turns, so that neighbouring calls and the other ways hear the
        // rest.
        for (size_t i = 0; i < Amount<size_t>(lies.size(), lies.size(), 1); ++i)
            LieOnce(n, lies[(n * 3 + i) % lies.size()]);
        if (HasFatalFailure())
            return;
        m_Runs.RunHealthy("lies of call " + std::to_string(n + 1) + ", " + m_Recorded.calls[n]);
    }
}

// Handles that have become stale: from some call on the producer refuses every one.
TEST_P(LyingProducer, MayRefuseEveryCallFromAnyOneOn) {
    const size_t stride = Amount<size_t>(1, 1, 5);
    const Fault stale{"every handle stale", GC_ERR_INVALID_HANDLE, 0, false, 0, false};
    for (size_t n = 1; n < m_Recorded.calls.size(); n += stride) {
        const std::string what = "all calls from " + std::to_string(n + 1) + " on, " + m_Recorded.calls[n];
        m_Runs.CountFault();
        m_Runs.looksAtWhatIsOpen = false; // the producer denies having closed what it has closed
        const Outcome outcome = m_Runs.Run(what, [&] {
            PlacedFault(m_Runs.Producer(), Target{true, "", "", n + 1, true}, stale, true);
        });
        m_Runs.looksAtWhatIsOpen = true;
        const FailedCall call{m_Recorded.calls[n], m_Recorded.stepOfCall[n], true, false};
        EXPECT_EQ(JudgeLie(m_Recorded, call, outcome), "") << GetParam().name << ", " << what;
        m_Runs.RunHealthy(what);
    }
}

INSTANTIATE_TEST_SUITE_P(Ways, LyingProducer, testing::ValuesIn(ways), NameOf);

} // namespace ZqTest
