// Allocations fail one at a time, on the application's thread and on those of the library.
#include <gtest/gtest.h>

#include <iostream>
#include <optional>
#include <set>

#include <sys/wait.h>
#include <unistd.h>

#include "tests/faults/Runs.h"
#include "tests/support/AllocationFailure.h"

namespace ZqTest {

namespace {

/// Steps in which a failed allocation may cost something that is not needed instead of the step: the
/// notification of a loss, the chunks of a frame, the thread of an event, a setting that can't be read. The
/// others report it.
const std::set<std::string> stepsThatMaySwallow = {
    "open device", "read features", "save features", "start", "grab", "restart", "grab again", "callback",
};

/// Steps in which the application uses a node map itself, whose nodes let the standard's exception out.
const std::set<std::string> stepsOnNodeMaps = {"read features", "grab", "grab again"};

std::string Judge(const Way& way, const std::string& step, const Outcome& outcome) {
    const Failure& failure = outcome.failure;
    const bool release = step.rfind("release", 0) == 0;
    if (failure.kind.empty())
        return release || stepsThatMaySwallow.count(step) != 0 ? "" : "the failed allocation was swallowed";
    if (outcome.lost)
        return outcome.step == "start" && failure.text == "The device is lost." ? "" : failure.text;
    if (release)
        return "left step '" + outcome.step + "': " + failure.kind + " " + failure.text;
    const bool reported =
        failure.kind == "BadAllocException" ||
        (failure.kind == "std::bad_alloc" && stepsOnNodeMaps.count(step) != 0) ||
        // A device that can't be opened is passed over.
        (way.firstDevice && step == "open device" && failure.text == "There is no available device.");
    if (reported && outcome.step == step)
        return {};
    return "in step '" + outcome.step + "': " + failure.kind + " \"" + failure.text + "\"";
}

class FailingAllocationIn : public testing::TestWithParam<Way> {};

std::string NameOf(const testing::TestParamInfo<Way>& info) {
    return info.param.name;
}

} // namespace

TEST_P(FailingAllocationIn, TheApplicationsThreadIsReportedAsBadAlloc) {
    Runs runs(GetParam());
    runs.RunHealthy("nothing"); // what is built once in a process
    const Runs::Recorded recorded = runs.Record();
    for (size_t index = 0; index < recorded.steps.size(); ++index) {
        const std::string& step = recorded.steps[index];
        uint64_t tried = 0;
        // Evenly over the step, whose number of allocations is found by going beyond it.
        const auto failOnce = [&](uint64_t n) {
            std::optional<FailingAllocation> failing;
            runs.onStep = [&, n](const char* begins) {
                const bool failed = failing && failing->Failed();
                if (step == begins)
                    failing.emplace(n);
                else if (failing && !failed)
                    failing.reset();
            };
            const std::string what = "allocation " + std::to_string(n) + " of step '" + step + "'";
            const Outcome outcome = runs.Run(what);
            runs.onStep = nullptr;
            const bool failed = failing && failing->Failed();
            failing.reset();
            if (failed) {
                runs.CountFault();
                EXPECT_EQ(Judge(GetParam(), step, outcome), "") << GetParam().name << ", " << what;
                runs.RunHealthy(what);
            }
            return failed;
        };
        const uint64_t wanted = Amount<uint64_t>(UINT64_MAX, UINT64_MAX, 8);
        const uint64_t total = recorded.allocations.at(step);
        const uint64_t stride = total > wanted ? total / wanted : 1;
        for (uint64_t n = 1; n <= total; n += stride)
            tried += failOnce(n) ? 1 : 0;
        std::cout << GetParam().name << ", " << step << ": " << tried << " of " << total << " allocations\n";
    }
}

TEST_P(FailingAllocationIn, AThreadOfTheLibraryCostsAnEventAtMost) {
    Runs runs(GetParam());
    runs.RunHealthy("nothing");
    uint64_t n = 1;
    for (bool failed = true; failed; ++n) {
        std::optional<FailingAllocation> failing(std::in_place, n, Threads::Others);
        const std::string what = "allocation " + std::to_string(n) + " of event threads";
        const Outcome outcome = runs.Run(what);
        failed = failing->Failed();
        failing.reset();
        if (failed)
            runs.CountFault();
        // The callback reads chunks, and nodes let the standard's exception out.
        const bool reported = outcome.inCallback.kind.empty() ||
                              outcome.inCallback.kind == "BadAllocException" ||
                              outcome.inCallback.kind == "std::bad_alloc";
        EXPECT_EQ(outcome.failure.kind, "")
            << GetParam().name << ", " << what << ": " << outcome.failure.text;
        EXPECT_TRUE(reported) << GetParam().name << ", " << what << ": " << outcome.inCallback.kind;
        runs.RunHealthy(what);
    }
    EXPECT_GT(n, 10u);
}

INSTANTIATE_TEST_SUITE_P(Ways, FailingAllocationIn, testing::ValuesIn(ways), NameOf);

// The counter stays at 1 when the first initialisation fails, so that no other can follow in that process.
TEST(FailingAllocationIn, TheFirstInitialisationIsReportedAsBadAlloc) {
    enum Result { Initialised, Reported, Escaped };
    uint64_t n = 0;
    int result = Reported;
    while (result == Reported) {
        ++n;
        const pid_t child = fork();
        if (child == 0) {
            Failure failure;
            {
                const FailingAllocation failing(n);
                failure = FailureOf([] { ZqApiInitialize(ZqApiBuildVersion); });
            }
            if (failure.kind.empty())
                _exit(Initialised);
            _exit(failure.kind == "BadAllocException" ? Reported : Escaped);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status)) << "allocation " << n << " ended the process";
        result = WEXITSTATUS(status);
        ASSERT_NE(result, Escaped) << "allocation " << n << ": another exception left";
    }
    EXPECT_GT(n, 10u);
    std::cout << "initialisation: " << n - 1 << " allocations\n";
}

} // namespace ZqTest
