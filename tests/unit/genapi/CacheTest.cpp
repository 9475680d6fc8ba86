#include "Camera.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include <sys/resource.h>
#include <unistd.h>

using namespace GenICam;
using namespace GenApi;

namespace fs = std::filesystem;

namespace {

std::string Xml(int width) {
    return Describe(
        ::Node("Integer", "Width", "<ToolTip>wide</ToolTip><Value>" + std::to_string(width) + "</Value>") +
        ::Node("SwissKnife", "Half", "<pVariable Name=\"W\">Width</pVariable><Formula>W/2</Formula>"));
}

CNodeMapFactory Factory(const std::string& xml, ECacheUsage_t usage, bool suppressStrings = false) {
    return CNodeMapFactory(ContentType_Xml, xml.data(), xml.size(), usage, suppressStrings);
}
CNodeMapRef Open(const std::string& xml, ECacheUsage_t usage = CacheUsage_Automatic) {
    return CNodeMapRef(Factory(xml, usage).CreateNodeMap());
}
int64_t Width(const CNodeMapRef& map) {
    return CIntegerPtr(map._GetNode("Width"))->GetValue();
}

/// A folder of its own, which GENICAM_CACHE_V3_0 names.
class Cache : public testing::Test {
protected:
    Cache() : m_folder(fs::temp_directory_path() / ("zq-cache-" + std::to_string(getpid()))) {
        fs::remove_all(m_folder);
        fs::create_directories(m_folder);
        setenv("GENICAM_CACHE_V3_0", m_folder.c_str(), 1);
        CNodeMapFactory::ClearCache(); // what the test before has read is still held
    }
    ~Cache() override {
        unsetenv("GENICAM_CACHE_V3_0");
        fs::remove_all(m_folder);
    }

    std::vector<fs::path> Files() const {
        std::vector<fs::path> files;
        for (const auto& file : fs::directory_iterator(m_folder))
            files.push_back(file.path());
        return files;
    }
    static std::string Content(const fs::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(stream), {});
    }
    static void Replace(const fs::path& file, const std::string& content) {
        std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
    }

    const fs::path m_folder;
};

} // namespace

TEST_F(Cache, AutomaticWritesOnceAndReadsAfterwards) {
    EXPECT_FALSE(Factory(Xml(640), CacheUsage_Automatic).IsPreprocessed());
    EXPECT_TRUE(Files().empty()); // nothing has been prepared yet
    EXPECT_EQ(Width(Open(Xml(640))), 640);
    ASSERT_EQ(Files().size(), 1u);
    const auto written = fs::last_write_time(Files()[0]);
    CNodeMapFactory warm = Factory(Xml(640), CacheUsage_Automatic);
    EXPECT_TRUE(warm.IsPreprocessed());
    const CNodeMapRef map(warm.CreateNodeMap());
    EXPECT_EQ(Width(map), 640);
    EXPECT_EQ(CFloatPtr(map._GetNode("Half"))->GetValue(), 320.0);
    EXPECT_STREQ(map._GetNode("Width")->GetToolTip().c_str(), "wide");
    EXPECT_EQ(fs::last_write_time(Files()[0]), written);
    EXPECT_EQ(Width(Open(Xml(800))), 800);
    EXPECT_EQ(Files().size(), 2u);
}

TEST_F(Cache, WithoutTextsItIsAnotherImage) {
    Open(Xml(640));
    CNodeMapFactory bare = Factory(Xml(640), CacheUsage_Automatic, true);
    EXPECT_FALSE(bare.IsPreprocessed());
    const CNodeMapRef map(bare.CreateNodeMap());
    EXPECT_STREQ(map._GetNode("Width")->GetToolTip().c_str(), "");
    EXPECT_EQ(Files().size(), 2u);
}

TEST_F(Cache, IgnoreLeavesTheFolderAlone) {
    EXPECT_EQ(Width(Open(Xml(640), CacheUsage_Ignore)), 640);
    EXPECT_TRUE(Files().empty());
    Open(Xml(640));
    EXPECT_FALSE(Factory(Xml(640), CacheUsage_Ignore).IsPreprocessed());
}

TEST_F(Cache, ForceReadOnlyReads) {
    EXPECT_EQ(Failure<RuntimeException>([] { Factory(Xml(640), CacheUsage_ForceRead); }),
              "The folder of GENICAM_CACHE_V3_0 does not hold this description.");
    Open(Xml(640));
    EXPECT_EQ(Width(Open(Xml(640), CacheUsage_ForceRead)), 640);
}

TEST_F(Cache, ForceWriteReplacesWhatIsThere) {
    Open(Xml(640));
    const std::string good = Content(Files()[0]);
    Replace(Files()[0], "damaged");
    EXPECT_FALSE(Factory(Xml(640), CacheUsage_ForceWrite).IsPreprocessed());
    EXPECT_EQ(Width(Open(Xml(640), CacheUsage_ForceWrite)), 640);
    EXPECT_EQ(Content(Files()[0]).size(), good.size());
    EXPECT_EQ(Width(Open(Xml(640), CacheUsage_ForceRead)), 640);
}

TEST_F(Cache, DamagedFilesAreIgnoredAndRewritten) {
    Open(Xml(640));
    ASSERT_EQ(Files().size(), 1u);
    const std::string good = Content(Files()[0]);
    std::vector<std::string> damaged{
        "", "x", good.substr(0, 63), good.substr(0, 64), good.substr(0, good.size() / 2), good + "x"};
    for (const size_t place :
         {0u, 8u, 12u, 16u, 24u, 32u, 40u, 48u, 56u, 64u, 65u, 200u}) { // each field, the image
        damaged.push_back(good);
        damaged.back()[place] ^= 1;
    }
    for (size_t place = 7; place < 64; place += 8) { // the high end of each field
        damaged.push_back(good);
        damaged.back()[place] = 0x7F;
    }
    damaged.push_back(good);
    damaged.back().back() ^= 0x80;
    const fs::path file = Files()[0];
    for (const std::string& content : damaged) {
        CNodeMapFactory::ClearCache(); // what has been read from a file is not looked for again at once
        Replace(file, content);
        EXPECT_THROW(Factory(Xml(640), CacheUsage_ForceRead), RuntimeException);
        EXPECT_EQ(Width(Open(Xml(640))), 640);
        EXPECT_EQ(Width(Open(Xml(640), CacheUsage_ForceRead)), 640);
    }
}

TEST_F(Cache, AFileUnderAnotherNameIsNotTaken) {
    Open(Xml(640));
    const fs::path first = Files()[0];
    const std::string content = Content(first);
    fs::remove(first);
    Open(Xml(800));
    Replace(Files()[0], content);
    EXPECT_EQ(Width(Open(Xml(800))), 800);
}

TEST_F(Cache, MissingFolderIsNoneAndOnlyForceMinds) {
    const auto check = [] {
        EXPECT_EQ(Width(Open(Xml(640))), 640);
        EXPECT_FALSE(CNodeMapFactory::ClearCache());
        EXPECT_THROW(Factory(Xml(640), CacheUsage_ForceRead), RuntimeException);
        EXPECT_EQ(Failure<RuntimeException>([] { Open(Xml(640), CacheUsage_ForceWrite); }),
                  "The description can't be written to the folder of GENICAM_CACHE_V3_0.");
    };
    fs::remove_all(m_folder);
    check();
    EXPECT_FALSE(fs::exists(m_folder));
    unsetenv("GENICAM_CACHE_V3_0");
    check();
}

TEST_F(Cache, ClearRemovesOnlyItsOwnFiles) {
    Open(Xml(640));
    Open(Xml(800));
    Replace(m_folder / "notes.txt", "mine");
    Replace(m_folder / "abc.1.1.zqgenapi-new", "left behind");
    EXPECT_TRUE(CNodeMapFactory::ClearCache());
    ASSERT_EQ(Files().size(), 1u);
    EXPECT_EQ(Files()[0].filename(), "notes.txt");
    EXPECT_FALSE(Factory(Xml(640), CacheUsage_Automatic).IsPreprocessed());
}

TEST_F(Cache, WhatCannotBeRemovedIsTold) {
    Open(Xml(640));
    for (const char* const name : {"a.zqgenapi", "z.zqgenapi"}) {
        fs::create_directories(m_folder / name);
        Replace(m_folder / name / "inside", "x");
    }
    EXPECT_FALSE(CNodeMapFactory::ClearCache());
    EXPECT_EQ(Files().size(), 2u);
}

TEST_F(Cache, FileThatCannotTakeItsNameIsLeftOut) {
    Open(Xml(640));
    const fs::path name = Files()[0];
    fs::remove(name);
    fs::create_directories(name / "inside");
    EXPECT_EQ(Failure<RuntimeException>([] { Open(Xml(640), CacheUsage_ForceWrite); }),
              "The description can't be written to the folder of GENICAM_CACHE_V3_0.");
    EXPECT_EQ(Width(Open(Xml(640))), 640);
    EXPECT_EQ(Files().size(), 1u); // nothing unfinished stays
}

TEST_F(Cache, FullDeviceKeepsNothing) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    for (const rlim_t room : {rlim_t{0}, rlim_t{64}, rlim_t{1000}}) { // for no header, no image, a part of it
        const rlimit limit{room, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
        const int64_t width = Width(Open(Xml(640)));
        setrlimit(RLIMIT_FSIZE, &before);
        EXPECT_EQ(width, 640);
        EXPECT_TRUE(Files().empty()) << room;
    }
    std::signal(SIGXFSZ, handler);
}

TEST_F(Cache, EmptyNameIsNoFolder) {
    setenv("GENICAM_CACHE_V3_0", "", 1);
    EXPECT_EQ(Width(Open(Xml(640))), 640);
    EXPECT_FALSE(CNodeMapFactory::ClearCache());
    EXPECT_TRUE(Files().empty());
}

TEST_F(Cache, WhatIsMergedWithAPartIsNotKept) {
    CNodeMapFactory target =
        Factory(Describe(::Node("Integer", "Other", "<Value>1</Value>")), CacheUsage_Automatic);
    CNodeMapFactory whole = Factory(Xml(640), CacheUsage_Ignore);
    CNodeMapFactory part = whole.ExtractSubtree("Width");
    const size_t before = Files().size();
    target.AddInjectionData(part);
    EXPECT_EQ(Width(CNodeMapRef(target.CreateNodeMap())), 640);
    EXPECT_EQ(Files().size(), before + 1); // the target alone
}

TEST_F(Cache, OpenMapsOutliveTheirFile) {
    Open(Xml(640));
    const CNodeMapRef map = Open(Xml(640));
    const fs::path file = Files()[0];
    fs::resize_file(file, 10);
    CNodeMapFactory::ClearCache();
    EXPECT_EQ(Width(map), 640);
    EXPECT_STREQ(map._GetNode("Width")->GetToolTip().c_str(), "wide");
}

/// Beyond it, a file that is written looks different to whoever looks at it.
constexpr std::chrono::milliseconds kSettled(120);
/// Beyond it, files are looked at again.
constexpr std::chrono::milliseconds kLookAgain(15);

TEST_F(Cache, WhatBecomesOfAFileIsNoticedThoughItsDescriptionIsInUse) {
    Open(Xml(640));
    const fs::path file = Files()[0];
    const std::string good = Content(file);
    std::this_thread::sleep_for(kSettled);
    const CNodeMapRef first = Open(Xml(640), CacheUsage_ForceRead);
    const CNodeMapRef second = Open(Xml(640), CacheUsage_ForceRead);
    const auto readable = [] {
        std::this_thread::sleep_for(kLookAgain);
        try {
            return Width(Open(Xml(640), CacheUsage_ForceRead)) == 640;
        } catch (const RuntimeException&) {
            return false;
        }
    };
    EXPECT_TRUE(readable());
    std::string damaged = good;
    damaged.back() ^= 1;
    Replace(file, damaged);
    EXPECT_FALSE(readable());
    Open(Xml(640));
    EXPECT_TRUE(readable());
    fs::remove(file);
    EXPECT_FALSE(readable());
    EXPECT_EQ(Width(first), 640);
    CIntegerPtr(first._GetNode("Width"))->SetValue(100);
    EXPECT_EQ(Width(second), 640);
}

TEST_F(Cache, ClearingItIsSeenAtOnce) {
    Open(Xml(640));
    std::this_thread::sleep_for(kSettled);
    const CNodeMapRef map = Open(Xml(640), CacheUsage_ForceRead);
    EXPECT_TRUE(CNodeMapFactory::ClearCache());
    EXPECT_THROW(Factory(Xml(640), CacheUsage_ForceRead), RuntimeException);
}

TEST_F(Cache, ManyWritersLeaveOneGoodFile) {
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([] {
            for (int i = 0; i < 20; ++i)
                EXPECT_EQ(Width(Open(Xml(640), i % 2 ? CacheUsage_ForceWrite : CacheUsage_Automatic)), 640);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(Files().size(), 1u);
    EXPECT_EQ(Width(Open(Xml(640), CacheUsage_ForceRead)), 640);
}

TEST_F(Cache, BadDescriptionsAreNotKept) {
    EXPECT_THROW(Open("<RegisterDescription"), RuntimeException);
    EXPECT_TRUE(Files().empty());
}

namespace {

/// A description without the port that Describe adds.
std::string Addition(const std::string& nodes, const std::string& attributes = "") {
    return "<RegisterDescription SchemaMajorVersion=\"1\" " + attributes + ">" + nodes +
           "</RegisterDescription>";
}
CNodeMapRef Merged(const std::string& target, const std::string& addition,
                   ECacheUsage_t usage = CacheUsage_Ignore) {
    CNodeMapFactory factory = Factory(target, usage);
    CNodeMapFactory added = Factory(addition, usage);
    factory.AddInjectionData(added);
    return CNodeMapRef(factory.CreateNodeMap());
}
std::vector<std::string> Features(const CNodeMapRef& map, const std::string& category) {
    FeatureList_t features;
    CCategoryPtr(map._GetNode(category.c_str()))->GetFeatures(features);
    std::vector<std::string> names;
    for (IValue* feature : features)
        names.push_back(feature->GetNode()->GetName().c_str());
    return names;
}
std::string Number(const std::string& name, int value, const std::string& attributes = "") {
    return "<Integer Name=\"" + name + "\" " + attributes + "><Value>" + std::to_string(value) +
           "</Value></Integer>";
}

} // namespace

TEST(Injection, AddsNodesAndUnitesCategories) {
    const CNodeMapRef map = Merged(
        Describe(::Node("Category", "Root", "<pFeature>A</pFeature><pFeature>B</pFeature>") + Number("A", 1) +
                 Number("B", 2)),
        Addition(::Node("Category", "Root", "<pFeature>B</pFeature><pFeature>C</pFeature>") +
                 ::Node("IntSwissKnife", "C", "<pVariable Name=\"X\">A</pVariable><Formula>X+10</Formula>")));
    EXPECT_EQ(Features(map, "Root"), (std::vector<std::string>{"A", "B", "C"}));
    EXPECT_EQ(CIntegerPtr(map._GetNode("C"))->GetValue(), 11);
    EXPECT_STREQ(dynamic_cast<IDeviceInfo*>(map._Ptr)->GetModelName().c_str(), "Model");
}

TEST(Injection, PriorityDecidesBetweenNodesOfOneName) {
    const std::string target = Describe(Number("Width", 1));
    const auto width = [&](const std::string& addition) { return Width(Merged(target, addition)); };
    EXPECT_EQ(width(Addition(Number("Width", 2), "MergePriority=\"1\"")), 2);
    EXPECT_EQ(width(Addition(Number("Width", 2), "MergePriority=\"-1\"")), 1);
    EXPECT_EQ(width(Addition(Number("Width", 2, "MergePriority=\"1\""))), 2);
    EXPECT_EQ(width(Addition(Number("Width", 2, "MergePriority=\"-1\""), "MergePriority=\"1\"")), 1);
    EXPECT_EQ(Failure<RuntimeException>([&] { width(Addition(Number("Width", 2))); }),
              "Both descriptions have a node 'Width', and the injected one has no merge priority.");
}

TEST(Injection, EntriesGoWithTheirEnumeration) {
    const auto choice = [](const std::string& entries, const std::string& attributes = "") {
        std::string text = "<Enumeration Name=\"E\" " + attributes + ">";
        for (const char entry : entries)
            text += std::string("<EnumEntry Name=\"") + entry + "\"><Value>1</Value></EnumEntry>";
        return text + "<Value>1</Value></Enumeration>";
    };
    const auto symbolics = [](const CNodeMapRef& map) {
        StringList_t list;
        CEnumerationPtr(map._GetNode("E"))->GetSymbolics(list);
        std::string text;
        for (const gcstring& each : list)
            text += each.c_str();
        return text + " of " + std::to_string(map._Ptr->GetNumNodes());
    };
    EXPECT_EQ(symbolics(Merged(Describe(choice("AB")), Addition(choice("BCD", "MergePriority=\"1\"")))),
              "BCD of 5");
    EXPECT_EQ(symbolics(Merged(Describe(choice("AB")), Addition(choice("BCD", "MergePriority=\"-1\"")))),
              "AB of 4");
}

TEST(Injection, HappensWhenAskedForAndLeavesEarlierMapsAlone) {
    CNodeMapFactory factory = Factory(Describe(Number("Width", 1)), CacheUsage_Ignore);
    const CNodeMapRef before(factory.CreateNodeMap());
    CNodeMapFactory more = Factory(Addition(Number("More", 2)), CacheUsage_Ignore);
    CNodeMapFactory clash = Factory(Addition(Number("Width", 2)), CacheUsage_Ignore);
    factory.AddInjectionData(more);
    EXPECT_FALSE(factory.IsPreprocessed());
    factory.LoadAndInject();
    EXPECT_TRUE(factory.IsPreprocessed());
    EXPECT_NE(CNodeMapRef(factory.CreateNodeMap())._GetNode("More"), nullptr);
    EXPECT_EQ(before._GetNode("More"), nullptr);
    factory.AddInjectionData(clash);
    EXPECT_THROW(factory.LoadAndInject(), RuntimeException);
    EXPECT_NE(CNodeMapRef(factory.CreateNodeMap())._GetNode("More"), nullptr);
}

TEST(Injection, SubtreesCanBeInjected) {
    CNodeMapFactory source = Factory(Describe(Number("A", 1) + Number("B", 2)), CacheUsage_Ignore);
    CNodeMapFactory part = source.ExtractSubtree("B");
    CNodeMapFactory factory = Factory(Describe(Number("Width", 1)), CacheUsage_Ignore);
    factory.AddInjectionData(part);
    const CNodeMapRef map(factory.CreateNodeMap());
    EXPECT_NE(map._GetNode("B"), nullptr);
    EXPECT_EQ(map._GetNode("A"), nullptr);
}

TEST_F(Cache, MergedDescriptionsAreKeptToo) {
    const auto merged = [] {
        return Merged(Describe(Number("Width", 1)), Addition(Number("More", 2)), CacheUsage_Automatic);
    };
    EXPECT_NE(merged()._GetNode("More"), nullptr);
    EXPECT_EQ(Files().size(), 3u); // target, addition, both
    EXPECT_NE(merged()._GetNode("More"), nullptr);
    EXPECT_EQ(Files().size(), 3u);
    EXPECT_EQ(Open(Describe(Number("Width", 1)))._GetNode("More"), nullptr);
}
