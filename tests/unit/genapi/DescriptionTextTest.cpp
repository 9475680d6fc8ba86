// From the bytes that a device or a file holds to the text of a description.
#include "Camera.h"
#include "TemporaryFile.h"
#include "ZipArchive.h"

#include <filesystem>

using namespace GenICam;
using namespace GenApi;

namespace {

std::string WithToolTip(const std::string& text) {
    return Describe(::Node("Integer", "Width", "<ToolTip>" + text + "</ToolTip><Value>640</Value>"));
}

/// The tool tip of Width, which is 640.
std::string ToolTip(const std::string& bytes) {
    CNodeMapRef map(
        CNodeMapFactory(ContentType_Xml, bytes.data(), bytes.size(), CacheUsage_Ignore).CreateNodeMap("D"));
    EXPECT_EQ(CIntegerPtr(map._GetNode("Width"))->GetValue(), 640);
    return map._GetNode("Width")->GetToolTip().c_str();
}

std::string Refusal(const std::string& bytes) {
    return Failure<RuntimeException>([&] {
        CNodeMapFactory(ContentType_Xml, bytes.data(), bytes.size(), CacheUsage_Ignore).Preprocess();
    });
}

std::string Utf16(const std::u16string& text, bool little, bool mark) {
    std::string bytes;
    for (const char16_t unit : (mark ? u"\uFEFF" : u"") + text) {
        const auto low = static_cast<char>(unit & 0xFF);
        const auto high = static_cast<char>(unit >> 8);
        bytes += little ? std::string{low, high} : std::string{high, low};
    }
    return bytes;
}

/// The description with some units in its tool tip.
std::u16string Units(const std::u16string& toolTip) {
    const std::string xml = WithToolTip("@");
    std::u16string text(xml.begin(), xml.end());
    return text.replace(text.find(u'@'), 1, toolTip);
}

void Patch(std::string& bytes, size_t at, const std::string& with) {
    bytes.replace(at, with.size(), with);
}

} // namespace

TEST(DescriptionText, Utf16OfEitherOrderIsRead) {
    for (const bool little : {true, false})
        for (const bool mark : {true, false})
            EXPECT_EQ(ToolTip(Utf16(Units(u"a\u00B0\u20AC\U0001F4F7"), little, mark)),
                      "a\xC2\xB0\xE2\x82\xAC\xF0\x9F\x93\xB7")
                << little << mark;
}

TEST(DescriptionText, Utf16EndsAtPaddingAndTellsLoneSurrogates) {
    const std::u16string high(1, char16_t{0xD83D});
    const std::u16string low(1, char16_t{0xDC00});
    EXPECT_EQ(ToolTip(Utf16(Units(high + u"x" + low + u"y\uE000"), true, true)),
              "\xEF\xBF\xBDx\xEF\xBF\xBDy\xEE\x80\x80");
    EXPECT_EQ(ToolTip(Utf16(Units(high + u"\uE000"), true, true)), "\xEF\xBF\xBD\xEE\x80\x80");
    EXPECT_EQ(ToolTip(Utf16(Units(u"a") + std::u16string(4, u'\0') + u"garbage", true, false)), "a");
    EXPECT_EQ(ToolTip(Utf16(Units(u"a") + high, true, true)), "a");
}

TEST(DescriptionText, OtherBytesAreWindowsSigns) {
    EXPECT_EQ(ToolTip(WithToolTip("\x85 \x9F \xA0\xFF \xE2\x82")),
              "\xE2\x80\xA6 \xC5\xB8 \xC2\xA0\xC3\xBF \xC3\xA2\xE2\x80\x9A");
    EXPECT_EQ(ToolTip(WithToolTip("\xC2\xB5 \xE2\x82\xAC \xF0\x9F\x93\xB7")),
              "\xC2\xB5 \xE2\x82\xAC \xF0\x9F\x93\xB7");
}

TEST(DescriptionText, ArchiveMayStandBehindAHeader) {
    const std::string zip = Zip({{"cam.xml", WithToolTip("far")}});
    EXPECT_EQ(ToolTip("HEADER of some bytes" + zip), "far");
    EXPECT_EQ(ToolTip("HEADER" + zip + std::string(100, '\0')), "far");
    EXPECT_EQ(ToolTip(std::string("PK\x03\x04", 4) + zip), "far"); // a header that looks like an entry
    EXPECT_EQ(ToolTip("HEADER" + Zip({{"cam.xml", WithToolTip("stored")}}, ZIP_CM_STORE)), "stored");
}

TEST(DescriptionText, SignsOfAnArchiveAloneAreNone) {
    EXPECT_NE(Refusal("HEADER" + std::string("PK\x03\x04 and nothing else", 22)).find("not well-formed XML"),
              std::string::npos);
}

TEST(DescriptionText, ArchiveMayEndInAComment) {
    std::string zip = Zip({{"cam.xml", WithToolTip("x")}});
    Patch(zip, zip.size() - 2, std::string("\x05\0", 2));
    EXPECT_EQ(ToolTip(zip + "Hello" + std::string(50, '\0')), "x");
}

TEST(DescriptionText, FirstDescriptionInAnArchiveIsTaken) {
    const std::string xml = WithToolTip("right");
    EXPECT_EQ(
        ToolTip(Zip({{"__MACOSX/cam.xml", "no"}, {"a/._cam.xml", "no"}, {".xml", "no"}, {"b.xml", xml}})),
        "right");
    EXPECT_EQ(ToolTip(Zip({{"folder/", ""}, {"first", xml}, {"second", "no"}})), "right");
}

TEST(DescriptionText, ArchiveThatCannotBeUnpackedIsRefused) {
    const std::string good = Zip({{"cam.xml", WithToolTip("x")}});
    std::string method = good;
    Patch(method, 8, "\x16");
    Patch(method, method.find("PK\x01\x02") + 10, "\x16");
    EXPECT_EQ(Refusal(method).find("The zipped description can't be unpacked: "), 0u);
    std::string data = good;
    Patch(data, 30 + 7, std::string(40, '\xFF'));
    EXPECT_EQ(Refusal(data).find("The zipped description can't be unpacked: "), 0u);
}

TEST(DescriptionText, WhatIsTooLargeIsRefused) {
    EXPECT_EQ(Refusal(std::string(size_t{64} * 1024 * 1024 + 1, ' ')),
              "The description is larger than 67108864 bytes.");
    const TemporaryFile file("<RegisterDescription/>");
    std::filesystem::resize_file(file.Path(), size_t{65} * 1024 * 1024);
    const auto load = [&] { CNodeMapFactory(ContentType_Xml, file.Path().c_str()).Preprocess(); };
    EXPECT_EQ(Failure<RuntimeException>(load), "The description is larger than 67108864 bytes.");
}

TEST(DescriptionText, LongFilesAreReadWhole) {
    const std::string text(size_t{4} * 1024 * 1024, 'x');
    const TemporaryFile file(WithToolTip(text));
    CNodeMapRef map(
        CNodeMapFactory(ContentType_Xml, gcstring(file.Path().c_str()), CacheUsage_Ignore).CreateNodeMap());
    EXPECT_TRUE(map._GetNode("Width")->GetToolTip() == text.c_str());
}

TEST(DescriptionText, FilesThatCannotBeReadAreNamed) {
    const std::string folder = testing::TempDir();
    EXPECT_EQ(Failure<RuntimeException>([&] { CNodeMapFactory(ContentType_Xml, folder.c_str()); }),
              "The description file '" + folder + "' can't be read.");
    EXPECT_EQ(Failure<RuntimeException>([&] { CNodeMapFactory(ContentType_Xml, (folder + "none").c_str()); }),
              "The description file '" + folder + "none' can't be opened.");
    EXPECT_EQ(Failure<InvalidArgumentException>([&] { CNodeMapFactory(ContentType_Xml, nullptr, 5); }),
              "The description is a null pointer.");
}
