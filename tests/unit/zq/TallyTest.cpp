#include "tools/zq/Tally.h"

#include <gtest/gtest.h>

#include <sstream>

using ZqTool::Tally;

namespace {

Tally::Clock::time_point At(int milliseconds) {
    return Tally::Clock::time_point(std::chrono::milliseconds(milliseconds));
}

std::string Line(const Tally& tally) {
    std::ostringstream text;
    tally.Print("CAM", text);
    return text.str();
}

TEST(ZqTally, RatesCountTheTimeBetweenFrames) {
    Tally tally;
    tally.Count(true, 1000000, 1, At(0));
    tally.Count(true, 1000000, 2, At(250));
    tally.Count(false, 500000, 3, At(500));
    EXPECT_EQ(Line(tally), "CAM: 3 frames, 2 complete, 1 incomplete, 0 lost, 4.0 fps, 3.0 MB/s\n");
}

TEST(ZqTally, GapsInTheIdsAreLostFramesAndWrapsAreNot) {
    Tally tally;
    for (const uint64_t id : {65532, 65535, 1, 2, 5})
        tally.Count(true, 1, id, At(static_cast<int>(tally.Frames())));
    EXPECT_NE(Line(tally).find(" 4 lost,"), std::string::npos) << Line(tally);
}

TEST(ZqTally, WithoutIdsLossIsNotKnown) {
    Tally tally;
    tally.Count(true, 1, std::nullopt, At(0));
    EXPECT_EQ(Line(tally), "CAM: 1 frames, 1 complete, 0 incomplete, ? lost, 0.0 fps, 0.0 MB/s\n");
}

} // namespace
