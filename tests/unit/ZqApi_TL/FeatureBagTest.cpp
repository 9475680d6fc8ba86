#include <cstdio>
#include <fstream>
#include <sstream>

#include <unistd.h>

#include "tests/support/AllocationFailure.h"
#include "tests/unit/ZqApi_TL/ModuleTree.h"

namespace ZqTest {
namespace {

constexpr const char* MAGIC = "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n";
constexpr const char* HEAD = "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n"
                             "# GenApi persistence file (version 3.0.0)\n"
                             "# \n";

using Bag = std::unique_ptr<IZqFeatureBagReleasable, Releaser>;

class FeatureBag : public OpenedDevice {
protected:
    void SetUp() override {}
    ~FeatureBag() override { std::remove(file.c_str()); }

    void Fill(const std::string& text) { bag->StoreStringToBag(gcstring(text.c_str(), text.size())); }
    std::string Text() {
        gcstring text;
        bag->SaveToString(text);
        return std::string(text.c_str(), text.size());
    }
    /// The lines behind the head of what a text leaves in the bag.
    std::string Kept(const std::string& text) {
        Fill(text);
        const std::string saved = Text();
        EXPECT_EQ(saved.substr(0, std::string(HEAD).size()), HEAD);
        return saved.substr(std::string(HEAD).size());
    }
    template <class Action>
    static std::string Refusal(Action action) {
        const Thrown thrown = Catch<GenICam::RuntimeException>(action);
        EXPECT_EQ(thrown.source, "ZqApi_TL/ZqFeatureBag");
        return thrown.text;
    }
    void WriteFile(const std::string& text) { std::ofstream(file, std::ios::binary) << text; }
    std::string ReadFile() const {
        std::ostringstream text;
        text << std::ifstream(file, std::ios::binary).rdbuf();
        return text.str();
    }
    /// How many allocations of `action` can fail, each of them as GenICam::BadAllocException.
    template <class Action>
    static int FailuresOf(Action action) {
        for (int n = 1;; ++n) {
            const FailingAllocation failing(static_cast<uint64_t>(n));
            try {
                action();
            } catch (const GenICam::BadAllocException&) {
                continue;
            }
            if (failing.Failed())
                ADD_FAILURE() << "allocation " << n << " failed in silence";
            return n - 1;
        }
    }
    INodeMap* Nodes() { return device->GetRemoteIZqPort()->GetINodeMap(); }

    Bag bag{CreateIZqFeatureBag()};
    const std::string file = testing::TempDir() + "zqapi_bag_" + std::to_string(::getpid()) + ".txt";
};

TEST_F(FeatureBag, EmptyOneSavesItsHead) {
    EXPECT_EQ(Text(), HEAD);
}

TEST_F(FeatureBag, TextComesBackInOrder) {
    const std::string features = "Width\t640\nGain\t1.5\nWidth\t320\nName\ta b\tc\n";
    EXPECT_EQ(Kept(HEAD + features), features);
    EXPECT_EQ(Kept(HEAD + std::string("Height\t1\n")), "Height\t1\n");
}

TEST_F(FeatureBag, EmptyTextKeepsTheContent) {
    Fill(HEAD + std::string("A\t1\n"));
    EXPECT_EQ(Refusal([this] { Fill(""); }), "The stream is eof");
    EXPECT_EQ(Text(), HEAD + std::string("A\t1\n"));
}

TEST_F(FeatureBag, TextWithoutMagicEmptiesIt) {
    for (const std::string text :
         {"A\t1\n", "\n", "# {05D8C294}\nA\t1\n", "\n# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n"}) {
        Fill(HEAD + std::string("A\t1\n"));
        EXPECT_EQ(Refusal([&] { Fill(text); }),
                  "The stream is not a GenApi feature stream since it is missing the "
                  "magic GUID in the first line");
        EXPECT_EQ(Text(), HEAD);
    }
}

TEST_F(FeatureBag, MagicMayStandAnywhereInTheFirstLine) {
    EXPECT_EQ(Kept("x {05D8C294-F295-4dfb-9D01-096BD04049F4} y\nA\t1\n"), "A\t1\n");
}

TEST_F(FeatureBag, CommentsAreIgnoredBetweenLines) {
    EXPECT_EQ(Kept(std::string(HEAD) + "# one\n#\nA\t1\n# two\n# three\nB\t#2\n# last"), "A\t1\nB\t#2\n");
}

TEST_F(FeatureBag, NameWithoutValueIsDroppedAtTheEnd) {
    EXPECT_EQ(Kept(std::string(MAGIC) + "A\t1\nB"), "A\t1\n");
    EXPECT_EQ(Kept(std::string(MAGIC) + "A\t1\nB\t"), "A\t1\n");
    EXPECT_EQ(Kept(std::string(MAGIC) + "A\t1\nB\t\n"), "A\t1\nB\t\n");
    EXPECT_EQ(Kept(std::string(MAGIC) + "A\t1\nB\t2"), "A\t1\nB\t2\n");
}

TEST_F(FeatureBag, CarriageReturnsBelongToTheValues) {
    EXPECT_EQ(Kept("# {05D8C294-F295-4dfb-9D01-096BD04049F4}\r\nA\t1\r\nB\t2\r\n"), "A\t1\r\nB\t2\r\n");
}

TEST_F(FeatureBag, BlankLineGoesIntoTheNextName) {
    EXPECT_EQ(Kept(std::string(MAGIC) + "A\t1\n\nB\t2\n"), "A\t1\n\nB\t2\n");
    EXPECT_EQ(Kept(std::string(MAGIC) + "A\t1\n\n"), "A\t1\n");
}

TEST_F(FeatureBag, LongLinesEndWhereTheyAlwaysDid) {
    const std::string value(100000, 'v'), longest(1023, 'n'), beyond(1024, 'n');
    EXPECT_EQ(Kept(MAGIC + longest + "\t" + value + "\n"), longest + "\t" + value + "\n");
    EXPECT_EQ(Kept(std::string(MAGIC) + "A\t1\n" + beyond + "\t2\nC\t3\n"), "A\t1\n");
    EXPECT_EQ(Kept(std::string(MAGIC) + "A\t1\n#" + std::string(1499, 'c') + "\nB\t2\n"),
              "A\t1\n" + std::string(476, 'c') + "\nB\t2\n");
    EXPECT_EQ(Kept(std::string(MAGIC) + "A\t1\n#" + std::string(1023, 'c') + "\nB\t2\n"), "A\t1\n\nB\t2\n");
    EXPECT_EQ(Kept("# {05D8C294-F295-4dfb-9D01-096BD04049F4}" + std::string(1000, ' ') + "\nA\t1\n"), "");
}

TEST_F(FeatureBag, FileIsReadAndWrittenLikeAText) {
    WriteFile(std::string(MAGIC) + "A\t1\n# comment\nB\t2\n");
    bag->StoreFileToBag(file.c_str());
    bag->SaveToFile(file.c_str());
    EXPECT_EQ(ReadFile(), std::string(HEAD) + "A\t1\nB\t2\n");
    bag->StoreFileToBag(file.c_str());
    EXPECT_EQ(Text(), ReadFile());
}

TEST_F(FeatureBag, FilesThatCanNotBeUsedAreNamed) {
    Fill(HEAD + std::string("A\t1\n"));
    EXPECT_EQ(Refusal([this] { bag->StoreFileToBag("/nowhere/a.txt"); }),
              "File /nowhere/a.txt could not be opened.");
    EXPECT_EQ(Refusal([this] { bag->SaveToFile("/nowhere/a.txt"); }),
              "File /nowhere/a.txt could not be opened.");
    EXPECT_EQ(Refusal([this] { bag->SaveToFile("/dev/full"); }), "File /dev/full is unwritable.");
    WriteFile("");
    EXPECT_EQ(Refusal([this] { bag->StoreFileToBag(file.c_str()); }), "The stream is eof");
    EXPECT_EQ(Text(), HEAD + std::string("A\t1\n"));
}

TEST_F(FeatureBag, NullNodeMapIsRefused) {
    for (const auto& action : {+[](IZqFeatureBag& bag) { bag.StoreNodeMapToBag(nullptr, -1); },
                               +[](IZqFeatureBag& bag) { bag.Load(nullptr, true, nullptr); }}) {
        const Thrown thrown = Catch<GenICam::InvalidArgumentException>([&] { action(*bag); });
        EXPECT_EQ(thrown.text, "Nodemap pointer is NULL");
        EXPECT_EQ(thrown.source, "ZqApi_TL/ZqFeatureBag");
    }
}

TEST_F(FeatureBag, CameraGetsItsValuesBack) {
    Open();
    const int64_t stored = bag->StoreNodeMapToBag(Nodes(), -1);
    const std::string before = Text();
    EXPECT_NE(before.find("Width\t64\n"), std::string::npos) << before;
    EXPECT_EQ(std::count(before.begin(), before.end(), '\n') - 3, stored);
    GenApi::CIntegerPtr width = Nodes()->GetNode("Width"), height = Nodes()->GetNode("Height");
    width->SetValue(100);
    height->SetValue(200);
    gcstring_vector errors;
    EXPECT_TRUE(bag->Load(Nodes(), true, &errors));
    EXPECT_EQ(errors.size(), 0u);
    EXPECT_EQ(width->GetValue(), 64);
    EXPECT_EQ(height->GetValue(), 64);
    EXPECT_EQ(producer.GetRegister<uint32_t>("REMOTE1", 0x100), 64u);
    bag->StoreNodeMapToBag(Nodes(), -1);
    EXPECT_EQ(Text(), before);
}

TEST_F(FeatureBag, EntriesAreLimited) {
    Open();
    EXPECT_EQ(bag->StoreNodeMapToBag(Nodes(), 2), 2);
    const std::string text = Text();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 5);
}

TEST_F(FeatureBag, ValuesThatDoNotStickAreListed) {
    Open();
    Fill(std::string(MAGIC) + "Width\t100\nNoSuchFeature\t1\nHeight\t70000\nPixelFormat\tMono16\n");
    gcstring_vector errors;
    EXPECT_FALSE(bag->Load(Nodes(), true, &errors));
    ASSERT_EQ(errors.size(), 2u);
    EXPECT_NE(std::string(errors[0].c_str()).find("NoSuchFeature"), std::string::npos);
    EXPECT_NE(std::string(errors[1].c_str()).find("Height"), std::string::npos);
    EXPECT_EQ(producer.GetRegister<uint32_t>("REMOTE1", 0x100), 100u);
    EXPECT_EQ(producer.GetRegister<uint32_t>("REMOTE1", 0x108), 17825799u);
    EXPECT_FALSE(bag->Load(Nodes(), true, nullptr));
}

TEST_F(FeatureBag, TextsOfOthersLoad) {
    Open();
    Fill("# {05D8C294-F295-4dfb-9D01-096BD04049F4}\r\nWidth\t100\r\nHeight\t200\r\n");
    EXPECT_TRUE(bag->Load(Nodes(), true, nullptr));
    EXPECT_EQ(producer.GetRegister<uint32_t>("REMOTE1", 0x100), 100u);
}

TEST_F(FeatureBag, EmptyOneLoads) {
    Open();
    EXPECT_TRUE(bag->Load(Nodes(), true, nullptr));
}

TEST_F(FeatureBag, WithoutVerificationLimitsAreTheCamerasMatter) {
    Open();
    Fill(std::string(MAGIC) + "Width\t70000\n");
    EXPECT_FALSE(bag->Load(Nodes(), true, nullptr));
    EXPECT_EQ(producer.GetRegister<uint32_t>("REMOTE1", 0x100), 64u);
    EXPECT_TRUE(bag->Load(Nodes(), false, nullptr));
    EXPECT_EQ(producer.GetRegister<uint32_t>("REMOTE1", 0x100), 70000u);
}

TEST_F(FeatureBag, FileWithoutMagicEmptiesIt) {
    Fill(HEAD + std::string("A\t1\n"));
    WriteFile("A\t1\n");
    EXPECT_NE(Refusal([this] { bag->StoreFileToBag(file.c_str()); }).find("missing the magic GUID"),
              std::string::npos);
    EXPECT_EQ(Text(), HEAD);
}

TEST_F(FeatureBag, FailedAllocationSaysSo) {
    {
        const FailingAllocation failing(1);
        EXPECT_THROW(CreateIZqFeatureBag(), GenICam::BadAllocException);
    }
    const gcstring text((HEAD + std::string("Name\t") + std::string(5000, 'v') + "\nOther\t1\n").c_str());
    EXPECT_GT(FailuresOf([&] { bag->StoreStringToBag(text); }), 3);
    gcstring saved;
    EXPECT_GT(FailuresOf([&] { bag->SaveToString(saved); }), 1);
    EXPECT_STREQ(saved.c_str(), text.c_str());
}

TEST_F(FeatureBag, FileThatEndsInAReadErrorSaysSo) {
    EXPECT_EQ(Refusal([this] { bag->StoreFileToBag("/proc/self/mem"); }),
              "File /proc/self/mem is unreadable.");
}

TEST_F(FeatureBag, ValuesThatWaitForEachOtherAreSetHoweverManyTheyAre) {
    Open();
    // Each feature takes its value only while the one after it has the value 1.
    std::string nodes, text = MAGIC;
    for (int index = 0; index < 8; ++index) {
        const std::string name = "F" + std::to_string(index), next = "F" + std::to_string(index + 1);
        nodes += "<Integer Name=\"" + name + "\">" +
                 (index < 7 ? "<pIsAvailable>" + next + "</pIsAvailable>" : "") +
                 "<Value>0</Value></Integer>";
        text += name + "\t1\n";
    }
    GenApi::CNodeMapFactory factory(
        (std::string("<RegisterDescription ModelName=\"M\" VendorName=\"V\" "
                     "StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" "
                     "SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" "
                     "SubMinorVersion=\"0\">") +
         nodes + "<Port Name=\"Device\"/></RegisterDescription>")
            .c_str());
    GenApi::CNodeMapRef map;
    map = factory.CreateNodeMap("Test", true);
    Fill(text);
    EXPECT_TRUE(bag->Load(map._Ptr, true, nullptr));
}

TEST(FeatureBagEntry, NeedsTheLibrary) {
    EXPECT_EQ(Catch<GenICam::RuntimeException>([] { CreateIZqFeatureBag(); }).text,
              "ZqApi is not initialized.");
}

} // namespace
} // namespace ZqTest
