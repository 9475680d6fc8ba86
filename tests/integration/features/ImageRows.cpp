#include "Row.h"

#include <cmath>

namespace {

constexpr const char* acrossSensor = "GreyHorizontalRamp";
constexpr const char* downSensor = "GreyVerticalRamp";

void LookAcross(Rig& rig) {
    rig.GoFast();
    rig.Set("TestPattern", acrossSensor);
}

void LookDown(Rig& rig) {
    rig.GoFast();
    rig.Set("TestPattern", downSensor);
}

void SeeSize(Rig& rig, uint64_t width, uint64_t height) {
    const Frame frame = rig.One();
    EXPECT_EQ(frame.width, width);
    EXPECT_EQ(frame.height, height);
    EXPECT_EQ(frame.bytes.size(), width * height);
}

void SeePattern(Rig& rig, const Written& v) {
    const std::vector<Frame> frames = rig.Grab(2);
    const bool moves = v.text.find("Moving") != std::string::npos || v.text == "FrameCounter";
    EXPECT_EQ(frames[0].bytes != frames[1].bytes, moves);
    rig.Set("TestPattern", v.text == "Black" || v.text == "Picture" ? "White" : "Black");
    EXPECT_NE(rig.Grab(2)[1].bytes, frames[1].bytes);
}

/// A row of grey levels, each as it is, then as the table or the settings have made it.
void SeeLevels(Rig& rig, double (*expected)(double level, double setting), double setting) {
    const Frame frame = rig.One();
    for (const size_t level : {8, 64, 200})
        EXPECT_NEAR(frame[level], expected(static_cast<double>(level), setting), 1.0) << level;
}

void PrepareLevels(Rig& rig) {
    LookAcross(rig);
    rig.Set("Height", 1);
    rig.EnableChunk("Gain");
}

void SeeGain(Rig& rig, const Written& v) {
    const auto amplified = [](double level, double dB) {
        return std::min(255.0, level * std::pow(10, dB / 20));
    };
    SeeLevels(rig, amplified, v.real);
    Frame frame = rig.One();
    rig.Attach(frame);
    EXPECT_EQ(rig.Real("ChunkGain"), v.real);
}

void SeeBlackLevel(Rig& rig, const Written& v) {
    SeeLevels(
        rig, [](double level, double black) { return std::min(255.0, level + black); }, v.real);
}

void SeeGamma(Rig& rig, const Written& v) {
    SeeLevels(
        rig, [](double level, double gamma) { return 255 * std::pow(level / 255, gamma); }, v.real);
}

/// Every entry is the bits of its index, inverted.
std::string InvertedTable() {
    std::string table(256, '\0');
    for (size_t i = 0; i < table.size(); ++i)
        table[i] = static_cast<char>(~i);
    return table;
}

void PrepareTable(Rig& rig) {
    PrepareLevels(rig);
    rig.SetBytes("LUTValueAll", InvertedTable());
    rig.Set("LUTIndex", 8);
    rig.Set("LUTEnable", 1);
}

} // namespace

Rows ImageRows() {
    return {
        {Module::Camera, "Width", Seen::Image, "width of the image", Nothing,
         [](Rig& rig, const Written& v) { SeeSize(rig, static_cast<uint64_t>(v.whole), 480); }},
        {Module::Camera, "Height", Seen::Image, "height of the image", Nothing,
         [](Rig& rig, const Written& v) { SeeSize(rig, 640, static_cast<uint64_t>(v.whole)); }},
        {Module::Camera, "OffsetX", Seen::Image, "the sensor's column that the image begins with", LookAcross,
         [](Rig& rig, const Written& v) { EXPECT_EQ(rig.One()[0], v.whole % 256); }},
        {Module::Camera, "OffsetY", Seen::Image, "the sensor's row that the image begins with", LookDown,
         [](Rig& rig, const Written& v) { EXPECT_EQ(rig.One()[0], v.whole % 256); }},
        {Module::Camera, "BinningHorizontal", Seen::Image, "columns of the sensor from pixel to pixel",
         LookAcross,
         [](Rig& rig, const Written& v) {
             EXPECT_EQ(rig.Get("WidthMax"), rig.Get("SensorWidth") / v.whole);
             EXPECT_EQ(rig.One()[1], v.whole);
         }},
        {Module::Camera, "BinningVertical", Seen::Image, "rows of the sensor from pixel to pixel", LookDown,
         [](Rig& rig, const Written& v) {
             EXPECT_EQ(rig.Get("HeightMax"), rig.Get("SensorHeight") / v.whole);
             const Frame frame = rig.One();
             EXPECT_EQ(frame[frame.width], v.whole);
         }},
        {Module::Camera, "ReverseX", Seen::Image, "the image begins with the sensor's last column",
         LookAcross,
         [](Rig& rig, const Written& v) {
             EXPECT_EQ(rig.One()[0], v.whole != 0 ? (rig.Get("SensorWidth") - 1) % 256 : 0);
         }},
        {Module::Camera, "ReverseY", Seen::Image, "the image begins with the sensor's last row", LookDown,
         [](Rig& rig, const Written& v) {
             EXPECT_EQ(rig.One()[0], v.whole != 0 ? (rig.Get("SensorHeight") - 1) % 256 : 0);
         }},
        {Module::Camera, "PixelFormat", Seen::Image, "bits of a pixel, and what the chunk says",
         [](Rig& rig) {
             rig.GoFast();
             rig.EnableChunk("PixelFormat");
         },
         [](Rig& rig, const Written& v) {
             Frame frame = rig.One();
             rig.Attach(frame);
             EXPECT_EQ(rig.Get("ChunkPixelFormat"), v.whole);
             // The convention keeps the bits that a pixel takes in the third byte of its codes.
             EXPECT_EQ(frame.chunks[0].ChunkLength, size_t{640} * 480 / 8 * ((v.whole >> 16) & 0xFF));
         }},
        {Module::Camera, "ComponentSelector", Seen::Register, "ComponentEnable is that of the component",
         Nothing, [](Rig& rig, const Written& v) { EXPECT_EQ(rig.Get("ComponentEnable"), v.whole == 0); }},
        {Module::Camera, "ComponentEnable", Seen::Image, "the frame has a part for it",
         [](Rig& rig) {
             SmallAndFast(rig);
             rig.Set("ComponentSelector", "Confidence");
         },
         [](Rig& rig, const Written& v) { EXPECT_EQ(rig.One().parts, v.whole != 0 ? 2U : 0U); }},
        {Module::Camera, "TestPattern", Seen::Image, "what the image shows, and whether it moves",
         [](Rig& rig) { rig.GoFast(); }, SeePattern},
        {Module::Camera, "SimulationSeed", Seen::Image, "the noise of the image",
         [](Rig& rig) {
             SmallAndFast(rig);
             rig.Set("TestPattern", "Noise");
         },
         [](Rig& rig, const Written& v) {
             const std::vector<uint8_t> noise = rig.One().bytes;
             rig.Set("SimulationSeed", v.whole ^ 1);
             EXPECT_NE(rig.One().bytes, noise);
             rig.Set("SimulationSeed", v.whole);
             EXPECT_EQ(rig.One().bytes, noise);
         }},
        {Module::Camera, "Gain", Seen::Image, "levels of the image, and what the chunk says", PrepareLevels,
         SeeGain},
        {Module::Camera, "BlackLevel", Seen::Image, "levels of the image", PrepareLevels, SeeBlackLevel},
        {Module::Camera, "Gamma", Seen::Image, "levels of the image", PrepareLevels, SeeGamma},
        {Module::Camera, "LUTSelector", Seen::Own, "there is one table", Nothing, nullptr},
        {Module::Camera, "LUTEnable", Seen::Image, "levels are those of the table", PrepareTable,
         [](Rig& rig, const Written& v) { EXPECT_EQ(rig.One()[8], v.whole != 0 ? 247 : 8); }},
        {Module::Camera, "LUTIndex", Seen::Register, "LUTValue is that of the entry", PrepareTable,
         [](Rig& rig, const Written& v) { EXPECT_EQ(rig.Get("LUTValue"), 255 - v.whole); }},
        {Module::Camera, "LUTValue", Seen::Image, "the level that another one becomes", PrepareTable,
         [](Rig& rig, const Written& v) {
             const Frame frame = rig.One();
             EXPECT_EQ(frame[8], v.whole);
             EXPECT_EQ(frame[9], 246);
         }},
        {Module::Camera, "LUTValueAll", Seen::Image, "the levels that all others become", PrepareTable,
         [](Rig& rig, const Written& v) {
             const Frame frame = rig.One();
             for (size_t level = 0; level < 256; ++level)
                 EXPECT_EQ(frame[level], static_cast<uint8_t>(v.text[level]));
         }},
    };
}
