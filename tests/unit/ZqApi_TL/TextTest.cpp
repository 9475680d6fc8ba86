#include <clocale>
#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

#include "tests/unit/ZqApi_TL/ModuleTree.h"

namespace ZqTest {
namespace {

namespace fs = std::filesystem;

TEST(Text, NarrowOneIsCopied) {
    std::string source = "camera";
    const CZqString text(source.c_str());
    source[0] = 'C';
    EXPECT_STREQ(text.c_str(), "camera");
    EXPECT_STREQ(CZqString("").c_str(), "");
    EXPECT_DEATH(CZqString(static_cast<const char*>(nullptr)), "text != NULL");
    EXPECT_DEATH(CZqString(static_cast<const wchar_t*>(nullptr)), "text != NULL");
}

/// A locale that writes UTF-8, while the object lives.
class Utf8Locale {
public:
    Utf8Locale() : m_Former(std::setlocale(LC_ALL, nullptr)), m_Set(std::setlocale(LC_ALL, "C.UTF-8")) {}
    ~Utf8Locale() { std::setlocale(LC_ALL, m_Former.c_str()); }
    bool IsSet() const { return m_Set != nullptr; }

private:
    const std::string m_Former;
    const char* const m_Set;
};

TEST(Text, WideOneConvertsOnlyWhenEveryCharacterTakesFourBytes) {
    const Utf8Locale locale;
    if (!locale.IsSet())
        GTEST_SKIP() << "the system has no locale C.UTF-8";
    EXPECT_STREQ(CZqString(L"").c_str(), "");
    EXPECT_STREQ(CZqString(L"\U0001F4F7").c_str(), "\xF0\x9F\x93\xB7");
    EXPECT_STREQ(CZqString(L"\U0001F4F7\U00010000").c_str(), "\xF0\x9F\x93\xB7\xF0\x90\x80\x80");
    for (const wchar_t* const text : {L"a", L"camera", L"\u00E9", L"\u20AC", L"\U0001F4F7a"}) {
        const Thrown thrown = Catch<GenICam::RuntimeException>([text] { CZqString{text}; });
        EXPECT_EQ(thrown.text, "Unable to convert string.");
        EXPECT_EQ(thrown.source, "ZqApi_TL/ZqString");
    }
}

TEST(Text, WideOneThatTheLocaleCanNotWriteIsRefused) {
    EXPECT_EQ(Catch<GenICam::RuntimeException>([] { CZqString(L"\U0001F4F7"); }).text,
              "Unable to convert string.");
}

/// A folder of the test's own.
class Paths : public testing::Test {
protected:
    Paths() { fs::create_directory(folder); }
    ~Paths() override { fs::remove_all(folder); }

    static bool IsFolder(const std::string& name) { return fs::is_directory(name); }
    static void Make(const std::string& path, bool removeLastElement) {
        MakePath(path.c_str(), removeLastElement);
    }

    const std::string folder = testing::TempDir() + "zqapi_paths_" + std::to_string(::getpid());
};

TEST_F(Paths, LastElementGoesWhenAsked) {
    Make(folder + "/pictures/1.png", true);
    EXPECT_TRUE(IsFolder(folder + "/pictures"));
    EXPECT_FALSE(fs::exists(folder + "/pictures/1.png"));
    Make(folder + "/pictures/1.png", false);
    EXPECT_TRUE(IsFolder(folder + "/pictures/1.png"));
}

TEST_F(Paths, MissingParentsAreNotMade) {
    Make(folder + "/a/b", false);
    EXPECT_FALSE(fs::exists(folder + "/a"));
}

TEST_F(Paths, ExistingFolderStays) {
    Make(folder, false);
    EXPECT_TRUE(IsFolder(folder));
}

TEST_F(Paths, PermissionsAreThoseOfTheGroupLessTheUmask) {
    const mode_t former = ::umask(0);
    Make(folder + "/open", false);
    ::umask(former);
    struct stat status {};
    ASSERT_EQ(::stat((folder + "/open").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777u, 0775u);
}

TEST_F(Paths, NameWithoutSlashIsMadeAsItIs) {
    const fs::path former = fs::current_path();
    fs::current_path(folder);
    Make("plain", true);
    fs::current_path(former);
    EXPECT_TRUE(IsFolder(folder + "/plain"));
}

TEST_F(Paths, LeadingSlashIsNoPlaceToCut) {
    const std::string name = "/zqapi_" + std::to_string(::getpid());
    if (::access("/", W_OK) != 0)
        GTEST_SKIP() << "the root folder is not writable";
    Make(name, true);
    EXPECT_TRUE(IsFolder(name));
    fs::remove(name);
}

} // namespace
} // namespace ZqTest
