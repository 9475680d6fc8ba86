#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

namespace {

struct Result {
    int code;
    std::string out;
};

/// Runs the program with these words; what precedes them may set variables.
Result RunProgram(const std::string& arguments, const std::string& before = "unset GENICAM_GENTL64_PATH;") {
    std::FILE* pipe = popen((before + " '" ZQ_PROGRAM "' " + arguments + " 2>/dev/null").c_str(), "r");
    Result result{-1, {}};
    std::array<char, 4096> block{};
    while (const size_t count = std::fread(block.data(), 1, block.size(), pipe))
        result.out.append(block.data(), count);
    const int status = pclose(pipe);
    result.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

std::string Read(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(ZqProgram, FindsTheBuiltProducersCamerasByItself) {
    const Result result = RunProgram("list --json");
    ASSERT_EQ(result.code, 0);
    std::set<std::string> serials;
    const auto json = nlohmann::json::parse(result.out);
    for (const auto& iface : json["producers"][0]["interfaces"])
        for (const auto& device : iface["devices"])
            serials.insert(device["serial"]);
    EXPECT_EQ(serials, (std::set<std::string>{"SIM-U3V-0001", "SIM-GEV-0001", "SIM-CXP-0001"}));
}

class ZqProgramGrab : public testing::TestWithParam<const char*> {};

TEST_P(ZqProgramGrab, WritesPicturesThatDiffer) {
    std::string name = (std::filesystem::temp_directory_path() / "zq-program-XXXXXX").string();
    const std::filesystem::path folder = mkdtemp(name.data());
    const Result result = RunProgram(std::string("grab ") + GetParam() + " -n 3 -o " + folder.string());
    EXPECT_EQ(result.code, 0);
    EXPECT_NE(result.out.find(": 3 frames, 3 complete, 0 incomplete, "), std::string::npos) << result.out;
    std::set<std::string> pictures;
    for (const char* picture : {"000001.png", "000002.png", "000003.png"})
        pictures.insert(Read(folder / picture));
    EXPECT_EQ(pictures.size(), 3U);
    EXPECT_EQ(pictures.count(""), 0U);
    std::filesystem::remove_all(folder);
}

INSTANTIATE_TEST_SUITE_P(Cameras, ZqProgramGrab,
                         testing::Values("SIM-U3V-0001", "SIM-GEV-0001", "SIM-CXP-0001"));

TEST(ZqProgram, ExitCodes) {
    EXPECT_EQ(RunProgram("").code, 2);
    EXPECT_EQ(RunProgram("grab NO-SUCH-CAMERA").code, 3);
    EXPECT_EQ(RunProgram("list", "GENICAM_GENTL64_PATH=/nowhere").code, 3);
    EXPECT_EQ(RunProgram("grab --timeout 50", "GENICAM_GENTL64_PATH='" ZQ_SCRIPTED_FOLDER "/full'").code, 5);
    EXPECT_EQ(RunProgram("list", "GENICAM_GENTL64_PATH='" ZQ_SCRIPTED_FOLDER "/without_GCInitLib'").code, 1);
}

TEST(ZqProgram, InterruptEndsEventsWellAndGrabsNot) {
    const std::string after1s = "unset GENICAM_GENTL64_PATH; timeout --preserve-status -s INT 1";
    const Result events = RunProgram("events SIM-U3V-0001 FrameStart --acquire", after1s);
    EXPECT_EQ(events.code, 0);
    EXPECT_EQ(events.out.rfind("FrameStart 9C41 ", 0), 0U) << events.out;
    EXPECT_EQ(RunProgram("grab SIM-U3V-0001 -n 1000000", after1s).code, 1);
}

TEST(ZqProgram, ChartNeedsNoCamera) {
    EXPECT_EQ(RunProgram("chart Mono8 64x48 -o /dev/null.gif").code, 2);
    std::string name = (std::filesystem::temp_directory_path() / "zq-chart-XXXXXX").string();
    const std::filesystem::path folder = mkdtemp(name.data());
    EXPECT_EQ(RunProgram("chart Mono8 64x48 -o " + (folder / "a.pgm").string(), "").code, 0);
    EXPECT_EQ(Read(folder / "a.pgm").rfind("P5\n# PixelFormat=Mono8\n64 48\n255\n", 0), 0U);
    std::filesystem::remove_all(folder);
}

} // namespace
