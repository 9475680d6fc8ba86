// How often a port is asked.
#include "Camera.h"
#include "PatternPort.h"

#include <cstdlib>
#include <filesystem>
#include <set>

using namespace GenICam;
using namespace GenApi;

TEST(PortAccess, ColdReadOfARegisterIsOneAccessAndACachedReadNone) {
    Camera camera(IntReg("R", 0) + ::Node("Integer", "F", "<pValue>R</pValue>"));
    EXPECT_EQ(camera.port.TakeReads(), 0); // connecting reads nothing
    camera.Int("F")->GetValue();
    EXPECT_EQ(camera.port.TakeReads(), 1);
    for (int i = 0; i < 3; ++i) {
        camera.Int("F")->GetValue();
        camera.Int("R")->GetValue();
        camera.Value("F")->ToString();
        camera.Mode("F");
        camera.Int("F")->GetMax();
    }
    EXPECT_EQ(camera.port.TakeReads(), 0);
    camera.Int("F")->GetValue(false, true);
    EXPECT_EQ(camera.port.TakeReads(), 1);
}

TEST(PortAccess, WriteThroughFillsTheCacheAndAFieldNeedsOneRead) {
    Camera camera(IntReg("R", 0) + Register("MaskedIntReg", "M", 4, 4, "<LSB>0</LSB><MSB>7</MSB>"));
    camera.Int("R")->SetValue(5);
    EXPECT_EQ(camera.Int("R")->GetValue(), 5);
    EXPECT_EQ(camera.port.TakeReads(), 0);
    EXPECT_EQ(camera.port.TakeWrites(), 1);
    camera.Int("M")->SetValue(5);
    EXPECT_EQ(camera.Int("M")->GetValue(), 5);
    EXPECT_EQ(camera.port.TakeReads(), 1);
    EXPECT_EQ(camera.port.TakeWrites(), 1);
}

TEST(PortAccess, SharedWordFollowsItsAddress) {
    const std::string place = "<pIndex Offset=\"4\">I</pIndex>";
    Camera camera(::Node("Integer", "I", "<Value>0</Value>") +
                  Register("MaskedIntReg", "Low", 0, 4, place + "<LSB>0</LSB><MSB>7</MSB>") +
                  Register("MaskedIntReg", "High", 0, 4, place + "<LSB>8</LSB><MSB>15</MSB>"));
    camera.port.Put(0, {1, 2, 0, 0, 3, 4, 0, 0});
    EXPECT_EQ(camera.Int("Low")->GetValue() * 16 + camera.Int("High")->GetValue(), 0x12);
    EXPECT_EQ(camera.port.TakeReads(), 1);
    camera.Int("I")->SetValue(1);
    EXPECT_EQ(camera.Int("Low")->GetValue() * 16 + camera.Int("High")->GetValue(), 0x34);
    EXPECT_EQ(camera.port.TakeReads(), 1);
}

TEST(PortAccess, FailedReadIsNotKeptForTheOthers) {
    Camera camera(IntReg("A", 0) + IntReg("B", 0));
    camera.port.Put(0, {7});
    camera.port.failure = true;
    EXPECT_THROW(camera.Int("A")->GetValue(), TimeoutException);
    camera.port.failure = false;
    EXPECT_EQ(camera.Int("B")->GetValue(), 7);
}

TEST(PortAccess, EnumerationReadsEachRegisterBehindItsEntriesOnce) {
    std::string entries;
    std::string registers;
    for (int i = 0; i < 15; ++i) {
        const std::string flag = "Has" + std::to_string(i % 5); // five registers for fifteen entries
        entries += ::Node("EnumEntry", "E" + std::to_string(i),
                          "<pIsImplemented>" + flag + "</pIsImplemented><pIsAvailable>" + flag +
                              "</pIsAvailable><Value>" + std::to_string(i) + "</Value>");
        if (i < 5)
            registers += IntReg(flag, 0x100 + 4 * i);
    }
    Camera camera(::Node("Enumeration", "E", entries + "<pValue>R</pValue>") + IntReg("R", 0) + registers);
    for (int i = 0; i < 5; ++i)
        camera.port.Put(0x100 + 4 * i, {1});
    StringList_t symbolics;
    camera.Enum("E")->GetSymbolics(symbolics);
    EXPECT_EQ(symbolics.size(), 15u);
    EXPECT_EQ(camera.port.TakeReads(), 5);
    camera.Value("E")->ToString();
    camera.Mode("E");
    EXPECT_EQ(camera.port.TakeReads(), 1); // the value
    camera.Enum("E")->GetSymbolics(symbolics);
    camera.Value("E")->ToString();
    EXPECT_EQ(camera.port.TakeReads(), 0);
    camera.Value("E")->FromString("E7");
    EXPECT_EQ(camera.port.TakeReads(), 0);
    EXPECT_EQ(camera.port.TakeWrites(), 1);
}

TEST(PortAccess, FieldsOfOneRegisterAreReadTogether) {
    std::string fields;
    for (int i = 0; i < 32; ++i)
        fields +=
            Register("MaskedIntReg", "B" + std::to_string(i), 0, 4, "<Bit>" + std::to_string(i) + "</Bit>");
    Camera camera(fields);
    camera.port.Put(0, {0x80, 0, 0, 0x01});
    int64_t sum = 0;
    for (int i = 0; i < 32; ++i)
        sum |= camera.Int("B" + std::to_string(i))->GetValue() << i;
    EXPECT_EQ(sum, 0x01000080);
    EXPECT_EQ(camera.port.TakeReads(), 1);
    camera.port.Put(0, {0xFF});
    camera.Node("B3")->InvalidateNode();
    EXPECT_EQ(camera.Int("B3")->GetValue(), 1);
    EXPECT_EQ(camera.port.TakeReads(), 1);
    camera.Int("B0")->SetValue(0); // reads the bits around it
    EXPECT_EQ(camera.port.TakeReads(), 1);
    EXPECT_EQ(camera.Int("B4")->GetValue() + camera.Int("B5")->GetValue() + camera.Int("B0")->GetValue(), 2);
    EXPECT_EQ(camera.port.TakeReads(), 1);
}

namespace {

/// Where registers lie that the description forbids to keep.
std::set<int64_t> VolatilePlaces(const CNodeMapRef& map) {
    std::set<int64_t> places;
    NodeList_t nodes;
    map._GetNodes(nodes);
    gcstring mode;
    gcstring attribute;
    for (INode* node : nodes)
        if (node->GetProperty("Cachable", mode, attribute) && mode == "NoCache")
            places.insert(CRegisterPtr(node)->GetAddress());
    return places;
}

void ReadTree(INode* node, std::set<INode*>& seen) {
    if (!seen.insert(node).second)
        return;
    try {
        if (const CCategoryPtr category = node) {
            FeatureList_t features;
            category->GetFeatures(features);
            for (IValue* feature : features)
                ReadTree(feature->GetNode(), seen);
        } else if (IsReadable(node)) {
            CValuePtr(node)->ToString();
        }
    } catch (const GenericException&) {
        // The pattern is no sensible camera.
    }
}

} // namespace

TEST(PortAccess, WholeTreeOfTheLargestDescriptionReadsNothingTwice) {
    namespace fs = std::filesystem;
    const char* const folder = std::getenv("ZQAPI_TEST_DATA");
    if (!folder)
        GTEST_SKIP() << "ZQAPI_TEST_DATA is not set";
    fs::path largest;
    for (const auto& file : fs::directory_iterator(fs::path(folder) / "corpus"))
        if (file.path().extension() == ".xml" &&
            (largest.empty() || fs::file_size(file.path()) > fs::file_size(largest)))
            largest = file.path();
    PatternPort port;
    const CNodeMapRef map(
        CNodeMapFactory(ContentType_Xml, gcstring(largest.c_str()), CacheUsage_Ignore).CreateNodeMap());
    map._Connect(&port);
    std::set<INode*> seen;
    ReadTree(map._GetNode("Root"), seen);
    EXPECT_GT(seen.size(), 300u);
    EXPECT_GT(port.reads.size(), 300u);
    const auto reads = port.reads;
    const std::set<int64_t> forbidden = VolatilePlaces(map);
    int twice = 0;
    for (const auto& [place, count] : reads)
        if (count > 1 && forbidden.count(place.first) == 0) {
            ++twice;
            std::cout << std::hex << place.first << std::dec << " (" << place.second << " bytes): " << count
                      << " reads\n";
        }
    EXPECT_EQ(twice, 0);
    EXPECT_EQ(port.writes, 0);
}
