#include "tests/unit/zq/DescribedCamera.h"

#include <nlohmann/json.hpp>

using namespace GenTL;

namespace {

class ZqFeature : public DescribedCamera {};

TEST_F(ZqFeature, GetPrintsTheValue) {
    EXPECT_EQ(tool.Run({"get", "DEV1", "Width"}), 0);
    EXPECT_EQ(tool.out.str(), "64\n");
    EXPECT_EQ(tool.Run({"get", "DEV1", "PixelFormat"}), 0);
    EXPECT_EQ(tool.out.str(), "Mono8\n");
    EXPECT_TRUE(producer.NothingOpen());
}

TEST_F(ZqFeature, SetWritesAndPrintsWhatTheCameraThenHas) {
    EXPECT_EQ(tool.Run({"set", "DEV1", "Width", "32"}), 0) << tool.err.str();
    EXPECT_EQ(tool.out.str(), "32\n");
    EXPECT_EQ(Register(0x100), 32U);
    EXPECT_EQ(tool.Run({"set", "DEV1", "PixelFormat", "Mono16"}), 0);
    EXPECT_EQ(Register(0x108), 0x01100007U);
}

TEST_F(ZqFeature, SetExecutesCommands) {
    EXPECT_EQ(tool.Run({"set", "DEV1", "AcquisitionStop", "1"}), 0) << tool.err.str();
    EXPECT_EQ(tool.out.str(), "done\n");
    EXPECT_EQ(Register(0x118), 1U);
}

TEST_F(ZqFeature, RefusedValuesEndWith1AndSayWhatIsTaken) {
    EXPECT_EQ(tool.Run({"set", "DEV1", "Gain", "101"}), 1);
    EXPECT_EQ(tool.err.str(), "zq: setting Gain of DEV1 to 101 failed\n"
                              "  why: Value 101 of 'Gain' must be at most 100 (min 0, max 100, inc 1).\n"
                              "  try: a value from 0 to 100, step 1\n");
    EXPECT_EQ(tool.Run({"set", "DEV1", "PixelFormat", "Mono9"}), 1);
    EXPECT_EQ(tool.err.str(), "zq: setting PixelFormat of DEV1 to Mono9 failed\n"
                              "  why: 'Mono9' is no entry of 'PixelFormat'.\n"
                              "  try: one of Mono8, Mono16\n");
    producer.Answer("GCWritePort").At(0x100).With(GC_ERR_IO).Saying("link down");
    EXPECT_EQ(tool.Run({"set", "DEV1", "Width", "8"}), 1);
    EXPECT_EQ(tool.err.str(), "zq: setting Width of DEV1 to 8 failed\n"
                              "  why: -1010 GC_ERR_IO from GCWritePort: link down\n"
                              "  try: check the camera's cable and power, then run: zq list\n");
    EXPECT_TRUE(producer.NothingOpen());
}

TEST_F(ZqFeature, UnknownFeaturesAndCamerasEndWith3) {
    EXPECT_EQ(tool.Run({"get", "DEV1", "Nothing"}), 3);
    EXPECT_EQ(tool.err.str(), "zq: looking for Nothing failed\n"
                              "  why: DEV1 has no feature of that name\n"
                              "  try: check what there is with: zq features DEV1 --all\n");
    EXPECT_EQ(tool.Run({"set", "DEV1", "Nothing", "1"}), 3);
    EXPECT_EQ(tool.Run({"get", "DEV2", "Width"}), 3);
    EXPECT_EQ(tool.Run({"get", "DEV1"}), 2);
}

TEST_F(ZqFeature, TreeShowsTypeAccessValueAndUnit) {
    SetRegister(gain, 12);
    EXPECT_EQ(tool.Run({"features", "DEV1"}), 0) << tool.err.str();
    const std::string begin = "Gains\n"
                              "  GainSelector                           Enumeration  RW  Red\n"
                              "  Gain                                   Integer      RW  12 dB\n"
                              "EventControl\n";
    EXPECT_EQ(tool.out.str().substr(0, begin.size()), begin);
    EXPECT_NE(tool.out.str().find("AcquisitionStart                         Command      WO  -\n"),
              std::string::npos);
    EXPECT_EQ(tool.out.str().find("Hidden"), std::string::npos);
    EXPECT_EQ(tool.Run({"features", "DEV1", "--all"}), 0);
    EXPECT_NE(tool.out.str().find("  Hidden                                 Integer      RW  7\n"),
              std::string::npos)
        << tool.out.str();
}

TEST_F(ZqFeature, TreeAsJson) {
    EXPECT_EQ(tool.Run({"features", "DEV1", "--json", "--set", "Width=16"}), 0) << tool.err.str();
    const auto json = nlohmann::json::parse(tool.out.str());
    EXPECT_EQ(json["device"], "DEV1");
    EXPECT_EQ(json["features"][0]["category"], "Gains");
    EXPECT_EQ(json["features"][0]["features"][1]["name"], "Gain");
    EXPECT_EQ(json["features"][0]["features"][1]["unit"], "dB");
    EXPECT_EQ(json["features"][2]["name"], "Width");
    EXPECT_EQ(json["features"][2]["value"], 16);
}

TEST_F(ZqFeature, ValueThatCannotBeReadLeavesTheRestOfTheTree) {
    producer.Answer("GCReadPort").At(0x104).With(GC_ERR_IO);
    EXPECT_EQ(tool.Run({"features", "DEV1"}), 0) << tool.err.str();
    EXPECT_NE(tool.out.str().find("Height                                   Integer      RW  -\n"),
              std::string::npos)
        << tool.out.str();
    EXPECT_EQ(tool.Run({"get", "DEV1", "Height"}), 1);
}

} // namespace
