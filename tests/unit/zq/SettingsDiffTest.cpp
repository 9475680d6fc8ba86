#include "tools/zq/SettingsDiff.h"

#include <gtest/gtest.h>

using namespace ZqTool;

namespace {

std::string Text(const std::vector<Difference>& differences) {
    std::string text;
    for (const auto& each : differences)
        text += each.name + ": " + each.left + " / " + each.right + "\n";
    return text;
}

std::string Compare(const std::string& left, const std::string& right) {
    return Text(CompareSettings(ParseSettings(left), ParseSettings(right)));
}

TEST(ZqSettingsDiff, CommentsAreNoSettingsAndValuesMayHoldTabs) {
    const auto settings = ParseSettings("# {05D8}\n# x\ty\nWidth\t640\nName\ta\tb\n");
    ASSERT_EQ(settings.size(), 2U);
    EXPECT_EQ(settings[1].name, "Name");
    EXPECT_EQ(settings[1].value, "a\tb");
}

TEST(ZqSettingsDiff, NamesWhatDiffersAndWhatOneSideLacks) {
    EXPECT_EQ(Compare("A\t1\nB\t2\nC\t3\n", "B\t5\nA\t1\nD\t4\n"), "B: 2 / 5\nC: 3 / -\nD: - / 4\n");
    EXPECT_EQ(Compare("A\t1\nB\t2\n", "B\t2\nA\t1\n"), "");
}

TEST(ZqSettingsDiff, RepeatedFeaturesAreToldApartByTheirSelector) {
    const std::string left = "GainSelector\tRed\nGain\t1\nGainSelector\tBlue\nGain\t2\nGainSelector\tRed\n";
    const std::string right = "GainSelector\tRed\nGain\t1\nGainSelector\tBlue\nGain\t3\nGainSelector\tBlue\n";
    EXPECT_EQ(Compare(left, left), "");
    EXPECT_EQ(Compare(left, right), "Gain[GainSelector=Blue]: 2 / 3\nGainSelector: Red / Blue\n");
}

} // namespace
