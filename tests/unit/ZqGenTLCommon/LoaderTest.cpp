#include "ZqGenTLCommon/ZqGenTLLib.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include <dlfcn.h>

#include <ZqApi/Error.h>

#include "tests/support/AllocationFailure.h"
#include "tests/support/ScriptedProducer.h"

using namespace ZqApi;
using ZqTest::ScriptedProducer;
namespace fs = std::filesystem;

namespace {

using Calls = std::vector<std::string>;

/// A folder of its own, and the search path, given back at the end.
class Loader : public testing::Test {
protected:
    Loader() {
        char name[] = "/tmp/zqloader.XXXXXX";
        m_Folder = mkdtemp(name);
        if (const char* const path = std::getenv(variable))
            m_PathBefore = path;
        unsetenv(variable);
    }
    ~Loader() override {
        fs::remove_all(m_Folder);
        m_PathBefore ? setenv(variable, m_PathBefore->c_str(), 1) : unsetenv(variable);
    }

    std::string MakeFolder(const std::string& name) const {
        fs::create_directories(m_Folder + "/" + name);
        return m_Folder + "/" + name;
    }
    static void Search(const std::string& path) { setenv(variable, path.c_str(), 1); }
    static gcstring LoadedPath(const char* file) { return CZqGenTLLib(file).GetFullPathName(); }

    static void ExpectNotFound(const std::string& file) {
        try {
            const CZqGenTLLib lib(file.c_str());
            FAIL() << "loaded";
        } catch (const GenICam::RuntimeException& error) {
            EXPECT_EQ(error.GetDescription(), "File " + file + " not found.");
            EXPECT_STREQ(error.GetSourceFileName(), "ZqGenTLCommon/ZqGenTLLib");
        }
    }

    std::string m_Folder;

private:
    static constexpr const char* variable = "GENICAM_GENTL64_PATH";
    std::optional<std::string> m_PathBefore;
};

template <class Function>
CZqGenTLErrorException GenTLErrorOf(Function function) {
    try {
        function();
    } catch (const CZqGenTLErrorException& error) {
        return error;
    }
    throw std::logic_error("nothing thrown");
}

} // namespace

TEST_F(Loader, FindsNothingWithoutASearchPath) {
    ExpectNotFound("libzqgentl.cti");
    Search("");
    ExpectNotFound("libzqgentl.cti");
}

TEST_F(Loader, TakesTheFirstReadableCandidate) {
    const ScriptedProducer producer;
    const std::string without = MakeFolder("without");
    Search(without + "::" + producer.Folder() + ":");
    EXPECT_EQ(LoadedPath("libzqgentl.cti"), (producer.Folder() + "/libzqgentl.cti").c_str());
}

TEST_F(Loader, PassesOverAnUnreadableCandidate) {
    const ScriptedProducer producer;
    const std::string dangling = MakeFolder("dangling");
    fs::create_symlink(dangling + "/gone", dangling + "/libzqgentl.cti");
    Search(dangling + ":" + producer.Folder());
    EXPECT_EQ(LoadedPath("libzqgentl.cti"), (producer.Folder() + "/libzqgentl.cti").c_str());
    Search(dangling);
    ExpectNotFound("libzqgentl.cti");
}

TEST_F(Loader, EmptyEntryIsTheRootAndSlashesAreKept) {
    const ScriptedProducer producer;
    const std::string fromRoot = producer.File().substr(1);
    Search("");
    ExpectNotFound(fromRoot);
    Search(":" + m_Folder);
    EXPECT_EQ(LoadedPath(fromRoot.c_str()), producer.File().c_str());
    Search(m_Folder + ":");
    EXPECT_EQ(LoadedPath(fromRoot.c_str()), producer.File().c_str());
    Search(producer.Folder() + "/");
    EXPECT_EQ(LoadedPath("libzqgentl.cti"), (producer.Folder() + "//libzqgentl.cti").c_str());
}

TEST_F(Loader, InitialisesAndClosesOnce) {
    const ScriptedProducer producer;
    {
        CZqGenTLLib lib("libzqgentl.cti");
        EXPECT_EQ(producer.Log(), Calls{"GCInitLib()"});
        lib.UnloadLib();
        lib.UnloadLib();
    }
    EXPECT_EQ(producer.Log(), (Calls{"GCInitLib()", "GCCloseLib()"}));
    EXPECT_TRUE(producer.NothingOpen());
}

TEST_F(Loader, BindsEveryFunctionAndClearsThemAtTheEnd) {
    const ScriptedProducer producer;
    CZqGenTLLib lib("libzqgentl.cti");
    const auto countBound = [&] {
        int bound = 0;
#define COUNT_BOUND(name) bound += lib.name != nullptr ? 1 : 0;
        ZQ_GENTL_FUNCTIONS(COUNT_BOUND)
#undef COUNT_BOUND
        return bound;
    };
#define EXPECT_BOUND(name)                                                                                   \
    EXPECT_EQ(static_cast<GenTL::P##name>(lib.name), producer.Resolve<GenTL::P##name>(#name)) << #name;
    ZQ_GENTL_FUNCTIONS(EXPECT_BOUND)
#undef EXPECT_BOUND
    EXPECT_EQ(countBound(), 57);
    lib.UnloadLib();
    EXPECT_EQ(countBound(), 0);
}

TEST_F(Loader, FunctionsAreFoundByNobodyElse) {
    const ScriptedProducer producer;
    const CZqGenTLLib lib("libzqgentl.cti");
    EXPECT_TRUE(lib.TLOpen != nullptr);
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "TLOpen"), nullptr);
}

// A copy, since the test itself holds the producer that it scripts.
TEST_F(Loader, CodeStaysWhenItIsUnloaded) {
    const ScriptedProducer producer;
    const std::string folder = MakeFolder("copy");
    const std::string file = folder + "/libzqgentl.cti";
    fs::copy_file(producer.File(), file);
    const auto isMapped = [&] {
        void* const library = dlopen(file.c_str(), RTLD_LAZY | RTLD_NOLOAD);
        return library != nullptr && dlclose(library) == 0;
    };
    EXPECT_FALSE(isMapped());
    Search(folder);
    EXPECT_EQ(LoadedPath("libzqgentl.cti"), file.c_str());
    EXPECT_TRUE(isMapped());
}

TEST_F(Loader, LateCallsAreNotImplemented) {
    const ScriptedProducer producer;
    CZqGenTLLib lib("libzqgentl.cti");
    TL_HANDLE hTL = nullptr;
    EXPECT_EQ(CallProducer(lib.TLOpen, &hTL), GC_ERR_SUCCESS);
    EXPECT_EQ(CallProducer(lib.TLClose, hTL), GC_ERR_SUCCESS);
    lib.UnloadLib();
    EXPECT_EQ(CallProducer(lib.TLOpen, &hTL), GC_ERR_NOT_IMPLEMENTED);
}

TEST_F(Loader, MissingFunctionIsNullAndLoadingSucceeds) {
    const ScriptedProducer producer("without_DSGetBufferPartInfo");
    const CZqGenTLLib lib("libzqgentl.cti");
    EXPECT_TRUE(lib.DSGetBufferPartInfo == nullptr);
    EXPECT_TRUE(lib.DSGetNumBufferParts != nullptr);
    size_t size = 0;
    EXPECT_EQ(CallProducer(lib.DSGetBufferPartInfo, static_cast<DS_HANDLE>(nullptr),
                           static_cast<BUFFER_HANDLE>(nullptr), 0u, BUFFER_PART_INFO_CMD{},
                           static_cast<INFO_DATATYPE*>(nullptr), static_cast<void*>(nullptr), &size),
              GC_ERR_NOT_IMPLEMENTED);
}

TEST_F(Loader, ProducerWithoutInitialisationIsRefused) {
    const ScriptedProducer producer("without_GCInitLib");
    const CZqGenTLErrorException error = GenTLErrorOf([] { CZqGenTLLib lib("libzqgentl.cti"); });
    EXPECT_EQ(error.GetError(), -1003);
    EXPECT_STREQ(error.GetDescription(), "-1003 = GCInitLib()");
    EXPECT_STREQ(error.GetFunctionName().c_str(), "GCInitLib");
    EXPECT_STREQ(error.GetSourceFileName(), "ZqGenTLCommon/ZqGenTLLib");
    EXPECT_EQ(producer.Log(), Calls{});
}

TEST_F(Loader, RefusedInitialisationIsReportedWithoutSuffixAndNotClosed) {
    const ScriptedProducer producer;
    producer.Answer("GCInitLib").With(GC_ERR_RESOURCE_IN_USE).Saying("taken");
    const CZqGenTLErrorException error = GenTLErrorOf([] { CZqGenTLLib lib("libzqgentl.cti"); });
    EXPECT_EQ(error.GetError(), -1004);
    EXPECT_STREQ(error.GetDescription(), "-1004 = GCInitLib()");
    EXPECT_EQ(producer.Count("GCCloseLib"), 0u);
    EXPECT_EQ(producer.Count("GCGetLastError"), 0u);
}

TEST_F(Loader, ProducerWithoutCloseIsUnloadedAllTheSame) {
    const ScriptedProducer producer("without_GCCloseLib");
    CZqGenTLLib lib("libzqgentl.cti");
    lib.UnloadLib();
    EXPECT_TRUE(lib.TLOpen == nullptr);
}

TEST_F(Loader, SecondOneOnTheSameProducerKeepsWorking) {
    const ScriptedProducer producer;
    producer.AllowSeveralSystems();
    auto first = std::make_unique<CZqGenTLLib>("libzqgentl.cti");
    const CZqGenTLLib second("libzqgentl.cti");
    EXPECT_EQ(static_cast<GenTL::PTLOpen>(first->TLOpen), static_cast<GenTL::PTLOpen>(second.TLOpen));
    first.reset();
    EXPECT_EQ(producer.Count("GCInitLib"), 2u);
    EXPECT_EQ(producer.Count("GCCloseLib"), 1u);
    TL_HANDLE hTL = nullptr;
    EXPECT_EQ(CallProducer(second.TLOpen, &hTL), GC_ERR_SUCCESS);
    EXPECT_EQ(CallProducer(second.TLClose, hTL), GC_ERR_SUCCESS);
}

TEST_F(Loader, SecondOneOnAConformingProducerIsRefusedAndTheFirstStays) {
    const ScriptedProducer producer;
    const CZqGenTLLib first("libzqgentl.cti");
    const CZqGenTLErrorException error = GenTLErrorOf([] { CZqGenTLLib second("libzqgentl.cti"); });
    EXPECT_STREQ(error.GetDescription(), "-1004 = GCInitLib()");
    EXPECT_EQ(producer.Count("GCCloseLib"), 0u);
    TL_HANDLE hTL = nullptr;
    EXPECT_EQ(CallProducer(first.TLOpen, &hTL), GC_ERR_SUCCESS);
    EXPECT_EQ(CallProducer(first.TLClose, hTL), GC_ERR_SUCCESS);
}

// The path is no format, and errno is the loader's own: it had 77 before.
TEST_F(Loader, TextFileIsReportedWithItsPathAndTheLoadersExplanation) {
    const std::string folder = MakeFolder("a%n%s");
    std::ofstream(folder + "/libzqgentl.cti") << "text";
    Search(folder);
    errno = 77;
    try {
        const CZqGenTLLib lib("libzqgentl.cti");
        FAIL();
    } catch (const CZqLinuxErrorException& error) {
        EXPECT_EQ(error.GetError(), 0);
        EXPECT_EQ(error.GetDescription(), folder + "/libzqgentl.cti ErrorCode=0x00000000 \" \"Success");
        const std::string explanation = error.GetFunctionName().c_str();
        EXPECT_EQ(explanation, folder + "/libzqgentl.cti: file too short");
        EXPECT_STREQ(error.GetSourceFileName(), "ZqGenTLCommon/ZqGenTLLib");
    }
}

TEST_F(Loader, FolderNamedLikeTheFileIsChosenAndReported) {
    const ScriptedProducer producer;
    MakeFolder("libzqgentl.cti");
    Search(m_Folder + ":" + producer.Folder());
    try {
        const CZqGenTLLib lib("libzqgentl.cti");
        FAIL();
    } catch (const CZqLinuxErrorException& error) {
        EXPECT_EQ(std::string(error.GetDescription()).rfind(m_Folder + "/libzqgentl.cti ErrorCode=0x", 0),
                  0u);
    }
}

TEST_F(Loader, FailedAllocationIsBadAlloc) {
    const ScriptedProducer producer;
    int failures = 0;
    for (uint64_t n = 1;; ++n) {
        const ZqTest::FailingAllocation failure(n);
        try {
            const CZqGenTLLib lib("libzqgentl.cti");
        } catch (const GenICam::BadAllocException& error) {
            EXPECT_STREQ(error.GetDescription(), "std::bad_alloc");
            ++failures;
        } catch (const std::bad_alloc&) {
            // The argument itself, made by the caller.
        }
        if (!failure.Failed())
            break;
    }
    EXPECT_GT(failures, 0);
    EXPECT_TRUE(producer.NothingOpen());
}
