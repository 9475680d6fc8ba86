#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>

#include <dlfcn.h>
#include <unistd.h>

#include <zip.h>

#include "tests/unit/ZqApi_TL/ModuleTree.h"

namespace ZqTest {
namespace {

namespace fs = std::filesystem;

/// A folder with whatever the test puts there as the default vendor's producer, alone on the search path.
class BadProducerFile : public testing::Test {
protected:
    BadProducerFile() : m_Folder(fs::temp_directory_path() / ("zqapi_bad_" + std::to_string(::getpid()))) {
        fs::create_directories(m_Folder);
        setenv("GENICAM_GENTL64_PATH", m_Folder.c_str(), 1);
    }

    ~BadProducerFile() override {
        fs::remove_all(m_Folder);
        unsetenv("GENICAM_GENTL64_PATH");
    }

    fs::path File() const { return m_Folder / "libzqgentl.cti"; }
    static IZqSystemReleasable* Open() {
        return CreateIZqSystem(ZqSystemVendor_Default, ZqInterfaceType_All);
    }

    Library library;

private:
    fs::path m_Folder;
};

TEST_F(BadProducerFile, MissingOneIsNotFound) {
    EXPECT_EQ(Catch<GenICam::RuntimeException>(Open).text, "File libzqgentl.cti not found.");
}

TEST_F(BadProducerFile, DanglingLinkIsNotFound) {
    fs::create_symlink("/nowhere/at/all.cti", File());
    EXPECT_EQ(Catch<GenICam::RuntimeException>(Open).text, "File libzqgentl.cti not found.");
}

TEST_F(BadProducerFile, TextFileIsReportedWithItsPathAndTheLoadersReason) {
    std::ofstream(File()) << "no library";
    try {
        Open();
        FAIL() << "nothing was thrown";
    } catch (const CZqLinuxErrorException& exception) {
        const std::string message = exception.GetDescription();
        EXPECT_EQ(message.find(File().string() + " ErrorCode=0x"), 0u) << message;
        EXPECT_NE(std::string(exception.GetFunctionName().c_str()).find("file too short"), std::string::npos);
        EXPECT_STREQ(exception.GetSourceFileName(), "ZqGenTLCommon/ZqGenTLLib");
    }
}

TEST_F(BadProducerFile, FolderOfThatNameIsLeftToTheLoader) {
    fs::create_directory(File());
    EXPECT_THROW(Open(), CZqLinuxErrorException);
}

TEST_F(BadProducerFile, LibraryWithoutTheFunctionsHasNoGCInitLib) {
    Dl_info library{};
    ASSERT_NE(dladdr(reinterpret_cast<void*>(&std::fopen), &library), 0);
    fs::create_symlink(fs::canonical(library.dli_fname), File());
    EXPECT_EQ(CatchProducerError(Open).text, "-1003 = GCInitLib()");
}

class BadDescription : public OpenedDevice {
protected:
    void SetUp() override {}

    /// Opens the device, whose camera offers these bytes under that name; says how it failed.
    std::string OpenWith(const std::string& fileName, const std::string& bytes) {
        producer.SetDescription("REMOTE", fileName, bytes);
        return Opening();
    }

    std::string OpenAt(const std::string& url) {
        producer.SetUrl("REMOTE", url);
        return Opening();
    }

private:
    std::string Opening() {
        std::string text;
        try {
            Open();
            return "opened";
        } catch (const GenICam::GenericException& exception) {
            text = exception.GetDescription();
        }
        EXPECT_NE(text, "");
        device.reset();
        system.reset();
        EXPECT_TRUE(producer.NothingOpen());
        return text;
    }
};

constexpr const char* CAMERA = R"(<?xml version="1.0"?><RegisterDescription ModelName="M" VendorName="V"
StandardNameSpace="None" SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1"
MinorVersion="0" SubMinorVersion="0" xmlns="http://www.genicam.org/GenApi/Version_1_1"><Category Name="Root">
<pFeature>Width</pFeature></Category><Integer Name="Width"><Value>640</Value></Integer><Port Name="Device"/>
</RegisterDescription>)";

std::string Zipped(const std::string& name, const std::string& content) {
    const std::string path = fs::temp_directory_path() / ("zqapi_" + std::to_string(::getpid()) + ".zip");
    int error = 0;
    zip_t* const archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    zip_file_add(archive, name.c_str(), zip_source_buffer(archive, content.data(), content.size(), 0), 0);
    EXPECT_EQ(zip_close(archive), 0);
    std::ifstream file(path, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(file)), {});
    std::remove(path.c_str());
    return bytes;
}

TEST_F(BadDescription, ZippedOneOpens) {
    EXPECT_EQ(OpenWith("camera.zip", Zipped("camera.xml", CAMERA)), "opened");
    GenApi::CIntegerPtr width = device->GetRemoteIZqPort()->GetINodeMap()->GetNode("Width");
    EXPECT_EQ(width->GetValue(), 640);
}

TEST_F(BadDescription, PlainOneNamedZipOpens) {
    EXPECT_EQ(OpenWith("camera.zip", CAMERA), "opened");
}

TEST_F(BadDescription, ZippedOneNamedXmlIsCutAtItsFirstNul) {
    EXPECT_NE(OpenWith("camera.xml", Zipped("camera.xml", CAMERA)), "opened");
}

TEST_F(BadDescription, TruncatedAnywhereIsRefused) {
    const std::string whole = CAMERA;
    for (size_t length = 0; length < whole.size() - 25; length += 37)
        EXPECT_NE(OpenWith("camera.xml", whole.substr(0, length)), "opened") << length;
}

TEST_F(BadDescription, RandomBytesAreRefused) {
    std::mt19937 random(1);
    for (const char* const name : {"camera.xml", "camera.zip"})
        for (int round = 0; round < 20; ++round) {
            std::string bytes(1000, '\0');
            for (char& byte : bytes)
                byte = static_cast<char>(random());
            EXPECT_NE(OpenWith(name, bytes), "opened");
        }
}

TEST_F(BadDescription, DamagedZipIsRefused) {
    std::string bytes = Zipped("camera.xml", CAMERA);
    bytes[bytes.size() / 2] ^= 0x55;
    bytes.resize(bytes.size() - 10);
    EXPECT_NE(OpenWith("camera.zip", bytes), "opened");
}

#ifdef ZQAPI_SLOWED_DOWN
constexpr size_t FAR_TOO_LARGE = 128u << 20;
#else
constexpr size_t FAR_TOO_LARGE = 1u << 30;
#endif

TEST_F(BadDescription, ZipThatUnpacksToGigabytesIsRefused) {
    // Deflate packs a thousand to one; the directory's word of its size must not be believed either way.
    const std::string bomb = Zipped("camera.xml", std::string(FAR_TOO_LARGE, ' '));
    ASSERT_LT(bomb.size(), 4u << 20);
    EXPECT_NE(OpenWith("camera.zip", bomb), "opened");
}

TEST_F(BadDescription, UrlThatLiesAboutItsLengthIsRefused) {
    EXPECT_EQ(OpenAt("local:camera.xml;10000;FFFFFFFFFFFFFFFF"), "std::bad_alloc");
    EXPECT_EQ(OpenAt("local:camera.xml;10000;40000001"), "std::bad_alloc");
    EXPECT_NE(OpenAt("local:camera.xml;10000"), "opened");
    EXPECT_NE(OpenAt("local:camera.xml;10000;20"), "opened");
    EXPECT_EQ(producer.Log("DevClose").size(), 4u);
}

TEST_F(BadDescription, ProducerThatReturnsMoreThanAskedForIsCutToTheRequest) {
    producer.Answer("GCReadPort").On("REMOTE").At(0x10000).Size(1u << 20);
    EXPECT_NO_THROW(Open());
}

TEST_F(BadDescription, UrlIsReadAsWrittenInTheField) {
    EXPECT_NE(OpenAt("Local:cam.zip;0x8000;1A00?SchemaVersion=1.1.0"), "opened");
    EXPECT_EQ(producer.Log("GCReadPort").back(), "GCReadPort(REMOTE1, 0x8000, 6656)");
    EXPECT_NE(OpenAt("foo:x.xml;10;20"), "opened");
    EXPECT_EQ(producer.Log("GCReadPort").back(), "GCReadPort(REMOTE1, 0x10, 32)");
}

} // namespace
} // namespace ZqTest
