#include "tools/zq/Demosaic.h"
#include "tools/zq/LumaChroma.h"

#include <gtest/gtest.h>

using namespace ZqTool;
using Samples = std::vector<uint16_t>;

namespace {

/// The colour of one pixel of luma and chroma.
Samples Rgb(ColourMatrix matrix, uint8_t luma, uint8_t blueChroma, uint8_t redChroma) {
    const LumaChroma layout{ZqApi::ZqPixelFormat_Unknown, matrix, 1, 3, {0}, 1, 2};
    Frame frame;
    frame.width = frame.height = 1;
    frame.bytes = {luma, blueChroma, redChroma};
    Picture picture;
    picture.samples.resize(3);
    ConvertToRgb(frame, layout, picture);
    return picture.samples;
}

TEST(ZqColour, FullRangeUsesAllValues) {
    EXPECT_EQ(Rgb(ColourMatrix::FullBt601, 0, 128, 128), (Samples{0, 0, 0}));
    EXPECT_EQ(Rgb(ColourMatrix::FullBt601, 255, 128, 128), (Samples{255, 255, 255}));
    EXPECT_EQ(Rgb(ColourMatrix::FullBt601, 76, 85, 255), (Samples{254, 0, 0}));
    EXPECT_EQ(Rgb(ColourMatrix::FullBt601, 29, 255, 107), (Samples{0, 0, 254}));
}

TEST(ZqColour, NamedStandardsBeginAt16AndEndAt235) {
    for (const auto matrix : {ColourMatrix::Bt601, ColourMatrix::Bt709}) {
        EXPECT_EQ(Rgb(matrix, 16, 128, 128), (Samples{0, 0, 0}));
        EXPECT_EQ(Rgb(matrix, 235, 128, 128), (Samples{255, 255, 255}));
        EXPECT_EQ(Rgb(matrix, 255, 128, 128), (Samples{255, 255, 255}));
        EXPECT_EQ(Rgb(matrix, 0, 128, 128), (Samples{0, 0, 0}));
    }
}

// The colour bars of the standards.
TEST(ZqColour, StandardsDifferInTheirColours) {
    EXPECT_EQ(Rgb(ColourMatrix::Bt601, 81, 90, 240), (Samples{254, 0, 0}));
    EXPECT_EQ(Rgb(ColourMatrix::Bt601, 145, 54, 34), (Samples{0, 255, 1}));
    EXPECT_EQ(Rgb(ColourMatrix::Bt709, 63, 102, 240), (Samples{255, 1, 0}));
    EXPECT_EQ(Rgb(ColourMatrix::Bt709, 173, 42, 26), (Samples{0, 255, 1}));
}

Picture Mosaic(const std::string& phase, size_t width, size_t height, const Samples& samples) {
    Picture picture;
    picture.width = width;
    picture.height = height;
    picture.bits = 12;
    picture.bayerPhase = phase;
    picture.samples = samples;
    return picture;
}

TEST(ZqDemosaic, OneColourStaysItInEveryPhase) {
    for (const std::string phase : {"RG", "GR", "GB", "BG"}) {
        const std::string second = phase == "RG" ? "GB" : phase == "GR" ? "BG" : phase == "GB" ? "RG" : "GR";
        Samples samples;
        for (size_t y = 0; y < 5; ++y)
            for (size_t x = 0; x < 7; ++x) {
                const char colour = (y % 2 == 0 ? phase : second)[x % 2];
                samples.push_back(colour == 'R' ? 3000 : (colour == 'G' ? 2000 : 1000));
            }
        const Picture picture = Demosaic(Mosaic(phase, 7, 5, samples));
        ASSERT_EQ(picture.channels, 3U);
        EXPECT_EQ(picture.bayerPhase, "");
        for (size_t i = 0; i < picture.samples.size(); i += 3)
            ASSERT_EQ(Samples(picture.samples.begin() + static_cast<long>(i),
                              picture.samples.begin() + static_cast<long>(i + 3)),
                      (Samples{3000, 2000, 1000}))
                << phase << " pixel " << i / 3;
    }
}

// B G B
// G R G
// B G B
TEST(ZqDemosaic, MissingColoursAreMeansOfTheNearest) {
    const Picture picture = Demosaic(Mosaic("BG", 3, 3, {10, 20, 31, 40, 50, 60, 70, 80, 90}));
    const auto pixel = [&](size_t x, size_t y) {
        const uint16_t* at = picture.Line(y) + 3 * x;
        return Samples{at[0], at[1], at[2]};
    };
    EXPECT_EQ(pixel(1, 1), (Samples{50, 50, 50})); // green (20+40+60+80)/4, blue (10+31+70+90+2)/4
    EXPECT_EQ(pixel(1, 0), (Samples{50, 20, 21})); // blue beside (10+31)/2, rounded up
    EXPECT_EQ(pixel(0, 1), (Samples{50, 40, 40})); // blue above and below
    EXPECT_EQ(pixel(0, 0), (Samples{50, 30, 10})); // mirrored: green (20+20+40+40)/4
    EXPECT_EQ(pixel(2, 2), (Samples{50, 70, 90}));
}

TEST(ZqDemosaic, TinyMosaicsStayInside) {
    EXPECT_EQ(Demosaic(Mosaic("RG", 1, 1, {7})).samples.size(), 3U);
    EXPECT_EQ(Demosaic(Mosaic("RG", 2, 1, {7, 9})).samples.size(), 6U);
    EXPECT_EQ(Demosaic(Mosaic("GB", 1, 2, {7, 9})).samples.size(), 6U);
}

TEST(ZqDemosaic, GreyPicturesStayAsTheyAre) {
    const Picture picture = Demosaic(Mosaic("", 2, 1, {7, 9}));
    EXPECT_EQ(picture.channels, 1U);
    EXPECT_EQ(picture.samples, (Samples{7, 9}));
}

} // namespace
