#include <cstdlib>
#include <thread>

#include "tests/support/AllocationFailure.h"
#include "tests/unit/ZqApi_TL/ModuleTree.h"

namespace ZqTest {
namespace {

constexpr const char* NOT_INITIALIZED = "ZqApi is not initialized.";

/// Sets an environment variable, or removes it, while the object lives.
class Environment {
public:
    Environment(const char* name, const char* value) : m_Name(name) {
        if (const char* const before = std::getenv(name))
            m_Before = std::make_unique<std::string>(before);
        value == nullptr ? unsetenv(name) : setenv(name, value, 1);
    }
    ~Environment() { m_Before ? setenv(m_Name, m_Before->c_str(), 1) : unsetenv(m_Name); }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    const char* m_Name;
    std::unique_ptr<std::string> m_Before;
};

TEST(EntryPoints, PatchOfTheBuildVersionIsNotCompared) {
    EXPECT_NO_THROW(ZqApiInitialize(0x01000009));
    ZqApiTerminate();
}

TEST(EntryPoints, AnotherMinorVersionIsRefusedWithBothVersions) {
    const Thrown thrown = Catch<GenICam::RuntimeException>([] { ZqApiInitialize(0x01010005); });
    EXPECT_EQ(thrown.text,
              "The version of the runtime library is not matched the version of the build time library. "
              "Runtime:1.0.5, Build time:1.1.5");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqApi_TL");
}

TEST(EntryPoints, RefusedVersionDoesNotCount) {
    EXPECT_THROW(ZqApiInitialize(0x02000000), GenICam::RuntimeException);
    EXPECT_EQ(Catch<GenICam::RuntimeException>([] { ZqApiTerminate(); }).text, NOT_INITIALIZED);
}

TEST(EntryPoints, EveryOneRefusesBeforeInitialisation) {
    const auto text = [](auto entry) { return Catch<GenICam::RuntimeException>(entry).text; };
    EXPECT_EQ(text([] { CheckZqApiInitialized(); }), NOT_INITIALIZED);
    EXPECT_EQ(text([] { ZqApiTerminate(); }), NOT_INITIALIZED);
    EXPECT_EQ(text([] { GetZqApiVersion(); }), NOT_INITIALIZED);
    EXPECT_EQ(text([] { GetZqApiVersionText(); }), NOT_INITIALIZED);
    EXPECT_EQ(text([] { SetGenApiCache(); }), NOT_INITIALIZED);
    EXPECT_EQ(text([] { GetIZqPixelFormatInfo(ZqPixelFormat_Mono8); }), NOT_INITIALIZED);
    EXPECT_EQ(text([] { GetIZqPixelComponentInfo(ZqPixelComponent_Mono8); }), NOT_INITIALIZED);
    EXPECT_EQ(text([] { CreateIZqSystem(ZqSystemVendor_Default, ZqInterfaceType_All); }), NOT_INITIALIZED);
    EXPECT_EQ(text([] { CreateIZqImageBuffer(nullptr); }), NOT_INITIALIZED);
    EXPECT_EQ(text([] { CreateIZqFeatureBag(); }), NOT_INITIALIZED);
}

TEST(EntryPoints, LastOfTwoTerminationsEndsTheLibrary) {
    ZqApiInitialize(ZqApiBuildVersion);
    ZqApiInitialize(ZqApiBuildVersion);
    ZqApiTerminate();
    EXPECT_EQ(GetZqApiVersion(), 0x01000005u);
    EXPECT_STREQ(GetZqApiVersionText().c_str(), "1.0.5");
    ZqApiTerminate();
    EXPECT_EQ(Catch<GenICam::RuntimeException>([] { GetZqApiVersion(); }).text, NOT_INITIALIZED);
}

TEST(EntryPoints, CacheVariableGetsTheSubdirectoryAppended) {
    const Environment variable("GENICAM_CACHE_V3_0", "/x");
    const Library library;
    EXPECT_STREQ(std::getenv("GENICAM_CACHE_V3_0"), "/x/GenICam/xml/cache");
}

TEST(EntryPoints, EachFirstInitialisationAppendsAgain) {
    const Environment variable("GENICAM_CACHE_V3_0", "/x");
    { const Library library; }
    const Library library;
    EXPECT_STREQ(std::getenv("GENICAM_CACHE_V3_0"), "/x/GenICam/xml/cache/GenICam/xml/cache");
}

TEST(EntryPoints, FurtherInitialisationAppendsNothing) {
    const Environment variable("GENICAM_CACHE_V3_0", "/x");
    const Library library;
    const Library again;
    EXPECT_STREQ(std::getenv("GENICAM_CACHE_V3_0"), "/x/GenICam/xml/cache");
    SetGenApiCache();
    EXPECT_STREQ(std::getenv("GENICAM_CACHE_V3_0"), "/x/GenICam/xml/cache/GenICam/xml/cache");
}

TEST(EntryPoints, UnsetCacheVariableStaysUnset) {
    const Environment variable("GENICAM_CACHE_V3_0", nullptr);
    const Library library;
    EXPECT_EQ(std::getenv("GENICAM_CACHE_V3_0"), nullptr);
}

TEST(EntryPoints, EmptyCacheVariableCountsAsSet) {
    const Environment variable("GENICAM_CACHE_V3_0", "");
    const Library library;
    EXPECT_STREQ(std::getenv("GENICAM_CACHE_V3_0"), "/GenICam/xml/cache");
}

TEST(EntryPoints, OverlongCacheVariableIsCutAt4095Characters) {
    const Environment variable("GENICAM_CACHE_V3_0", std::string(5000, 'y').c_str());
    const Library library;
    EXPECT_EQ(std::string(std::getenv("GENICAM_CACHE_V3_0")), std::string(4095, 'y'));
}

TEST(EntryPoints, VendorFourIsOutOfRange) {
    const Library library;
    const Thrown thrown = Catch<GenICam::OutOfRangeException>(
        [] { CreateIZqSystem(static_cast<EZqSystemVendor_t>(4), ZqInterfaceType_All); });
    EXPECT_EQ(thrown.text, "eZqSystemVendor = 4 must be smaller than Max = 4");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqApi_TL");
}

TEST(EntryPoints, NegativeVendorIsComparedUnsigned) {
    const Library library;
    EXPECT_EQ(Catch<GenICam::OutOfRangeException>([] {
                  CreateIZqSystem(static_cast<EZqSystemVendor_t>(-1), ZqInterfaceType_All);
              }).text,
              "eZqSystemVendor = 4294967295 must be smaller than Max = 4");
}

TEST(EntryPoints, FilterBelowOneIsOutOfRange) {
    const Library library;
    const auto text = [](EZqSystemVendor_t vendor, int filter) {
        return Catch<GenICam::OutOfRangeException>(
                   [=] { CreateIZqSystem(vendor, static_cast<EZqInterfaceType_t>(filter)); })
            .text;
    };
    EXPECT_EQ(text(ZqSystemVendor_Default, 0), "eTargetInterface = 0 must be equal or greater than Min = 1");
    EXPECT_EQ(text(ZqSystemVendor_Default, -2),
              "eTargetInterface = -2 must be equal or greater than Min = 1");
    EXPECT_EQ(text(ZqSystemVendor_Euresys, ZqInterfaceType_GEV),
              "eTargetInterface = 0 must be equal or greater than Min = 1");
}

TEST(EntryPoints, FrameGrabberVendorsWrapOnlyCoaXPress) {
    const ScriptedProducer producer("euresys");
    producer.ClearInterfaces();
    producer.AddInterface("IF1", "U3V");
    producer.AddInterface("IF2", "CXP");
    const Library library;
    const System system(CreateIZqSystem(ZqSystemVendor_Euresys, ZqInterfaceType_All));
    ASSERT_EQ(system->GetInterfaceCount(), 1u);
    EXPECT_STREQ(system->GetIZqInterface(0)->GetIZqInterfaceInfo()->GetID().c_str(), "IF2");
}

TEST(EntryPoints, EachVendorHasItsOwnFile) {
    const Library library;
    const auto opens = [](const char* variant, EZqSystemVendor_t vendor) {
        const ScriptedProducer producer(variant);
        const System system(CreateIZqSystem(vendor, ZqInterfaceType_CXP));
        return system->GetZqSystemVendor() == vendor;
    };
    EXPECT_TRUE(opens("full", ZqSystemVendor_Default));
    EXPECT_TRUE(opens("euresys", ZqSystemVendor_Euresys));
    EXPECT_TRUE(opens("kaya", ZqSystemVendor_Kaya));
    EXPECT_TRUE(opens("silicon_software", ZqSystemVendor_SiliconSoftware));
}

TEST(EntryPoints, MissingProducerIsNamed) {
    const Environment path("GENICAM_GENTL64_PATH", "/nowhere");
    const Library library;
    EXPECT_EQ(Catch<GenICam::RuntimeException>([] {
                  CreateIZqSystem(ZqSystemVendor_Kaya, ZqInterfaceType_All);
              }).text,
              "File KYFGLibGenTL.cti not found.");
}

/// 0 when everything is as stated; the process is of no use afterwards, so it ends.
[[noreturn]] void FailTheFirstInitialisation() {
    const Thrown thrown = [] {
        const FailingAllocation failing(1);
        return Catch<GenICam::BadAllocException>([] { ZqApiInitialize(ZqApiBuildVersion); });
    }();
    // The count stands at 1, so this is no first initialisation any more and creates nothing.
    ZqApiInitialize(ZqApiBuildVersion);
    const std::string later = Catch<GenICam::RuntimeException>([] { GetZqApiVersion(); }).text;
    std::_Exit(thrown.text == "std::bad_alloc" && later == NOT_INITIALIZED ? 0 : 1);
}

TEST(EntryPoints, FailedAllocationIsReportedAndKeepsTheCount) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(FailTheFirstInitialisation(), testing::ExitedWithCode(0), "");
}

TEST(EntryPoints, ComponentCatalogueThatCouldNotBeAllocatedCountsAsNotInitialized) {
    {
        // Behind the 98 records of the first catalogue, within the 44 of the second.
        const FailingAllocation failing(215);
        EXPECT_EQ(Catch<GenICam::BadAllocException>([] { ZqApiInitialize(ZqApiBuildVersion); }).text,
                  "std::bad_alloc");
    }
    EXPECT_EQ(GetZqApiVersion(), 0x01000005u);
    EXPECT_EQ(Catch<GenICam::RuntimeException>([] { GetIZqPixelComponentInfo(ZqPixelComponent_Mono8); }).text,
              NOT_INITIALIZED);
    EXPECT_NO_THROW(ZqApiTerminate());
}

TEST(EntryPoints, SystemAllocationFailureHasTheAllocatorsText) {
    const ScriptedProducer producer;
    const Library library;
    const FailingAllocation failing(1);
    EXPECT_EQ(Catch<GenICam::BadAllocException>([] {
                  CreateIZqSystem(ZqSystemVendor_Default, ZqInterfaceType_All);
              }).text,
              "std::bad_alloc");
}

TEST(EntryPoints, ImageBufferAllocationFailureHasTheAllocatorsText) {
    const Library library;
    // The buffer itself, then its pixel reader.
    for (uint64_t nth = 1; nth <= 2; ++nth) {
        const FailingAllocation failing(nth);
        EXPECT_EQ(Catch<GenICam::BadAllocException>([] { CreateIZqImageBuffer(nullptr); }).text,
                  "std::bad_alloc");
    }
}

TEST(EntryPoints, ConcurrentInitialisationsAllFindTheLibraryReady) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([] {
            for (int round = 0; round < 200; ++round) {
                ZqApiInitialize(ZqApiBuildVersion);
                EXPECT_EQ(GetZqApiVersion(), 0x01000005u);
                ZqApiTerminate();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THROW(CheckZqApiInitialized(), GenICam::RuntimeException);
}

TEST(EntryPoints, ModuleHandleIsAlwaysNull) {
    EXPECT_EQ(GetModuleHandleTL(), nullptr);
}

TEST(EntryPoints, ObjectsOutliveTheLastTermination) {
    const ScriptedProducer producer;
    ZqApiInitialize(ZqApiBuildVersion);
    System system(CreateIZqSystem(ZqSystemVendor_Default, ZqInterfaceType_All));
    ZqApiTerminate();
    EXPECT_STREQ(system->GetIZqSystemInfo()->GetModel().c_str(), "Scripted");
    system.reset();
    EXPECT_TRUE(producer.NothingOpen());
}

} // namespace
} // namespace ZqTest
