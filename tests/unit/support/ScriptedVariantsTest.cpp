#include "tests/support/ScriptedProducer.h"

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>

using ZqTest::ScriptedProducer;

namespace {

class ScriptedVariants : public testing::TestWithParam<const char*> {};

TEST_P(ScriptedVariants, LackExactlyTheNamedFunction) {
    const ScriptedProducer producer(std::string("without_") + GetParam());
    EXPECT_EQ(producer.Resolve<void*>(GetParam()), nullptr);
    EXPECT_NE(producer.Resolve<void*>("DSGetBufferChunkData"), nullptr);
    EXPECT_EQ(std::filesystem::path(producer.File()).filename(), "libzqgentl.cti");
}

INSTANTIATE_TEST_SUITE_P(Each, ScriptedVariants,
                         testing::Values("GCInitLib", "GCGetLastError", "TLOpenInterface", "IFGetDeviceInfo",
                                         "DevGetNumDataStreams", "DSGetInfo", "DSGetBufferPartInfo",
                                         "GCGetNumPortURLs", "GCGetPortURLInfo", "GCRegisterEvent",
                                         "EventGetData", "EventGetDataInfo", "EventGetInfo", "EventKill"),
                         [](const auto& info) { return std::string(info.param); });

TEST(ScriptedVariant, WithoutUrlsLacksEveryWayToOne) {
    const ScriptedProducer producer("without_urls");
    EXPECT_EQ(producer.Resolve<void*>("GCGetNumPortURLs"), nullptr);
    EXPECT_EQ(producer.Resolve<void*>("GCGetPortURL"), nullptr);
    EXPECT_EQ(producer.Resolve<void*>("GCGetPortURLInfo"), nullptr);
    EXPECT_NE(producer.Resolve<void*>("GCGetPortInfo"), nullptr);
}

TEST(ScriptedVariant, FullHasAllFunctions) {
    const ScriptedProducer producer;
    int found = 0;
    for (const char* function : {"GCInitLib",
                                 "GCCloseLib",
                                 "GCGetInfo",
                                 "GCGetLastError",
                                 "TLOpen",
                                 "TLClose",
                                 "TLGetInfo",
                                 "TLUpdateInterfaceList",
                                 "TLGetNumInterfaces",
                                 "TLGetInterfaceID",
                                 "TLGetInterfaceInfo",
                                 "TLOpenInterface",
                                 "IFClose",
                                 "IFGetInfo",
                                 "IFGetParentTL",
                                 "IFUpdateDeviceList",
                                 "IFGetNumDevices",
                                 "IFGetDeviceID",
                                 "IFGetDeviceInfo",
                                 "IFOpenDevice",
                                 "DevClose",
                                 "DevGetInfo",
                                 "DevGetParentIF",
                                 "DevGetPort",
                                 "DevGetNumDataStreams",
                                 "DevGetDataStreamID",
                                 "DevOpenDataStream",
                                 "DSClose",
                                 "DSGetInfo",
                                 "DSGetParentDev",
                                 "DSAnnounceBuffer",
                                 "DSAllocAndAnnounceBuffer",
                                 "DSRevokeBuffer",
                                 "DSQueueBuffer",
                                 "DSFlushQueue",
                                 "DSGetBufferID",
                                 "DSStartAcquisition",
                                 "DSStopAcquisition",
                                 "DSGetBufferInfo",
                                 "DSGetBufferChunkData",
                                 "DSGetNumBufferParts",
                                 "DSGetBufferPartInfo",
                                 "GCGetPortInfo",
                                 "GCGetNumPortURLs",
                                 "GCGetPortURLInfo",
                                 "GCGetPortURL",
                                 "GCReadPort",
                                 "GCWritePort",
                                 "GCReadPortStacked",
                                 "GCWritePortStacked",
                                 "GCRegisterEvent",
                                 "GCUnregisterEvent",
                                 "EventGetData",
                                 "EventGetDataInfo",
                                 "EventGetInfo",
                                 "EventFlush",
                                 "EventKill"})
        found += producer.Resolve<void*>(function) != nullptr ? 1 : 0;
    EXPECT_EQ(found, 57);
}

TEST(ScriptedVariant, FileNamesAreThoseOfTheVendors) {
    EXPECT_EQ(std::filesystem::path(ScriptedProducer("euresys").File()).filename(), "coaxlink.cti");
    EXPECT_EQ(std::filesystem::path(ScriptedProducer("kaya").File()).filename(), "KYFGLibGenTL.cti");
    EXPECT_EQ(std::filesystem::path(ScriptedProducer("silicon_software").File()).filename(),
              "siso_gentl.cti");
}

TEST(ScriptedVariant, SearchPathIsItsFolderWhileTheFixtureLives) {
    setenv("GENICAM_GENTL64_PATH", "/before", 1);
    {
        const ScriptedProducer producer;
        EXPECT_EQ(std::getenv("GENICAM_GENTL64_PATH"), producer.Folder());
    }
    EXPECT_STREQ(std::getenv("GENICAM_GENTL64_PATH"), "/before");
}

TEST(ScriptedVariant, LoadingTheFileAgainGivesTheSameCopy) {
    const ScriptedProducer producer;
    void* library = dlopen(producer.File().c_str(), RTLD_LAZY | RTLD_NODELETE);
    ASSERT_NE(library, nullptr);
    reinterpret_cast<GenTL::PGCInitLib>(dlsym(library, "GCInitLib"))();
    reinterpret_cast<GenTL::PGCCloseLib>(dlsym(library, "GCCloseLib"))();
    dlclose(library);
    EXPECT_EQ(producer.Log(), (std::vector<std::string>{"GCInitLib()", "GCCloseLib()"}));
}

TEST(ScriptedVariant, VariantsDoNotShareState) {
    const ScriptedProducer other("euresys");
    const ScriptedProducer producer;
    producer.Resolve<GenTL::PGCInitLib>("GCInitLib")();
    EXPECT_EQ(producer.Count("GCInitLib"), 1U);
    EXPECT_EQ(other.Count("GCInitLib"), 0U);
    producer.Resolve<GenTL::PGCCloseLib>("GCCloseLib")();
}

} // namespace
