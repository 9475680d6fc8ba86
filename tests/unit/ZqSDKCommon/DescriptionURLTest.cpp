#include <gtest/gtest.h>

#include "ZqSDKCommon/DescriptionURL.h"
#include "ZqSDKCommon/ZqXMLFile.h"

namespace ZqApi {
namespace {

TEST(DescriptionUrl, SchemeIsComparedWithoutCaseAndUnknownOnesAreLocal) {
    EXPECT_EQ(ParseURLLocation("local:a.xml;0;1"), 0);
    EXPECT_EQ(ParseURLLocation("LOCAL:a.xml"), 0);
    EXPECT_EQ(ParseURLLocation("http:a.xml"), 1);
    EXPECT_EQ(ParseURLLocation("Http://host/a.xml"), 1);
    EXPECT_EQ(ParseURLLocation("File:a.xml"), 2);
    EXPECT_EQ(ParseURLLocation("foo:a.xml"), 0);
    EXPECT_EQ(ParseURLLocation("http"), 0);
    EXPECT_EQ(ParseURLLocation(""), 0);
}

TEST(DescriptionUrl, PathLiesBetweenTheFirstColonAndTheFirstSemicolon) {
    EXPECT_STREQ(ParseURLFilePath("local:camera.zip;10000;3A2F").c_str(), "camera.zip");
    EXPECT_STREQ(ParseURLFilePath("local:///cam.xml;0;1").c_str(), "///cam.xml");
    EXPECT_STREQ(ParseURLFilePath("camera.xml;0;1").c_str(), "camera.xml");
    EXPECT_STREQ(ParseURLFilePath("local:camera.xml").c_str(), "camera.xml");
    EXPECT_STREQ(ParseURLFilePath("camera.xml").c_str(), "camera.xml");
    EXPECT_STREQ(ParseURLFilePath(";local:x").c_str(), "");
    EXPECT_STREQ(ParseURLFilePath("local: cam.xml ;0;1").c_str(), " cam.xml ");
}

TEST(DescriptionUrl, NumbersAreHexadecimalWithOrWithoutPrefix) {
    EXPECT_EQ(ParseURLLocalAddress("Local:cam.zip;0x8000;1A00?SchemaVersion=1.1.0"), 0x8000u);
    EXPECT_EQ(ParseURLLocalLength("Local:cam.zip;0x8000;1A00?SchemaVersion=1.1.0"), 0x1A00u);
    EXPECT_EQ(ParseURLLocalAddress("local:a.xml;0XfF;2"), 0xFFu);
    EXPECT_EQ(ParseURLLocalAddress("local:a.xml; 10; 20"), 0x10u);
    EXPECT_EQ(ParseURLLocalLength("local:a.xml; 10; 20"), 0x20u);
    EXPECT_EQ(ParseURLLocalAddress("local:a.xml;\t 10; 20"), 0x10u);
    EXPECT_EQ(ParseURLLocalAddress("local:a.xml;0F;1"), 0xFu);
    EXPECT_EQ(ParseURLLocalAddress("local:a.xml;1g;1"), 0x1u);
}

TEST(DescriptionUrl, MissingNumbersAreZero) {
    EXPECT_EQ(ParseURLLocalAddress("local:a.xml"), 0u);
    EXPECT_EQ(ParseURLLocalLength("local:a.xml;10"), 0u);
    EXPECT_EQ(ParseURLLocalAddress("local:a.xml;;20"), 0u);
    EXPECT_EQ(ParseURLLocalLength("local:a.xml;;20"), 0x20u);
    EXPECT_EQ(ParseURLLocalLength("local:a.xml;1;-5"), 0u);
    EXPECT_EQ(ParseURLLocalLength("local:a.xml;1; "), 0u);
    EXPECT_EQ(ParseURLLocalLength("local:a.xml;1;0"), 0u);
}

TEST(DescriptionUrl, NumbersSaturate) {
    EXPECT_EQ(ParseURLLocalLength("local:a.xml;0;FFFFFFFFFFFFFFFF"), UINT64_MAX);
    EXPECT_EQ(ParseURLLocalLength("local:a.xml;0;10000000000000000"), UINT64_MAX);
}

TEST(DescriptionUrl, FileNameIsCutAtBackslashesOnly) {
    EXPECT_STREQ(ParseURLFileName("dir\\sub\\cam.xml").c_str(), "cam.xml");
    EXPECT_STREQ(ParseURLFileName("///cam.xml").c_str(), "///cam.xml");
    EXPECT_STREQ(ParseURLFileName("cam.xml").c_str(), "cam.xml");
}

TEST(DescriptionUrl, ZipIsToldByTheLastThreeLetters) {
    EXPECT_TRUE(IsZipFileName("camera.zip"));
    EXPECT_TRUE(IsZipFileName("camera.ZiP"));
    EXPECT_TRUE(IsZipFileName("camerazip"));
    EXPECT_FALSE(IsZipFileName("camera.xml"));
    EXPECT_THROW(IsZipFileName("ip"), GenICam::OutOfRangeException);
}

TEST(XmlFile, NothingLoadedHasNoNameAndIsNotSaved) {
    CZqXMLFile file(nullptr, nullptr, GenApi::RW, "Test");
    const auto text = [](auto action) -> std::string {
        try {
            action();
        } catch (const GenICam::RuntimeException& exception) {
            return exception.GetDescription();
        }
        return "nothing was thrown";
    };
    EXPECT_EQ(text([&] { file.GetXMLFileName(); }), "XML File is not loaded.");
    EXPECT_EQ(text([&] { file.SaveToFile("/tmp/never-written.xml"); }), "XML File is not loaded.");
    EXPECT_EQ(file.GetNodeMap(), nullptr);
}

TEST(XmlFile, NothingCreatedHasNoPartsEither) {
    CZqXMLFile file(nullptr, nullptr, GenApi::RW, "Test");
    GenApi::CNodeMapRef part;
    file.CreateSubTreeNodeMap("Root", part, true);
    EXPECT_EQ(part._Ptr, nullptr);
    file.CreateNodeMapFactoryForChunkData("Root", true);
    EXPECT_FALSE(file.HasFactoryForChunkData());
    file.CreateSubTreeNodeMapForChunkData(part);
    EXPECT_EQ(part._Ptr, nullptr);
}

} // namespace
} // namespace ZqApi
