#include "tests/integration/zq/SimulatedCameras.h"
#include "tools/zq/Camera.h"
#include "tools/zq/Chunks.h"
#include "tools/zq/Feature.h"

#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::json;

class ZqEvents : public SimulatedCamera {
protected:
    std::vector<Json> Lines() const {
        std::vector<Json> lines;
        std::istringstream text(tool.out.str());
        for (std::string line; std::getline(text, line);)
            lines.push_back(Json::parse(line));
        return lines;
    }
};

TEST_P(ZqEvents, ComeInOrderWithTheirFrameIds) {
    ASSERT_EQ(
        Run({"events", "FrameStart", "FrameEnd", "--acquire", "-n", "6", "--jsonl", "--timeout", "10000"}), 0)
        << tool.err.str();
    const auto lines = Lines();
    ASSERT_EQ(lines.size(), 6U);
    int64_t last = 0;
    for (size_t i = 0; i < lines.size(); ++i) {
        const std::string name = i % 2 == 0 ? "FrameStart" : "FrameEnd";
        EXPECT_EQ(lines[i]["event"], name);
        EXPECT_EQ(lines[i]["id"], i % 2 == 0 ? "9C41" : "9C42");
        EXPECT_EQ(lines[i]["values"]["Event" + name + "FrameID"], i / 2);
        EXPECT_GE(lines[i]["timestamp"], last);
        last = lines[i]["timestamp"];
    }
}

TEST_P(ZqEvents, CommandsBringTheirEvent) {
    ASSERT_EQ(Run({"events", "Test", "--execute", "TestEventGenerate", "-n", "1", "--timeout", "10000"}), 0)
        << tool.err.str();
    EXPECT_EQ(tool.out.str().rfind("Test 4FFF ", 0), 0U) << tool.out.str();
    EXPECT_EQ(Run({"events", "Test", "-n", "1", "--timeout", "100"}), 5);
}

INSTANTIATE_TEST_SUITE_P(Cameras, ZqEvents, testing::ValuesIn(allCameras), CameraName);

class ZqChunks : public SimulatedCamera {};

TEST_P(ZqChunks, AreWrittenBesideTheirFrames) {
    ASSERT_EQ(Run({"grab", "--chunks", "-n", "3", "-o", folder.Path(), "--set", "Width=320", "--set",
                   "ExposureTime=500", "--set", "PixelFormat=Mono12"}),
              0)
        << tool.err.str();
    for (const int frame : {1, 2, 3}) {
        const std::string name = folder.File("00000" + std::to_string(frame));
        EXPECT_EQ(ReadPng(name + ".png").width, 320U);
        const Json json = Json::parse(ReadBytes(name + ".json"));
        EXPECT_EQ(json["pixel_format"], "Mono12");
        EXPECT_EQ(json["chunks"]["ChunkFrameID"], frame - 1);
        EXPECT_EQ(json["chunks"]["ChunkWidth"], 320);
        EXPECT_EQ(json["chunks"]["ChunkExposureTime"], 500.0);
        EXPECT_EQ(json["chunks"]["ChunkPixelFormat"], "Mono12");
        EXPECT_FALSE(json["chunks"].contains("ChunkEnable"));
    }
}

TEST_P(ZqChunks, ModeIsPutBack) {
    const ZqTool::Library library;
    const ZqTool::Camera camera(library, {GetParam(), {"ChunkSelector=Gain"}}, {tool.out, tool.err, false});
    const auto value = [&](const char* name) {
        return std::string(
            ZqTool::FindFeature(camera.Features(), name, camera.Id()).ToString(false, true).c_str());
    };
    {
        const ZqTool::ChunkMode chunks(camera);
        EXPECT_EQ(value("ChunkModeActive"), "1");
        ZqTool::SetFeature(camera.Features(), "ChunkSelector", "Gain", camera.Id());
        EXPECT_EQ(value("ChunkEnable"), "1");
        ZqTool::SetFeature(camera.Features(), "ChunkSelector", "Width", camera.Id());
    }
    EXPECT_EQ(value("ChunkModeActive"), "0");
    EXPECT_EQ(value("ChunkSelector"), "Gain");
    EXPECT_EQ(value("ChunkEnable"), "0");
}

INSTANTIATE_TEST_SUITE_P(Cameras, ZqChunks, testing::ValuesIn(allCameras), CameraName);

} // namespace
