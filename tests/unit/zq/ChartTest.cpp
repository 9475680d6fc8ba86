#include "tests/support/ImageBuffers.h"
#include "tests/unit/zq/Decoded.h"
#include "tests/unit/zq/Expected.h"
#include "tests/unit/zq/Tool.h"

#include <ZqApi/ZqApi.h>

using namespace ZqApi;

namespace {

TEST(ZqChart, IsTheLibrarysChart) {
    const TemporaryFolder folder;
    Tool tool;
    ASSERT_EQ(tool.Run({"chart", "Mono10", "31x13", "-o", folder.File("chart.png")}), 0) << tool.err.str();
    EXPECT_EQ(tool.err.str(), "");
    const Decoded decoded = ReadPng(folder.File("chart.png"));
    ZqApiInitialize(ZqApiBuildVersion);
    {
        const auto buffer = ZqTest::MakeImageBuffer();
        buffer->CreateBuffer(31, 13, ZqPixelFormat_Mono10, ZqMemoryInitialization_TestChart);
        const Expected expected = ExpectedOf(*buffer->GetIZqImage());
        ASSERT_EQ(decoded.samples.size(), expected.samples.size());
        for (size_t i = 0; i < decoded.samples.size(); ++i)
            ASSERT_EQ(decoded.samples[i], expected.Scaled(i)) << i;
    }
    ZqApiTerminate();
}

TEST(ZqChart, EndingOfTheFileSaysItsFormat) {
    const TemporaryFolder folder;
    Tool tool;
    for (const char* name : {"a.tif", "a.tiff", "a.ppm", "a.npy", "a.raw"})
        ASSERT_EQ(tool.Run({"chart", "BGR8", "23x12", "-o", folder.File(name)}), 0) << tool.err.str();
    const Decoded tiff = ReadTiff(folder.File("a.tif"));
    EXPECT_EQ(tiff.channels, 3U);
    EXPECT_EQ(ReadTiff(folder.File("a.tiff")).samples, tiff.samples);
    EXPECT_EQ(ReadPnm(folder.File("a.ppm")).samples, tiff.samples);
    EXPECT_EQ(ReadNpy(folder.File("a.npy")).samples, tiff.samples);
    EXPECT_EQ(ReadBytes(folder.File("a.raw")).size(), 72U * 12);
}

TEST(ZqChart, PatchesWithAlphaAreOpaque) {
    const TemporaryFolder folder;
    Tool tool;
    ASSERT_EQ(tool.Run({"chart", "BGRa8", "79x47", "-o", folder.File("a.png")}), 0) << tool.err.str();
    ASSERT_EQ(tool.Run({"chart", "BGR8", "79x47", "-o", folder.File("b.png")}), 0) << tool.err.str();
    const Decoded with = ReadPng(folder.File("a.png"));
    const Decoded without = ReadPng(folder.File("b.png"));
    ASSERT_EQ(with.channels, 4U);
    for (size_t i = 0; i < without.samples.size() / 3; ++i) {
        ASSERT_EQ(with.samples[4 * i], without.samples[3 * i]);
        const bool isGround = with.samples[4 * i] + with.samples[4 * i + 1] + with.samples[4 * i + 2] == 0;
        ASSERT_EQ(with.samples[4 * i + 3], isGround ? 0U : 255U) << "pixel " << i;
    }
}

TEST(ZqChart, FormatsWithoutChartSaySo) {
    const TemporaryFolder folder;
    Tool tool;
    EXPECT_EQ(tool.Run({"chart", "YCbCr422_8", "16x4", "-o", folder.File("a.raw")}), 0);
    EXPECT_EQ(tool.err.str(), "zq: YCbCr422_8 has no chart; the picture is black\n");
}

TEST(ZqChart, WrongArgumentsEndWith2) {
    Tool tool;
    EXPECT_EQ(tool.Run({"chart", "Mono8", "16", "-o", "x.png"}), 2);
    EXPECT_EQ(tool.Run({"chart", "Mono8", "0x4", "-o", "x.png"}), 2);
    EXPECT_EQ(tool.Run({"chart", "Mono8", "16x4x", "-o", "x.png"}), 2);
    EXPECT_EQ(tool.Run({"chart", "Mono8", "16x4", "-o", "x.gif"}), 2);
    EXPECT_EQ(tool.Run({"chart", "Mono9", "16x4", "-o", "x.png"}), 2);
    EXPECT_EQ(tool.err.str(),
              "zq: drawing a chart in Mono9 failed\n"
              "  why: there is no pixel format of that name\n"
              "  try: Mono8, Mono12, BGR8 or another name of the Pixel Format Naming Convention\n");
    EXPECT_EQ(tool.Run({"chart", "Mono8", "16x4", "-o", "/nowhere/x.png"}), 1);
}

} // namespace
