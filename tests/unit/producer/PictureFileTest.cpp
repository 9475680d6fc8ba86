// Files written with other software, and what they show.

#include "Hex.h"
#include "producer/sim/Failure.h"
#include "producer/sim/Inflate.h"
#include "producer/sim/PictureFolder.h"
#include "producer/sim/Scene.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

using namespace zqgentl;

namespace {

using Values = std::vector<uint16_t>;

std::vector<uint8_t> Bytes(const std::string& text) {
    return {text.begin(), text.end()};
}

std::string Unpack(const std::string& hex, size_t size) {
    const std::vector<uint8_t> packed = FromHex(hex);
    const std::vector<uint8_t> bytes = Inflate(packed.data(), packed.size(), size);
    return {bytes.begin(), bytes.end()};
}

const char* const rgbPng =
    "89504e470d0a1a0a0000000d4948445200000002000000020802000000fdd49a73000000164944415478da63"
    "f8cfc0c0f09f818991e1ff7f86ff001e0404ff4e509ec70000000049454e44ae426082";

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
        ("zqgentl-" + std::to_string(testing::UnitTest::GetInstance()->random_seed()) + "-" +
         std::to_string(reinterpret_cast<uintptr_t>(this)));
};

} // namespace

TEST(Unpacking, OfEveryKindOfBlock) {
    std::string text;
    for (int i = 0; i < 9; ++i)
        text += "the quick brown fox jumps over the lazy dog; ";
    for (int i = 0; i < 200; ++i)
        text += static_cast<char>('a' + i * i % 26);
    EXPECT_EQ(
        Unpack("78daedcacb0d80201045d1565e1f5603327e4018194190ea35f6e082c4e5cdb96921c4bc8e0e5ab8044c5c61"
               "b3df0ff04982f4f0a6da05c3f3f0d63f7f3f2b4d363657bd29c281a5185f5d8b96745f720351f4e881",
               text.size()),
        text);
    EXPECT_EQ(Unpack("78014b4c8481a44404130060000859", 22), "aaaaaaaaaabaaaaaaaaaab");
    EXPECT_EQ(Unpack("7801010600f9ff73746f726564093c0292", 6), "stored");
}

TEST(Unpacking, RefusesWhatIsBroken) {
    const std::string good = "7801010600f9ff73746f726564093c0292";
    EXPECT_THROW(Unpack(good, 5), Failure);
    EXPECT_THROW(Unpack(good, 7), Failure);
    EXPECT_THROW(Unpack("7801", 6), Failure);
    EXPECT_THROW(Unpack("780107", 6), Failure);
    EXPECT_THROW(Unpack("00000000", 6), Failure);
}

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
