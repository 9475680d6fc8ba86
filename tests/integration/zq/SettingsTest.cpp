#include "tools/zq/Settings.h"

#include "tests/integration/zq/SimulatedCameras.h"
#include "tools/zq/Camera.h"
#include "tools/zq/Feature.h"

namespace {

class ZqSettings : public SimulatedCamera {};

// In one opening, as the cameras forget their settings behind it.
TEST_P(ZqSettings, SaveChangeLoadSaveGivesTheSameText) {
    const ZqTool::Library library;
    const ZqTool::Camera camera(
        library, {GetParam(), {"Width=320", "OffsetX=64", "Gain=3.5", "ExposureTime=2500", "Height=100"}},
        {tool.out, tool.err, false});
    auto& features = camera.Features();
    const std::string saved = ZqTool::SettingsOf(features, camera.Id());
    EXPECT_NE(saved.find("\nExposureTime\t2500\n"), std::string::npos) << saved;
    for (const auto& [name, value] :
         std::vector<std::pair<std::string, std::string>>{{"OffsetX", "0"},
                                                          {"Width", "1024"},
                                                          {"PixelFormat", "Mono16"},
                                                          {"Gain", "0"},
                                                          {"ExposureTime", "77"},
                                                          {"Height", "16"},
                                                          {"TestPattern", "White"},
                                                          {"ChunkModeActive", "1"}})
        ZqTool::SetFeature(features, name, value, camera.Id());
    EXPECT_NE(ZqTool::SettingsOf(features, camera.Id()), saved);
    EXPECT_EQ(ZqTool::ApplySettings(saved, "a text", features, camera.Id()), std::vector<std::string>());
    EXPECT_EQ(ZqTool::SettingsOf(features, camera.Id()), saved);
}

TEST_P(ZqSettings, FilesOfTheCommandsCompare) {
    const std::string one = folder.File("one");
    const std::string other = folder.File("other");
    ASSERT_EQ(tool.Run({"save", one, GetParam()}), 0) << tool.err.str();
    ASSERT_EQ(tool.Run({"save", other, GetParam(), "--set", "Width=320", "--set", "Gain=2"}), 0);
    EXPECT_EQ(tool.Run({"diff", one, GetParam()}), 0) << tool.out.str();
    EXPECT_EQ(tool.Run({"diff", one, other}), 1);
    EXPECT_EQ(tool.out.str(), "Width\t640\t320\nGain\t0\t2\n");
    EXPECT_EQ(tool.Run({"load", other, GetParam()}), 0) << tool.err.str();
}

TEST_P(ZqSettings, GetSetAndFeatures) {
    EXPECT_EQ(Run({"set", "Width", "320"}), 0) << tool.err.str();
    EXPECT_EQ(tool.out.str(), "320\n");
    EXPECT_EQ(Run({"get", "Width", "--set", "Width=1024"}), 0);
    EXPECT_EQ(tool.out.str(), "1024\n");
    EXPECT_EQ(Run({"set", "Width", "321"}), 1);
    EXPECT_EQ(Run({"set", "Breadth", "321"}), 3);
    EXPECT_EQ(Run({"features"}), 0);
    EXPECT_NE(tool.out.str().find("\n  ExposureTime                           Float        RW  1000.0 us\n"),
              std::string::npos)
        << tool.out.str();
}

INSTANTIATE_TEST_SUITE_P(Cameras, ZqSettings, testing::ValuesIn(allCameras), CameraName);

} // namespace
