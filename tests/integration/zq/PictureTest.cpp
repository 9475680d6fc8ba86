#include "tests/integration/zq/SimulatedCameras.h"
#include "tests/support/ImageBuffers.h"
#include "tests/unit/zq/Expected.h"
#include "tools/zq/Camera.h"
#include "tools/zq/PixelFormats.h"

#include <cstring>
#include <ostream>

using namespace ZqApi;

namespace {

// Sanitizers slow everything down; a part of the formats shows them what they look for.
#ifdef ZQAPI_SLOWED_DOWN
constexpr size_t everyOther = 7;
#else
constexpr size_t everyOther = 1;
#endif

class ZqPictures : public SimulatedCamera {
protected:
    /// A pixel format as the camera and as the library call it; they differ in those of GigE Vision alone.
    struct Offered {
        std::string entry;
        std::string name;
    };

    static std::vector<Offered> OfferedFormats() {
        const ZqTool::Library library;
        std::ostringstream unused;
        const ZqTool::Camera camera(library, {GetParam(), {}}, {unused, unused, false});
        GenApi::CEnumerationPtr pFormat = camera.Features().GetNode("PixelFormat");
        GenApi::StringList_t names;
        pFormat->GetSymbolics(names);
        std::vector<Offered> formats;
        for (size_t i = 0; i < names.size(); i += everyOther) {
            const auto code =
                static_cast<EZqPixelFormatNamingConvention_t>(pFormat->GetEntryByName(names[i])->GetValue());
            formats.push_back({names[i].c_str(), GetIZqPixelFormatInfo(code)->GetName().c_str()});
        }
        return formats;
    }

    /// What the library's pixel components say of the bytes in a raw file.
    Expected ExpectedOfRaw(const std::string& pixelFormat) {
        const std::string bytes = ReadBytes(folder.File("000001_64x16_" + pixelFormat + ".raw"));
        const ZqTool::Library library;
        const auto buffer = ZqTest::MakeImage(*ZqTool::FindPixelFormat(pixelFormat), 64, 16, 1);
        IZqImage& image = *buffer->GetIZqImage();
        if (bytes.size() != ZqTest::SizeOf(image))
            return {};
        std::memcpy(ZqTest::BytesOf(image), bytes.data(), bytes.size());
        return ExpectedOf(image);
    }

    static void Compare(const Decoded& decoded, const Expected& expected, bool scaled) {
        ASSERT_EQ(decoded.width, 64U);
        ASSERT_EQ(decoded.height, 16U);
        ASSERT_EQ(decoded.samples.size(), expected.samples.size());
        for (size_t i = 0; i < decoded.samples.size(); ++i)
            ASSERT_NEAR(decoded.samples[i], scaled ? expected.Scaled(i) : expected.samples[i],
                        expected.converted ? 1 : 0)
                << "sample " << i;
    }

    /// The colours in the middle of the eight bars.
    static std::vector<unsigned> BarColours(const Decoded& decoded) {
        std::vector<unsigned> colours;
        for (size_t bar = 0; bar < 8; ++bar)
            for (size_t i = 0; i < decoded.channels; ++i)
                colours.push_back(decoded.samples.at((8 * 64 + bar * 8 + 4) * decoded.channels + i));
        return colours;
    }
};

// Each camera writes another kind of file, in all formats that it offers.
TEST_P(ZqPictures, FilesHoldWhatTheLibrarysPixelComponentsSay) {
    const std::string camera = GetParam();
    const auto formats = OfferedFormats();
    ASSERT_GE(formats.size() * everyOther, 80U);
    for (const auto& [entry, format] : formats) {
        SCOPED_TRACE(format);
        ASSERT_TRUE(Grab(entry, {"--format", "raw"}));
        const Expected expected = ExpectedOfRaw(format);
        ASSERT_FALSE(expected.samples.empty());
        if (camera == "SIM-U3V-0001") {
            ASSERT_TRUE(Grab(entry, {"--format", "png"}));
            Decoded decoded = ReadPng(folder.File("000001.png"));
            Compare(decoded, expected, true);
            EXPECT_EQ(decoded.texts["BayerPhase"], PhaseOf(format));
        } else if (camera == "SIM-GEV-0001") {
            ASSERT_TRUE(Grab(entry, {"--format", "tiff"}));
            Compare(ReadTiff(folder.File("000001.tiff")), expected, true);
        } else {
            ASSERT_TRUE(Grab(entry, {"--format", "npy"}));
            Compare(ReadNpy(folder.File("000001.npy")), expected, false);
        }
    }
}

// Camera and tool know mosaics and matrices from different hands: they must give the same colours.
TEST_P(ZqPictures, ColoursDoNotDependOnTheFormat) {
    ASSERT_TRUE(Grab("RGB8", {}));
    const auto colours = BarColours(ReadPng(folder.File("000001.png")));
    ASSERT_EQ(colours.size(), 24U);
    for (const auto& [entry, format] : OfferedFormats()) {
        const bool isMosaic = !PhaseOf(format).empty();
        if (!isMosaic && format[0] != 'Y')
            continue;
        ASSERT_TRUE(Grab(entry, {"--demosaic"})) << format;
        const Decoded decoded = ReadPng(folder.File("000001.png"));
        ASSERT_EQ(decoded.channels, 3U) << format;
        const auto seen = BarColours(decoded);
        for (size_t i = 0; i < colours.size(); ++i)
            EXPECT_NEAR(decoded.maximum == 0xFFFF ? seen[i] >> 8 : seen[i], colours[i], 4)
                << format << " sample " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Cameras, ZqPictures, testing::ValuesIn(allCameras), CameraName);

} // namespace
