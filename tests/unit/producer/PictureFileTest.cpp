// Files written with other software, and what they show.

#include "Hex.h"
#include "producer/sim/Failure.h"
#include "producer/sim/PictureFolder.h"
#include "producer/sim/Scene.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

#include <unistd.h>

using namespace zqgentl;

namespace {

using Values = std::vector<uint16_t>;

std::vector<uint8_t> Bytes(const std::string& text) {
    return {text.begin(), text.end()};
}

const char* const rgbPng =
    "89504e470d0a1a0a0000000d4948445200000002000000020802000000fdd49a73000000164944415478da63"
    "f8cfc0c0f09f818991e1ff7f86ff001e0404ff4e509ec70000000049454e44ae426082";

const char* const packedTiff =
    "49492a001800000078da63646266616563e70000008000250900000103000100000004000000010103000100"
    "0000020000000201030001000000080000000301030001000000080000000601030001000000010000001101"
    "0400010000000800000015010300010000000100000016010300010000000200000017010400010000001000"
    "000000000000";

/// A folder of its own that goes with the test.
class Folder : public testing::Test {
protected:
    void SetUp() override { std::filesystem::create_directories(path); }
    void TearDown() override { std::filesystem::remove_all(path); }

    void Put(const char* name, const std::vector<uint8_t>& bytes) {
        std::ofstream file(path / name, std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }

    const std::filesystem::path path =
        std::filesystem::temp_directory_path() /
        ("zqgentl-" + std::to_string(getpid()) + "-" + std::to_string(reinterpret_cast<uintptr_t>(this)));
};

} // namespace

TEST(PictureFiles, PngInColour) {
    const PictureFile picture = DecodePicture(FromHex(rgbPng));
    EXPECT_EQ(picture.width, 2U);
    EXPECT_EQ(picture.height, 2U);
    EXPECT_EQ(picture.red, (Values{65535, 0, 0, 65535}));
    EXPECT_EQ(picture.green, (Values{0, 65535, 0, 65535}));
    EXPECT_EQ(picture.blue, (Values{0, 0, 65535, 65535}));
}

TEST(PictureFiles, PngOf16Bits) {
    const PictureFile picture = DecodePicture(
        FromHex("89504e470d0a1a0a0000000d49484452000000030000000110000000006e1b972b0000000f4944415478da63"
                "6464faf7a7910900080e02823c7f2c870000000049454e44ae426082"));
    EXPECT_EQ(picture.green, (Values{0x0102, 0xFFFE, 0x8000}));
}

TEST(PictureFiles, PngWithPalette) {
    const PictureFile picture = DecodePicture(
        FromHex("89504e470d0a1a0a0000000d49484452000000040000000102030000008452e75e00000009504c54450a141e"
                "28323c46505a16ac84740000000a4944415478da63900400001b001a835af7200000000049454e44ae426082"));
    EXPECT_EQ(picture.red, (Values{10 * 257, 40 * 257, 70 * 257, 40 * 257}));
    EXPECT_EQ(picture.blue, (Values{30 * 257, 60 * 257, 90 * 257, 60 * 257}));
}

TEST(PictureFiles, PngWithEveryFilter) {
    const PictureFile picture = DecodePicture(
        FromHex("89504e470d0a1a0a0000000d4948445200000004000000030800000000919ff11a000000174944415478da63"
                "e01291d36066e764e262d963edb503000aaf0281f0ce010b0000000049454e44ae426082"));
    Values expected;
    for (const int value : {10, 20, 30, 40, 12, 25, 29, 44, 200, 3, 77, 5})
        expected.push_back(static_cast<uint16_t>(value * 257));
    EXPECT_EQ(picture.red, expected);
}

TEST(PictureFiles, Tiff) {
    const PictureFile colour = DecodePicture(
        FromHex("49492a000e000000010203040506090000010300010000000200000001010300010000000100000002010300"
                "0100000008000000030103000100000001000000060103000100000002000000110104000100000008000000"
                "15010300010000000300000016010300010000000100000017010400010000000600000000000000"));
    EXPECT_EQ(colour.red, (Values{257, 4 * 257}));
    EXPECT_EQ(colour.blue, (Values{3 * 257, 6 * 257}));
    const PictureFile inverted = DecodePicture(
        FromHex("4d4d002a0000000c0001ffff0009010000030000000100020000010100030000000100010000010200030000"
                "0001001000000103000300000001000100000106000300000001000000000111000400000001000000080115"
                "0003000000010001000001160003000000010001000001170004000000010000000400000000"));
    EXPECT_EQ(inverted.red, (Values{65534, 0}));
}

TEST(PictureFiles, PngWithAlphaShowsItsColours) {
    const PictureFile colour = DecodePicture(
        FromHex("89504e470d0a1a0a0000000d49484452000000010000000110060000004f8518ca000000114944415478da63"
                "60646266616563600000006b0016b38eaf9d0000000049454e44ae426082"));
    EXPECT_EQ(colour.red, Values{0x0102});
    EXPECT_EQ(colour.blue, Values{0x0506});
    const PictureFile grey = DecodePicture(
        FromHex("89504e470d0a1a0a0000000d49484452000000020000000108040000005e2bb7010000000d4944415478da63"
                "e0fccfc1000003360111128917830000000049454e44ae426082"));
    EXPECT_EQ(grey.green, (Values{9 * 257, 8 * 257}));
}

TEST(PictureFiles, PngOf2Bits) {
    const PictureFile picture = DecodePicture(
        FromHex("89504e470d0a1a0a0000000d494844520000000400000001020000000096e748b00000000a4944415478da63"
                "900600001d001c237c8fac0000000049454e44ae426082"));
    EXPECT_EQ(picture.green, (Values{0, 21845, 43690, 65535}));
}

TEST(PictureFiles, PackedTiff) {
    EXPECT_EQ(DecodePicture(FromHex(packedTiff)).red, (Values{257, 514, 771, 1028, 1285, 1542, 1799, 2056}));
    const PictureFile runs = DecodePicture(
        FromHex("49492a0010000000fd05030102030400090000010300010000000400000001010300010000000200000002010300"
                "010000000800000003010300010000000580000006010300010000000100000011010400010000000800000015"
                "010300010000000100000016010300010000000200000017010400010000000700000000000000"));
    EXPECT_EQ(runs.blue, (Values{1285, 1285, 1285, 1285, 257, 514, 771, 1028}));
}

TEST(PictureFiles, Pnm) {
    EXPECT_EQ(DecodePicture(Bytes("P5 # grey\n2 1\n100\n\x32\x64")).red, (Values{32767, 65535}));
    const PictureFile picture = DecodePicture(Bytes(std::string("P6\n1 1\n65535\n\0\1\0\2\0\3", 19)));
    EXPECT_EQ(picture.red, Values{1});
    EXPECT_EQ(picture.blue, Values{3});
}

TEST(PictureFiles, ThatAreBrokenAreRefused) {
    const std::vector<uint8_t> png = FromHex(rgbPng);
    for (size_t size = 0; size < png.size() - 16; ++size)
        EXPECT_THROW(DecodePicture({png.begin(), png.begin() + static_cast<std::ptrdiff_t>(size)}), Failure)
            << size;
    EXPECT_THROW(DecodePicture(Bytes("P5 2 2 255\nabc")), Failure);
    EXPECT_THROW(DecodePicture(Bytes("P5 99999 2 255\nabc")), Failure);
    EXPECT_THROW(DecodePicture(Bytes(std::string("II*\0\xFF\xFF\xFF\xFF", 8))), Failure);
    EXPECT_THROW(DecodePicture(Bytes("GIF89a")), Failure);
}

TEST(PictureFiles, OfKindsThatAreNotReadAreRefused) {
    const char* const colourBeyondPalette =
        "89504e470d0a1a0a0000000d4948445200000002000000010803000000c3fc8fb800000009504c544501020301020301"
        "0203ee0196470000000b4944415478da6360600600000600048bf198fd0000000049454e44ae426082";
    EXPECT_THROW(DecodePicture(FromHex(colourBeyondPalette)), Failure);
    std::vector<uint8_t> tiff = FromHex(packedTiff);
    tiff[24 + 2 + 3 * 12 + 8] = 7; // packed as JPEG
    EXPECT_THROW(DecodePicture(tiff), Failure);
}

/// Whatever stands in a file, it is a picture or it is refused; no picture is larger than the files say.
TEST(PictureFiles, WithAnyByteChangedNeverBreakTheReader) {
    for (const char* hex : {rgbPng, packedTiff}) {
        const std::vector<uint8_t> good = FromHex(hex);
        size_t refused = 0;
        for (size_t i = 0; i < good.size(); ++i) {
            for (const int change : {0x01, 0x80, 0xFF}) {
                std::vector<uint8_t> bad = good;
                bad[i] = static_cast<uint8_t>(bad[i] ^ change);
                try {
                    const PictureFile picture = DecodePicture(bad);
                    EXPECT_EQ(picture.red.size(), size_t{picture.width} * picture.height);
                } catch (const Failure& failure) {
                    EXPECT_EQ(failure.Code(), GenTL::GC_ERR_INVALID_VALUE);
                    ++refused;
                }
            }
        }
        EXPECT_GT(refused, good.size());
    }
}

TEST_F(Folder, ShowsItsPicturesInTheOrderOfTheirNames) {
    Put("b.pgm", Bytes("P5 1 1 255\n\x20"));
    Put("a.png", FromHex(rgbPng));
    Put("readme.txt", Bytes("nothing"));
    Scene scene;
    scene.pattern = TestPattern::Picture;
    scene.region = {0, 0, 4, 4};
    scene.pictures = std::make_shared<const PictureFolder>(path.string());
    ASSERT_EQ(scene.pictures->Count(), 2U);
    uint16_t room[12];
    const ColourLine line = LookAt(scene, 0, 3, 8, room);
    EXPECT_EQ(Values(line.red, line.red + 4), (Values{0, 0, 255, 255}));
    EXPECT_EQ(Values(line.blue, line.blue + 4), (Values{255, 255, 255, 255}));
    EXPECT_EQ(LookAt(scene, 1, 0, 8, room).red[2], 0x20);
    EXPECT_EQ(LookAt(scene, 2, 0, 8, room).red[0], 255);
}

TEST_F(Folder, WithoutPicturesIsRefused) {
    EXPECT_THROW(PictureFolder(path.string()), Failure);
    EXPECT_THROW(PictureFolder((path / "none").string()), Failure);
    Put("broken.png", Bytes("no picture"));
    EXPECT_THROW(PictureFolder(path.string()), Failure);
}
