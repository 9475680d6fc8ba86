#include "tests/unit/zq/Decoded.h"
#include "tests/unit/zq/DescribedCamera.h"

#include <fstream>

namespace {

class ZqSettings : public DescribedCamera {
protected:
    std::string File(const std::string& name) const { return folder.File(name); }
    void Save(const std::string& name) {
        ASSERT_EQ(tool.Run({"save", File(name), "DEV1"}), 0) << tool.err.str();
    }

    const TemporaryFolder folder;
};

TEST_F(ZqSettings, SavedOnesComeBack) {
    SetRegister(gain, 11);
    SetRegister(gain + 4, 22);
    Save("a");
    EXPECT_EQ(tool.out.str().rfind("DEV1: ", 0), 0U);
    SetRegister(gain, 1);
    SetRegister(gain + 4, 2);
    SetRegister(0x100, 8);
    EXPECT_EQ(tool.Run({"load", File("a"), "DEV1"}), 0) << tool.err.str();
    EXPECT_EQ(Register(gain), 11U);
    EXPECT_EQ(Register(gain + 4), 22U);
    EXPECT_EQ(Register(0x100), 64U);
    Save("b");
    EXPECT_EQ(ReadBytes(File("a")), ReadBytes(File("b")));
    EXPECT_TRUE(producer.NothingOpen());
}

TEST_F(ZqSettings, WhatDoesNotStickIsListedAndEndsWith1) {
    Save("a");
    std::string text = ReadBytes(File("a"));
    text.replace(text.find("Width\t64"), 8, "Width\t99999");
    text += "Nothing\t1\n";
    std::ofstream(File("a"), std::ios::binary) << text;
    EXPECT_EQ(tool.Run({"load", File("a"), "DEV1"}), 1);
    EXPECT_NE(tool.out.str().find("Width"), std::string::npos);
    EXPECT_NE(tool.out.str().find("Nothing"), std::string::npos);
    EXPECT_EQ(tool.err.str(), "zq: loading " + File("a") +
                                  " into DEV1 failed\n"
                                  "  why: 2 settings did not stick, listed above\n"
                                  "  try: see what the camera accepts with: zq features DEV1\n");
}

TEST_F(ZqSettings, FilesThatAreNoneAreRefused) {
    std::ofstream(File("a")) << "Width\t64\n";
    EXPECT_EQ(tool.Run({"load", File("a"), "DEV1"}), 1);
    EXPECT_EQ(tool.err.str(), "zq: reading the settings in " + File("a") +
                                  " failed\n"
                                  "  why: The stream is not a GenApi feature stream since it is missing the "
                                  "magic GUID in the first line\n"
                                  "  try: give a file that was written with: zq save\n");
    EXPECT_EQ(tool.Run({"load", File("none"), "DEV1"}), 1);
    EXPECT_EQ(tool.err.str(), "zq: reading " + File("none") +
                                  " failed\n"
                                  "  why: No such file or directory\n"
                                  "  try: check the file's name\n");
    EXPECT_EQ(tool.Run({"save", "/nowhere/a", "DEV1"}), 1);
}

TEST_F(ZqSettings, DiffOfFilesAndCameras) {
    Save("a");
    SetRegister(gain + 4, 22);
    Save("b");
    EXPECT_EQ(tool.Run({"diff", File("a"), File("b")}), 1);
    EXPECT_EQ(tool.out.str(), "Gain[GainSelector=Blue]\t0\t22\n");
    EXPECT_EQ(tool.err.str(), "");
    EXPECT_EQ(tool.Run({"diff", File("b"), "DEV1"}), 0);
    EXPECT_EQ(tool.out.str(), "");
    EXPECT_EQ(tool.Run({"diff", "DEV1", File("a")}), 1);
    EXPECT_EQ(tool.out.str(), "Gain[GainSelector=Blue]\t22\t0\n");
    EXPECT_EQ(tool.Run({"diff", File("a"), "DEV7"}), 3);
}

} // namespace
