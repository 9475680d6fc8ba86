// Producers that lie to the threads of the library.
#include <gtest/gtest.h>

#include "tests/faults/Lies.h"

namespace ZqTest {

using namespace GenTL;

namespace {

enum class Cost {
    Event,   ///< its event at most: nothing is thrown, and all frames come
    Picture, ///< the picture of a frame that a callback reads, with a report there; all frames come
    Frame,   ///< a frame that does not come, or one that comes twice and can't be given back twice
};

struct Row {
    const char* function;
    const char* arguments; ///< what the call's line holds behind the function; "" any
    Cost cost;
};

// The first row that fits decides.
// clang-format off
constexpr Row rows[] = {
    {"GCGetLastError",       "",            Cost::Event},
    {"EventGetData",         "/1, ",        Cost::Frame},
    {"EventGetData",         "",            Cost::Event},
    {"EventGetDataInfo",     "",            Cost::Event},
    {"GCReadPort",           "(REMOTE1, ",  Cost::Event},
    {"GCWritePort",          "(REMOTE1, ",  Cost::Event},
    // Whether there is an image, and its format.
    {"DSGetBufferInfo",      ", 17, 1)",    Cost::Picture},
    {"DSGetBufferInfo",      ", 20, 8)",    Cost::Picture},
    {"DSGetBufferInfo",      ", 21, 8)",    Cost::Picture},
    {"DSGetBufferInfo",      "",            Cost::Event},
    {"DSGetBufferChunkData", "",            Cost::Event},
    {"DSQueueBuffer",        "",            Cost::Event},
};
// clang-format on

const Row* FindRow(const std::string& line) {
    for (const Row& row : rows)
        if (FunctionOf(line) == row.function && line.find(row.arguments) != std::string::npos)
            return &row;
    return nullptr;
}

class ProducerLyingToThreads : public testing::TestWithParam<Way> {
protected:
    ProducerLyingToThreads() : m_Runs(GetParam()), m_Recorded(m_Runs.Record()) {}

    std::string Judge(const FailedCall& call, const Outcome& outcome) const {
        const Row* const row = FindRow(call.line);
        if (row == nullptr)
            return "the table has no row for this call";
        Outcome otherwise = outcome;
        switch (row->cost) {
        case Cost::Event:
            return JudgeHealthy(GetParam(), outcome);
        case Cost::Picture:
            otherwise.inCallback = {};
            return JudgeKind(outcome.inCallback) + JudgeHealthy(GetParam(), otherwise);
        case Cost::Frame:
            return JudgeKind(outcome.inCallback) + JudgeLie(m_Recorded, call, outcome);
        }
        return "unknown cost";
    }

    void LieOnce(size_t n, const Target& target, const Fault& lie) {
        const std::string line = WithoutResult(m_Recorded.threadCalls[n]);
        const std::string what = "call " + std::to_string(target.number) + ", " + line + ", " + lie.name +
                                 ", in step '" + m_Recorded.stepOfThreadCall[n] + "'";
        std::unique_ptr<PlacedFault> placed;
        m_Runs.CountFault();
        const auto run = [&] {
            return m_Runs.Run(
                what, [&] { placed = std::make_unique<PlacedFault>(m_Runs.Producer(), target, lie, true); });
        };
        if (const char* const message = MessageOfDeath(m_Recorded.threadCalls[n], lie)) {
            ++m_Deaths;
            EXPECT_DEATH(run(), message) << what;
            return;
        }
        const Outcome outcome = run();
        ASSERT_NE(placed->Answered(), "") << GetParam().name << ", " << what << ": the call was not made";
        EXPECT_EQ(Judge({line, m_Recorded.stepOfThreadCall[n], false, false}, outcome), "")
            << GetParam().name << ", " << what;
    }

    Runs m_Runs;
    Runs::Recorded m_Recorded;
    int m_Deaths = 0;
};

std::string NameOf(const testing::TestParamInfo<Way>& info) {
    return info.param.name;
}

} // namespace

TEST_P(ProducerLyingToThreads, CostsAFrameAtMost) {
    const std::vector<std::string>& calls = m_Recorded.threadCalls;
    const std::vector<Target> targets = TargetsOfThreads(calls);
    const size_t liesPerCall = Amount(lies.size(), lies.size(), size_t{2});
    for (size_t n = 0; n < targets.size(); ++n) {
        for (size_t i = 0; i < liesPerCall; ++i) {
            const Fault& lie = lies[(n * 3 + i) % lies.size()];
            if (CanBeTold(calls, n, lie))
                LieOnce(n, targets[n], lie);
        }
        if (HasFatalFailure())
            return;
        m_Runs.RunHealthy("lies of call " + std::to_string(n + 1) + ", " + calls[n]);
    }
    // Two of the lies for each frame, and one about the format of each picture that a callback reads.
    if (liesPerCall == lies.size()) {
        EXPECT_EQ(m_Deaths, 2 * (FramesToRetrieve(GetParam()) + framesToCallback) + framesToCallback);
    }
}

INSTANTIATE_TEST_SUITE_P(Ways, ProducerLyingToThreads, testing::ValuesIn(ways), NameOf);

} // namespace ZqTest
