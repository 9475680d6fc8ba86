// Pictures in every pixel format, against bytes worked out by hand from the layouts of the formats.

#include "Hex.h"
#include "producer/sim/Painter.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <set>

using namespace zqgentl;

namespace {

const PixelFormat& Format(const std::string& name) {
    size_t count = 0;
    const PixelFormat* formats = PixelFormats(count);
    for (size_t i = 0; i < count; ++i) {
        if (formats[i].name == name)
            return formats[i];
    }
    throw std::out_of_range(name);
}

Scene SceneOf(TestPattern pattern, uint32_t width = 8, uint32_t height = 1) {
    Scene scene;
    scene.pattern = pattern;
    scene.region = {0, 0, width, height};
    scene.sensorWidth = 8;
    scene.sensorHeight = 8;
    return scene;
}

std::vector<uint8_t> Draw(const Scene& scene, const std::string& name, uint64_t frameId = 0) {
    const PixelFormat& format = Format(name);
    std::vector<uint8_t> image(format.ImageSize(scene.region.width, scene.region.height), 0xEE);
    Painter painter;
    EXPECT_EQ(painter.Draw(scene, format, nullptr, frameId, image.data(), image.size()), image.size());
    return image;
}

struct Golden {
    const char* format;
    const char* bytes;
};

void ExpectPictures(TestPattern pattern, const std::vector<Golden>& table) {
    for (const Golden& golden : table)
        EXPECT_EQ(Draw(SceneOf(pattern), golden.format), FromHex(golden.bytes)) << golden.format;
}

} // namespace

TEST(Picture, GreyRampInEveryPacking) {
    ExpectPictures(TestPattern::GreyHorizontalRamp,
                   {{"Mono8", "00 01 02 03 04 05 06 07"},
                    {"Mono1p", "aa"},
                    {"Mono2p", "e4 e4"},
                    {"Mono4p", "10 32 54 76"},
                    {"Mono10", "0000 0100 0200 0300 0400 0500 0600 0700"},
                    {"Mono16", "0000 0100 0200 0300 0400 0500 0600 0700"},
                    {"Mono10p", "000420c000 041460c001"},
                    {"Mono12p", "001000 023000 045000 067000"},
                    {"Mono14p", "00400020000c0004400160001c00"},
                    {"Mono10Packed", "001000 003200 011001 013201"},
                    {"Mono12Packed", "001000 003200 005400 007600"},
                    {"BayerGB12", "0000 0100 0200 0300 0400 0500 0600 0700"}});
}

// White, yellow, cyan, green, magenta, red, blue, black.
TEST(Picture, ColourBarsInEveryOrder) {
    ExpectPictures(
        TestPattern::ColorBar,
        {{"RGB8", "ffffff ffff00 00ffff 00ff00 ff00ff ff0000 0000ff 000000"},
         {"BGR8", "ffffff 00ffff ffff00 00ff00 ff00ff 0000ff ff0000 000000"},
         {"RGBa8", "ffffffff ffff00ff 00ffffff 00ff00ff ff00ffff ff0000ff 0000ffff 000000ff"},
         {"BGRa12", "ff0fff0fff0fff0f 0000ff0fff0fff0f ff0fff0f0000ff0f 0000ff0f0000ff0f ff0f0000ff0fff0f "
                    "00000000ff0fff0f ff0f00000000ff0f 000000000000ff0f"},
         {"RGB10p32", "ffffff3f ffff0f00 00fcff3f 00fc0f00 ff03f03f ff030000 0000f03f 00000000"},
         {"CBGR10p32", "ffffff3f 00fcff3f ffff0f00 00fc0f00 ff03f03f 0000f03f ff030000 00000000"},
         {"RGB8_Planar", "ffff0000ffff0000 ffffffff00000000 ff00ff00ff00ff00"},
         {"RGB12p", "ffffffffffffff0f0000f0ffff0f00ff0f00ff0f00ffffff000000000000ff0f00000000"},
         {"BayerRG8", "ff ff 00 ff ff 00 00 00"},
         {"BayerGR8", "ff ff ff 00 00 ff 00 00"},
         {"BayerGB8", "ff 00 ff 00 00 00 00 00"},
         {"BayerBG8", "ff ff ff ff ff 00 ff 00"},
         {"Mono8", "ff e1 b2 95 69 4c 1d 00"}});
}

TEST(Picture, LumaAndChromaByTheirMatrix) {
    Scene red = SceneOf(TestPattern::ColorBar);
    red.region.x = 5;
    const auto first = [&](const char* format) {
        const std::vector<uint8_t> image = Draw(red, format);
        return ToHex(image.data(), 3);
    };
    EXPECT_EQ(first("YCbCr8"), "4c55ff");
    EXPECT_EQ(first("YCbCr8_CbYCr"), "554cff");
    EXPECT_EQ(first("YUV8_UYV"), "554cff");
    EXPECT_EQ(first("YCbCr601_8_CbYCr"), "5a51f0");
    EXPECT_EQ(first("YCbCr709_8_CbYCr"), "663ff0");
}

// The chroma of two pixels is that of their mean: here of white and yellow.
TEST(Picture, LumaAndChromaInTheirOrder) {
    const auto first = [&](const char* format, size_t size) {
        const std::vector<uint8_t> image = Draw(SceneOf(TestPattern::ColorBar), format);
        return ToHex(image.data(), size);
    };
    EXPECT_EQ(first("YUV422_8", 4), "ff40e28a");
    EXPECT_EQ(first("YCbCr422_8", 4), "ff40e28a");
    EXPECT_EQ(first("YUV422_8_UYVY", 4), "40ff8ae2");
    EXPECT_EQ(first("YCbCr422_8_CbYCrY", 4), "40ff8ae2");
    // Lumas of white, yellow, cyan and green around the chromas of their mean.
    EXPECT_EQ(first("YCbCr411_8", 6), "ffe256b3964b");
    EXPECT_EQ(first("YUV411_8_UYYVYY", 6), "56ffe24bb396");
}

TEST(Picture, BayerLinesAlternate) {
    const std::vector<uint8_t> image = Draw(SceneOf(TestPattern::ColorBar, 8, 2), "BayerRG8");
    EXPECT_EQ(ToHex(image.data() + 8, 8), "ff00ff0000000000");
}

TEST(Picture, MovesByOnePixelPerFrame) {
    EXPECT_EQ(Draw(SceneOf(TestPattern::GreyDiagonalRampMoving, 8, 2), "Mono8", 250),
              FromHex("fafbfcfdfeff0001 fbfcfdfeff000102"));
    EXPECT_EQ(Draw(SceneOf(TestPattern::GreyHorizontalRampMoving), "Mono12", 4095),
              FromHex("ff0f 0000 0100 0200 0300 0400 0500 0600"));
}

TEST(Picture, StillPatternsStayAndMovingOnesMove) {
    for (int64_t pattern = 0; pattern < testPatternCount; ++pattern) {
        const Scene scene = SceneOf(static_cast<TestPattern>(pattern), 8, 8);
        const bool moved = Draw(scene, "RGB8", 3) != Draw(scene, "RGB8", 4);
        static const std::set<int64_t> still = {3, 4, 5, 6, 7, 8, 14, 16};
        EXPECT_EQ(moved, still.count(pattern) == 0) << pattern;
        EXPECT_EQ(Draw(scene, "RGB8", 3), Draw(scene, "RGB8", 3));
    }
}

TEST(Picture, NoiseFollowsFromItsSeed) {
    Scene scene = SceneOf(TestPattern::Noise, 8, 8);
    const std::vector<uint8_t> first = Draw(scene, "Mono8");
    scene.seed = 1;
    EXPECT_NE(Draw(scene, "Mono8"), first);
    scene.seed = 0;
    EXPECT_EQ(Draw(scene, "Mono8"), first);
}

/// What is copied in one piece is what is worked out pixel by pixel for a picture that is reversed.
TEST(Picture, CopiedLinesAreThoseOfTheReversedPicture) {
    for (uint32_t pattern = 0; pattern < testPatternCount; ++pattern) {
        Scene scene = SceneOf(static_cast<TestPattern>(pattern), 21, 3);
        scene.sensorWidth = 64;
        scene.region.x = 5;
        const std::vector<uint8_t> plain = Draw(scene, "Mono8", 3);
        scene.reverseX = true;
        scene.region.x = scene.sensorWidth - 21 - 5;
        std::vector<uint8_t> reversed = Draw(scene, "Mono8", 3);
        for (size_t row = 0; row < 3; ++row)
            std::reverse(reversed.begin() + 21 * row, reversed.begin() + 21 * (row + 1));
        EXPECT_EQ(plain, reversed) << pattern;
    }
}

/// Lines that are put together from equal pieces are those that are drawn pixel by pixel where nothing fits.
TEST(Picture, LongLinesAreThoseOfTheirPieces) {
    for (const char* name : {"Mono8", "BayerRG8", "RGB8", "YCbCr422_8", "YCbCr411_8_CbYYCrYY"}) {
        Scene scene = SceneOf(TestPattern::ColorRampMoving, 640, 4);
        scene.sensorWidth = 2000;
        scene.binningX = 3;
        const std::vector<uint8_t> whole = Draw(scene, name, 7);
        const size_t lineSize = whole.size() / 4;
        for (uint32_t start = 0; start < 640; start += 128) {
            scene.region.x = start;
            scene.region.width = 128;
            const std::vector<uint8_t> piece = Draw(scene, name, 7);
            const size_t size = lineSize / 5;
            for (size_t row = 0; row < 4; ++row)
                EXPECT_EQ(std::memcmp(&piece[row * size], &whole[row * lineSize + start / 128 * size], size),
                          0)
                    << name << start;
        }
    }
}

TEST(Picture, ReverseAndBinning) {
    Scene scene = SceneOf(TestPattern::GreyDiagonalRamp, 8, 2);
    scene.reverseX = true;
    EXPECT_EQ(Draw(scene, "Mono8"), FromHex("0706050403020100 0807060504030201"));
    scene.reverseX = false;
    scene.reverseY = true;
    EXPECT_EQ(Draw(scene, "Mono8"), FromHex("0708090a0b0c0d0e 060708090a0b0c0d"));
    scene.reverseY = false;
    scene.region.width = 4;
    scene.binningX = 2;
    scene.binningY = 4;
    EXPECT_EQ(Draw(scene, "Mono8"), FromHex("00020406 0406080a"));
}

TEST(Picture, CutOffKeepsItsStart) {
    for (const char* name : {"Mono8", "RGB8", "Mono10p", "RGB8_Planar"}) {
        const Scene scene = SceneOf(TestPattern::ColorRampMoving, 8, 4);
        const std::vector<uint8_t> whole = Draw(scene, name);
        std::vector<uint8_t> part(whole.size() - 3, 0);
        Painter painter;
        EXPECT_EQ(painter.Draw(scene, Format(name), nullptr, 0, part.data(), part.size()), part.size());
        EXPECT_TRUE(std::equal(part.begin(), part.end(), whole.begin())) << name;
    }
}

TEST(Picture, EveryFormatHasItsSize) {
    size_t count = 0;
    const PixelFormat* formats = PixelFormats(count);
    EXPECT_EQ(count, 98U);
    std::set<uint32_t> codes;
    for (size_t i = 0; i < count; ++i) {
        EXPECT_TRUE(codes.insert(formats[i].code).second) << formats[i].name;
        const std::vector<uint8_t> image = Draw(SceneOf(TestPattern::White, 8, 8), formats[i].name);
        EXPECT_EQ(image.size(), 8U * formats[i].BitsPerPixel());
        EXPECT_NE(image.back(), 0xEE) << formats[i].name;
    }
}

TEST(Picture, OnlyGigEVisionHasItsOwnFormats) {
    EXPECT_EQ(FindPixelFormat(Technology::Usb3Vision, 0x010C0006), nullptr);
    EXPECT_STREQ(FindPixelFormat(Technology::GigEVision, 0x010C0006)->name, "Mono12Packed");
    EXPECT_EQ(FindPixelFormat(Technology::GigEVision, 0x01080002), nullptr);
}

TEST(Picture, ToneKeepsBlackAndWhiteWhateverTheDepth) {
    ToneSettings settings;
    settings.gamma = 4;
    const ToneCurve tone = MakeToneCurve(settings);
    for (const char* name : {"Mono1p", "Mono2p", "Mono4p", "Mono8", "Mono10p", "Mono12Packed", "Mono16"}) {
        for (const TestPattern pattern : {TestPattern::Black, TestPattern::White}) {
            const PixelFormat& format = Format(name);
            const std::vector<uint8_t> plain = Draw(SceneOf(pattern), name);
            std::vector<uint8_t> image(plain.size());
            Painter().Draw(SceneOf(pattern), format, tone, 0, image.data(), image.size());
            EXPECT_EQ(image, plain) << name;
        }
    }
}
