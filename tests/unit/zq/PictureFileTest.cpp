#include "tools/zq/ImageFile.h"

#include "tests/support/ImageBuffers.h"
#include "tests/unit/zq/Decoded.h"
#include "tests/unit/zq/Expected.h"
#include "tests/unit/zq/Tool.h"
#include "tools/zq/Failure.h"
#include "tools/zq/Library.h"
#include "tools/zq/PixelFormats.h"

#include <nlohmann/json.hpp>

#include <ctime>
#include <limits>
#include <set>

using namespace ZqApi;
using namespace ZqTool;

namespace {

/// An image of every format, of bytes without a pattern, written into files.
class ZqPictureFile : public testing::Test {
protected:
    static constexpr size_t width = 48;
    static constexpr size_t height = 7;

    void Make(EZqPixelFormatNamingConvention_t format, size_t alignment = 0) {
        buffer = ZqTest::MakeImage(format, width, height, alignment);
        IZqImage& image = *buffer->GetIZqImage();
        ZqTest::FillWithPattern(image);
        name = GetIZqPixelFormatInfo(format)->GetName().c_str();
        frame.number = 1;
        frame.CopyFrom(image, ZqTest::SizeOf(image));
        expected = ExpectedOf(image);
    }

    void Write(FileFormat format, bool demosaic = false) {
        WriteNumberedFile(frame, folder.Path(), {format, demosaic});
    }

    /// `scaled` as PNG and TIFF are.
    void Compare(const Decoded& decoded, bool scaled, size_t channels) {
        SCOPED_TRACE(name);
        ASSERT_EQ(decoded.width, width);
        ASSERT_EQ(decoded.height, height);
        ASSERT_EQ(decoded.channels, channels);
        ASSERT_EQ(decoded.samples.size(), width * height * channels);
        for (size_t i = 0; i < decoded.samples.size(); ++i) {
            const size_t from = i / channels * expected.channels + i % channels;
            const unsigned want = scaled ? expected.Scaled(from) : expected.samples[from];
            ASSERT_NEAR(decoded.samples[i], want, expected.converted ? 1 : 0) << "sample " << i;
        }
    }

    const Library library;
    const TemporaryFolder folder;
    ZqTest::ImageBuffer buffer;
    Frame frame;
    std::string name;
    Expected expected;
};

TEST_F(ZqPictureFile, EveryFormatOfTheCatalogueIsThere) {
    std::set<uint32_t> codes;
    for (const auto format : AllPixelFormats())
        codes.insert(format);
    EXPECT_EQ(codes.size(), 98U);
    EXPECT_EQ(FindPixelFormat("BayerRG12p"), ZqPixelFormat_BayerRG12p);
    EXPECT_EQ(FindPixelFormat("Mono9"), std::nullopt);
}

TEST_F(ZqPictureFile, PngHoldsTheComponentsOfEveryFormat) {
    for (const auto format : AllPixelFormats()) {
        Make(format);
        Write(FileFormat::Png);
        const Decoded decoded = ReadPng(folder.File("000001.png"));
        Compare(decoded, true, expected.channels);
        EXPECT_EQ(decoded.maximum, expected.bits > 8 ? 0xFFFFU : 0xFFU) << name;
        EXPECT_EQ(decoded.significantBits, expected.bits) << name;
        std::map<std::string, std::string> texts{{"PixelFormat", name}};
        if (!PhaseOf(name).empty())
            texts["BayerPhase"] = PhaseOf(name);
        EXPECT_EQ(decoded.texts, texts);
    }
}

TEST_F(ZqPictureFile, TiffHoldsTheComponentsOfEveryFormat) {
    for (const auto format : AllPixelFormats()) {
        Make(format);
        Write(FileFormat::Tiff);
        Decoded decoded = ReadTiff(folder.File("000001.tiff"));
        Compare(decoded, true, expected.channels);
        const std::string phase = PhaseOf(name).empty() ? "" : " BayerPhase=" + PhaseOf(name);
        EXPECT_EQ(decoded.texts["ImageDescription"], "PixelFormat=" + name + phase);
    }
}

TEST_F(ZqPictureFile, PnmHoldsTheNumbersOfEveryFormatAndTheirMaximum) {
    for (const auto format : AllPixelFormats()) {
        Make(format);
        Write(FileFormat::Pgm);
        const bool grey = expected.channels == 1;
        Decoded decoded = ReadPnm(folder.File(grey ? "000001.pgm" : "000001.ppm"));
        Compare(decoded, false, grey ? 1 : 3);
        EXPECT_EQ(decoded.maximum, (1U << expected.bits) - 1) << name;
        const std::string phase = PhaseOf(name).empty() ? "" : " BayerPhase=" + PhaseOf(name);
        EXPECT_EQ(decoded.texts["comment"], "# PixelFormat=" + name + phase);
    }
}

TEST_F(ZqPictureFile, NpyHoldsTheNumbersOfEveryFormatAndAJsonBesideItThePhase) {
    for (const auto format : AllPixelFormats()) {
        Make(format);
        Write(FileFormat::Npy);
        Compare(ReadNpy(folder.File("000001.npy")), false, expected.channels);
        const auto json = nlohmann::json::parse(ReadBytes(folder.File("000001.json")));
        EXPECT_EQ(json["pixel_format"], name);
        EXPECT_EQ(json["bits"], expected.bits);
        if (PhaseOf(name).empty())
            EXPECT_TRUE(json["bayer_phase"].is_null()) << name;
        else
            EXPECT_EQ(json["bayer_phase"], PhaseOf(name));
    }
}

TEST_F(ZqPictureFile, NpyHeaderSaysShapeAndSamples) {
    Make(ZqPixelFormat_Mono12);
    Write(FileFormat::Npy);
    EXPECT_EQ(ReadNpy(folder.File("000001.npy")).texts["header"],
              "{'descr': '<u2', 'fortran_order': False, 'shape': (7, 48), }");
    Make(ZqPixelFormat_BGRa8);
    Write(FileFormat::Npy);
    EXPECT_EQ(ReadNpy(folder.File("000001.npy")).texts["header"],
              "{'descr': '|u1', 'fortran_order': False, 'shape': (7, 48, 4), }");
}

TEST_F(ZqPictureFile, PaddingOfLinesIsLeftOut) {
    for (const auto format : {ZqPixelFormat_Mono10p, ZqPixelFormat_RGB12_Planar, ZqPixelFormat_YCbCr422_8}) {
        Make(format, 256);
        Write(FileFormat::Png);
        Compare(ReadPng(folder.File("000001.png")), true, expected.channels);
    }
}

TEST_F(ZqPictureFile, RawHoldsAllPlanesAsTheyLie) {
    Make(ZqPixelFormat_RGB8_Planar);
    Write(FileFormat::Raw);
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"000001_48x7_RGB8_Planar.raw"});
    const std::string bytes = ReadBytes(folder.File("000001_48x7_RGB8_Planar.raw"));
    IZqImage& image = *buffer->GetIZqImage();
    ASSERT_EQ(bytes.size(), ZqTest::SizeOf(image));
    EXPECT_EQ(std::memcmp(bytes.data(), ZqTest::BytesOf(image), bytes.size()), 0);
}

TEST_F(ZqPictureFile, DemosaicedPictureHasColoursAndNoPhase) {
    Make(ZqPixelFormat_BayerGB12p);
    Write(FileFormat::Png, true);
    const Decoded decoded = ReadPng(folder.File("000001.png"));
    ASSERT_EQ(decoded.channels, 3U);
    EXPECT_EQ(decoded.texts.count("BayerPhase"), 0U);
    // The pixel at (0, 0) is green, its right neighbour blue, the one below red.
    EXPECT_EQ(decoded.samples[1], expected.Scaled(0));
    EXPECT_EQ(decoded.samples[3 + 2], expected.Scaled(1));
    EXPECT_EQ(decoded.samples[3 * width], expected.Scaled(width));
}

TEST_F(ZqPictureFile, ChunksGoIntoAJsonBesideThePicture) {
    Make(ZqPixelFormat_Mono8);
    frame.chunks = R"({"ChunkGain":1.5})";
    Write(FileFormat::Png);
    const auto json = nlohmann::json::parse(ReadBytes(folder.File("000001.json")));
    EXPECT_EQ(json["chunks"]["ChunkGain"], 1.5);
    Write(FileFormat::Raw);
    EXPECT_EQ(nlohmann::json::parse(ReadBytes(folder.File("000001.json")))["width"], width);
}

TEST_F(ZqPictureFile, ImageThatExceedsItsMemoryIsRefused) {
    Make(ZqPixelFormat_Mono16);
    IZqImage& image = *buffer->GetIZqImage();
    try {
        frame.CopyFrom(image, ZqTest::SizeOf(image) - 1);
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_STREQ(failure.what(), "its buffer holds only 671 bytes");
    }
}

TEST_F(ZqPictureFile, FullDiskIsReported) {
    Make(ZqPixelFormat_Mono8);
    for (const auto format : {FileFormat::Png, FileFormat::Tiff, FileFormat::Pgm, FileFormat::Npy})
        EXPECT_THROW(WriteImageFile(frame, "/dev/full", {format, false}), Failure)
            << static_cast<int>(format);
}

#ifndef ZQAPI_SLOWED_DOWN
/// Of this thread, so that other programs don't count.
double ProcessorMs() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

TEST_F(ZqPictureFile, FullHdFramesAreUnpackedFast) {
    for (const auto format : AllPixelFormats()) {
        const auto image = ZqTest::MakeImage(format, 1920, 1080);
        Frame large;
        large.CopyFrom(*image->GetIZqImage(), std::numeric_limits<size_t>::max());
        double fastest = 1e9;
        for (int i = 0; i < 2; ++i) {
            const double begin = ProcessorMs();
            const Picture picture = Unpack(large);
            ASSERT_EQ(picture.width, 1920U);
            fastest = std::min(fastest, ProcessorMs() - begin);
        }
        const std::string name = GetIZqPixelFormatInfo(format)->GetName().c_str();
        EXPECT_LT(fastest, 100) << name;
        RecordProperty(name, std::to_string(fastest));
    }
}
#endif

} // namespace
