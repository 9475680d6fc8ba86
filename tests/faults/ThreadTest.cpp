// Threads that the system does not create.
#include <gtest/gtest.h>

#include "tests/faults/Pthreads.h"
#include "tests/faults/Runs.h"

namespace ZqTest {

namespace {

class FailingThreadIn : public testing::TestWithParam<Way> {};

std::string NameOf(const testing::TestParamInfo<Way>& info) {
    return info.param.name;
}

} // namespace

// Each event thread in turn, that of new buffers among them: its events never come, and everything else
// works.
TEST_P(FailingThreadIn, CostsTheEventsOfThatThread) {
    Runs runs(GetParam());
    int withoutFrames = 0;
    uint64_t n = 1;
    for (bool failed = true; failed; ++n) {
        const std::string what = "thread " + std::to_string(n);
        const FailingThread failing(n);
        const Outcome outcome = runs.Run(what);
        failed = failing.Failed();
        if (failed)
            runs.CountFault();
        EXPECT_EQ(outcome.failure.kind, "")
            << GetParam().name << ", " << what << ": " << outcome.failure.text;
        EXPECT_EQ(outcome.inCallback.kind, "") << GetParam().name << ", " << what;
        withoutFrames += JudgeHealthy(GetParam(), outcome).empty() ? 0 : 1;
    }
    // System, interface (2), device (5), stream (2); one more for a second acquisition.
    EXPECT_EQ(n - 2, GetParam().restart ? 11u : 10u);
    EXPECT_EQ(withoutFrames, GetParam().restart ? 2 : 1);
    runs.RunHealthy("failing threads");
}

INSTANTIATE_TEST_SUITE_P(Ways, FailingThreadIn, testing::ValuesIn(ways), NameOf);

} // namespace ZqTest
