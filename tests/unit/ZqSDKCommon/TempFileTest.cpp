#include "ZqSDKCommon/TempFile.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "tests/unit/ZqSDKCommon/SystemCalls.h"

using ZqApi::openTempFile;

namespace {

class TempFile : public testing::Test {
protected:
    TempFile() {
        if (const char* const folder = std::getenv("TMPDIR"))
            m_Before = folder;
        unsetenv("TMPDIR");
    }
    ~TempFile() override { m_Before ? setenv("TMPDIR", m_Before->c_str(), 1) : unsetenv("TMPDIR"); }

    /// Where the stream's file was when it was made.
    static std::string PathOf(FILE* file) {
        return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(fileno(file)));
    }
    static size_t OpenDescriptors() {
        const std::filesystem::directory_iterator descriptors("/proc/self/fd");
        return static_cast<size_t>(std::distance(begin(descriptors), end(descriptors)));
    }

private:
    std::optional<std::string> m_Before;
};

using Stream = std::unique_ptr<FILE, int (*)(FILE*)>;

} // namespace

TEST_F(TempFile, IsWritableAndUnlinkedAtOnce) {
    const Stream file(openTempFile("x"), &std::fclose);
    ASSERT_NE(file, nullptr);
    const std::string path = PathOf(file.get());
    EXPECT_EQ(path.substr(0, 7), "/tmp/x.");
    EXPECT_NE(path.substr(7, 6), "XXXXXX");
    EXPECT_EQ(path.substr(13), " (deleted)");
    EXPECT_EQ(std::fwrite("abc", 1, 3, file.get()), 3u);
    EXPECT_EQ(std::fflush(file.get()), 0);
}

TEST_F(TempFile, FollowsTMPDIR) {
    char folder[] = "/tmp/zqtemp.XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    setenv("TMPDIR", folder, 1);
    {
        const Stream file(openTempFile("y"), &std::fclose);
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(PathOf(file.get()).rfind(std::string(folder) + "/y.", 0), 0u);
    }
    std::filesystem::remove(folder);
}

TEST_F(TempFile, IsNullWithoutFolder) {
    setenv("TMPDIR", "/nonexistent/folder", 1);
    EXPECT_EQ(openTempFile("x"), nullptr);
}

TEST_F(TempFile, IsNullWhenThePathIsCut) {
    EXPECT_EQ(openTempFile(std::string(300, 'x').c_str()), nullptr);
}

TEST_F(TempFile, ClosesTheDescriptorWhenThereIsNoStream) {
    const size_t before = OpenDescriptors();
    const ZqTest::SystemFault fault(ZqTest::Call::Fdopen, ENOMEM);
    EXPECT_EQ(openTempFile("x"), nullptr);
    EXPECT_EQ(OpenDescriptors(), before);
}
