#include "tests/unit/zq/Tool.h"

namespace {

TEST(ZqUsage, NoCommandAndUnknownOptionsEndWith2) {
    Tool tool;
    EXPECT_EQ(tool.Run({}), 2);
    EXPECT_EQ(tool.Run({"list", "--nonsense"}), 2);
    EXPECT_NE(tool.err.str().find("--nonsense"), std::string::npos);
    EXPECT_EQ(tool.out.str(), "");
}

TEST(ZqUsage, BadValuesEndWith2) {
    Tool tool;
    EXPECT_EQ(tool.Run({"grab", "-n", "0"}), 2);
    EXPECT_EQ(tool.Run({"grab", "-n", "three"}), 2);
    EXPECT_EQ(tool.Run({"grab", "--format", "gif"}), 2);
    EXPECT_EQ(tool.Run({"grab", "--timeout", "0"}), 2);
    EXPECT_EQ(tool.Run({"grab", "CAM1", "CAM2"}), 2);
}

TEST(ZqUsage, HelpAndVersionGoToStdoutAndEndWith0) {
    Tool tool;
    EXPECT_EQ(tool.Run({"grab", "--help"}), 0);
    EXPECT_NE(tool.out.str().find("--timeout"), std::string::npos);
    EXPECT_EQ(tool.Run({"--version"}), 0);
    EXPECT_EQ(tool.out.str(), "1.0.5\n");
}

} // namespace
