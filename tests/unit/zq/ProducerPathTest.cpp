#include "tools/zq/ProducerPath.h"

#include "tests/unit/zq/Tool.h"

#include <fstream>

namespace {

constexpr const char* variable = "GENICAM_GENTL64_PATH";

class ZqProducerPath : public testing::Test {
protected:
    ZqProducerPath() {
        unsetenv(variable);
        for (const char* name : {"bin", "lib/zqapi"})
            std::filesystem::create_directories(m_folder.Path() / name);
    }

    void PutProducer(const std::string& folder) const {
        std::ofstream(m_folder.File(folder + "/libzqgentl.cti")) << "x";
    }
    void Set() const { ZqTool::SetProducerPathWhenUnset(m_folder.Path() / "bin"); }

    TemporaryFolder m_folder;
};

TEST_F(ZqProducerPath, InstalledProducerComesBeforeTheBuiltOne) {
    PutProducer("lib");
    PutProducer("lib/zqapi");
    Set();
    EXPECT_EQ(std::getenv(variable), m_folder.File("lib/zqapi"));
}

TEST_F(ZqProducerPath, BuiltProducerIsFound) {
    PutProducer("lib");
    Set();
    EXPECT_EQ(std::getenv(variable), m_folder.File("lib"));
}

TEST_F(ZqProducerPath, WhatIsSetStays) {
    PutProducer("lib");
    setenv(variable, "", 1);
    Set();
    EXPECT_STREQ(std::getenv(variable), "");
}

TEST_F(ZqProducerPath, WithoutAProducerItStaysUnset) {
    Set();
    EXPECT_EQ(std::getenv(variable), nullptr);
}

TEST_F(ZqProducerPath, FolderOfThisProgramHoldsIt) {
    EXPECT_TRUE(std::filesystem::exists(ZqTool::FolderOfThisProgram() / "test_zq"));
}

} // namespace
