// The document of a description: what counts as a node, as an element, as an attribute.
#include "Camera.h"

using namespace GenICam;
using namespace GenApi;

namespace {

std::string Integer(const std::string& name, const std::string& inside = "<Value>1</Value>") {
    return ::Node("Integer", name, inside);
}

std::string Refusal(const std::string& nodes) {
    return Failure<RuntimeException>([&] { Camera camera(nodes); });
}

} // namespace

TEST(Document, ElementsAreKnownByTheirLocalNames) {
    CNodeMapRef map(
        CNodeMapFactory("<g:RegisterDescription SchemaMajorVersion=\"1\" xmlns:g=\"x\"><g:Integer "
                        "Name=\"A\"><g:Value>7</g:Value><g:>x</g:></g:Integer></g:RegisterDescription>")
            .CreateNodeMap());
    EXPECT_EQ(CIntegerPtr(map._GetNode("A"))->GetValue(), 7);
}

TEST(Document, TextBetweenElementsIsNothing) {
    Camera camera("text" + Integer("A", "text<Value>1</Value>text") +
                  "<StructReg>text<Address>0</Address><Length>4</Length><pPort>Device</pPort>"
                  "<StructEntry Name=\"S\">text<Bit>1</Bit></StructEntry></StructReg>");
    EXPECT_EQ(camera.Int("A")->GetValue(), 1);
    EXPECT_EQ(camera.Mode("S"), RO);
}

TEST(Document, NodesNeedAUsableName) {
    const std::string longest(1024, 'N');
    Camera camera("<Integer><Value>1</Value></Integer>" + Integer("") + Integer("  ") + Integer(longest) +
                  Integer(longest + "N") + Integer(" A "));
    EXPECT_EQ(camera.map._Ptr->GetNumNodes(), 3u); // with the port
    EXPECT_NE(camera.Node(longest), nullptr);
    EXPECT_EQ(camera.Node(longest + "N"), nullptr);
    EXPECT_NE(camera.Node("A"), nullptr);
}

TEST(Document, VersionsOutOfRangeAreZero) {
    const char* const kNumbers[] = {"-1", "70000", "x"};
    for (const std::string number : kNumbers) {
        CNodeMapRef map(
            CNodeMapFactory(("<RegisterDescription SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" "
                             "MajorVersion=\"" +
                             number + "\" MinorVersion=\"65535\"/>")
                                .c_str())
                .CreateNodeMap());
        Version_t version;
        CDeviceInfoPtr(map._Ptr)->GetDeviceVersion(version);
        EXPECT_EQ(version.Major, 0) << number;
        EXPECT_EQ(version.Minor, 65535);
    }
}

TEST(Document, FirstKnownAttributeCounts) {
    Camera camera("<IntReg Name=\"R\" Other=\"x\"><Address>0</Address><pIndex Unknown=\"1\" Offset=\"8\" "
                  "pOffset=\"Step\">I</pIndex><Length>4</Length><pPort>Device</pPort></IntReg>" +
                  Integer("I", "<Value>3</Value>") + Integer("Step", "<Value>100</Value>"));
    EXPECT_EQ(camera.Reg("R")->GetAddress(), 24);
}

TEST(Document, EntriesOfStructuresLieWhereTheStructureLies) {
    Camera camera(
        "<StructReg><Address>0x10</Address><Length>2</Length><pPort>Device</pPort>"
        "<Endianess>BigEndian</Endianess><StructEntry Name=\"S\"><Address>0x80</Address>"
        "<pAddress>A</pAddress><pIndex>A</pIndex><Length>1</Length><pLength>A</pLength>"
        "<pPort>Other</pPort><Endianess>LittleEndian</Endianess><Bit>15</Bit></StructEntry></StructReg>" +
        Integer("A", "<Value>3</Value>"));
    camera.port.Put(0x10, {0, 1});
    EXPECT_EQ(camera.Int("S")->GetValue(), 1);
    EXPECT_EQ(camera.Reg("S")->GetAddress(), 0x10);
    EXPECT_EQ(camera.Reg("S")->GetLength(), 2);
}

TEST(Document, FormulasInAnAddressNeedNoName) {
    Camera camera("<IntReg Name=\"R\"><Address>1</Address><SwissKnife><Formula>2.5*4</Formula></SwissKnife>"
                  "<IntSwissKnife><pVariable Name=\"V\">A</pVariable><Formula>V*100</Formula></IntSwissKnife>"
                  "<Length>4</Length><pPort>Device</pPort></IntReg>" +
                  Integer("A", "<Value>3</Value>"));
    EXPECT_EQ(camera.Reg("R")->GetAddress(), 311);
}

TEST(Document, EntriesWithoutANameAreNone) {
    Camera camera("<Enumeration Name=\"E\"><EnumEntry Name=\"\"><Value>1</Value></EnumEntry>"
                  "<EnumEntry Name=\"A\"><Symbolic></Symbolic><Value>2</Value></EnumEntry>"
                  "<pEnumEntry>Foreign</pEnumEntry><Value>2</Value></Enumeration>" +
                  Integer("Foreign"));
    NodeList_t entries;
    camera.Enum("E")->GetEntries(entries);
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_TRUE(CEnumEntryPtr(entries[0])->GetSymbolic() == "A");
}

TEST(Document, TextsCanBeLeftOut) {
    const std::string xml = Describe(
        Integer("A", "<ToolTip>t</ToolTip><Description>d</Description><DocuURL>u</DocuURL><Value>1</Value>"));
    for (const bool suppressed : {false, true}) {
        CNodeMapRef map(CNodeMapFactory(xml.c_str(), CacheUsage_Ignore, suppressed).CreateNodeMap());
        INode& node = *map._GetNode("A");
        EXPECT_STREQ(node.GetToolTip().c_str(), suppressed ? "" : "t");
        EXPECT_STREQ(node.GetDescription().c_str(), suppressed ? "" : "d");
        EXPECT_STREQ(node.GetDocuURL().c_str(), suppressed ? "" : "u");
    }
}

TEST(Document, UnknownElementsKeepTheirNames) {
    Camera camera(Integer("A", "<Colour>red</Colour><Colour>blue</Colour><Value>1</Value>"));
    EXPECT_STREQ(Property(camera, "A", "Colour").c_str(), "red\tblue");
}

TEST(Document, TooManyKindsOfElementsAreRefused) {
    std::string elements;
    for (int i = 0; i <= 50000; ++i)
        elements += "<x" + std::to_string(i) + "/>";
    EXPECT_EQ(Refusal(Integer("A", elements)), "The description has more than 50000 kinds of elements.");
}

TEST(Document, TooManyNodesAreRefused) {
    std::string nodes;
    for (int i = 0; i < 200000; ++i)
        nodes += "<Node Name=\"N" + std::to_string(i) + "\"/>";
    EXPECT_EQ(Refusal(nodes), "The description has more than 200000 nodes; the next is 'Device'.");
}

TEST(Document, NodesWithoutWhatTheyNeedSayWhy) {
    const std::string reg = "<Address>0</Address><Length>4</Length>";
    Camera camera(
        ::Node("IntReg", "NoPort", reg) + ::Node("IntReg", "NoPortNode", reg + "<pPort>A</pPort>") +
        ::Register("IntReg", "Short", 0, 0) + ::Register("FloatReg", "Half", 0, 2) +
        ::Register("FloatReg", "Single", 0, 4) + ::Register("FloatReg", "Double", 0, 8) +
        ::Register("MaskedIntReg", "NoBits", 0, 4) +
        ::Register("MaskedIntReg", "NoTop", 0, 4, "<LSB>1</LSB>") +
        ::Register("MaskedIntReg", "High", 0, 4, "<LSB>1</LSB><MSB>32</MSB>") +
        ::Register("IntReg", "BadOffset", 0, 4, "<pIndex Offset=\"x\">A</pIndex>") +
        ::Register("IntReg", "NoOffset", 0, 4, "<pIndex pOffset=\"Gone\">A</pIndex>") +
        ::Node("Integer", "BadTable", "<pIndex>A</pIndex><ValueIndexed Index=\"x\">1</ValueIndexed>") +
        ::Node("Integer", "BadValue", "<Value>one</Value>") +
        ::Node("Converter", "NoTarget", "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom>") +
        Integer("A"));
    const std::pair<const char*, const char*> kReasons[] = {
        {"NoPort", "it has no pPort"},
        {"NoPortNode", "pPort 'A' is no Port"},
        {"Short", "a Length of 0 is impossible"},
        {"Half", "a Length of 2 is impossible"},
        {"Single", "(none)"},
        {"Double", "(none)"},
        {"NoBits", "bits -1 to -1 lie outside the register"},
        {"NoTop", "bits 1 to -1 lie outside the register"},
        {"High", "bits 1 to 32 lie outside the register"},
        {"BadOffset", "the Offset 'x' is no number"},
        {"NoOffset", "pOffset 'Gone' does not exist"},
        {"BadTable", "the Index 'x' is no number"},
        {"BadValue", "the Value 'one' is no number"},
        {"NoTarget", "it has no pValue"}};
    for (const auto& [name, reason] : kReasons)
        EXPECT_STREQ(Property(camera, name, "BuildError").c_str(), reason) << name;
}

TEST(Document, AccessModesHaveShortForms) {
    const std::pair<const char*, EAccessMode> kModes[] = {{"R", RO},  {"RO", RO}, {"W", WO},
                                                          {"wo", WO}, {"RW", RW}, {"odd", RO}};
    for (const auto& [text, mode] : kModes)
        EXPECT_EQ(Camera(IntReg("R", 0, 4, "<AccessMode>" + std::string(text) + "</AccessMode>")).Mode("R"),
                  mode)
            << text;
}

namespace {

CNodeMapRef Injected(const std::string& target, const std::string& addition) {
    CNodeMapFactory factory(Describe(target).c_str(), CacheUsage_Ignore);
    CNodeMapFactory added(
        ("<RegisterDescription SchemaMajorVersion=\"1\">" + addition + "</RegisterDescription>").c_str(),
        CacheUsage_Ignore);
    factory.AddInjectionData(added);
    return CNodeMapRef(factory.CreateNodeMap());
}

} // namespace

TEST(Injection, CategoryIsUnitedOnlyWithACategory) {
    const CNodeMapRef map = Injected(
        ::Node("Category", "Root", "<ToolTip>B</ToolTip><pFeature>A</pFeature>") + Integer("A") +
            Integer("X"),
        "<Category "
        "Name=\"Root\"><ToolTip>new</ToolTip><pFeature>A</pFeature><pFeature>B</pFeature></Category>" +
            Integer("B") + "<Category Name=\"X\" MergePriority=\"1\"/>");
    FeatureList_t features;
    CCategoryPtr(map._GetNode("Root"))->GetFeatures(features);
    ASSERT_EQ(features.size(), 2u);
    EXPECT_TRUE(features[1]->GetNode()->GetName() == "B");
    EXPECT_TRUE(map._GetNode("Root")->GetToolTip() == "B");
    EXPECT_TRUE(CCategoryPtr(map._GetNode("X")).IsValid());
}

TEST(Injection, PrioritiesOutOfRangeAreNone) {
    for (const char* priority : {"2", "-2", "x"})
        EXPECT_EQ(Failure<RuntimeException>([&] {
                      Injected(Integer("A"), "<Integer Name=\"A\" MergePriority=\"" + std::string(priority) +
                                                 "\"><Value>2</Value></Integer>");
                  }),
                  "Both descriptions have a node 'A', and the injected one has no merge priority.");
}

TEST(Subtree, RootStaysAndAnotherRootGivesWay) {
    CNodeMapFactory factory(
        Describe(::Node("Category", "Root", "<pFeature>Part</pFeature>") +
                 ::Node("Category", "Part", "<pFeature>A</pFeature><pFeature>Root</pFeature>") +
                 Integer("A", "<Value>1</Value><p>B</p><phase>B</phase><p1>B</p1><pOther>C</pOther>") +
                 Integer("B") + Integer("C"))
            .c_str());
    CNodeMapRef whole(factory.ExtractSubtree("Root", true).CreateNodeMap());
    EXPECT_NE(whole._GetNode("Part"), nullptr);
    EXPECT_EQ(whole._GetNode("B"), nullptr);
    EXPECT_NE(whole._GetNode("C"), nullptr); // what looks like a pointer may be needed
    CNodeMapRef part(factory.ExtractSubtree("Part", true).CreateNodeMap());
    EXPECT_EQ(part._GetNode("Part"), nullptr);
    FeatureList_t features;
    CCategoryPtr(part._GetNode("Root"))->GetFeatures(features);
    EXPECT_EQ(features.size(), 2u);
}

TEST(Subtree, KeysOfARomBringTheRom) {
    CNodeMapFactory factory(
        Describe("<ConfRom Name=\"Rom\"><Address>0</Address><Length>16</Length><pPort>Device</pPort>"
                 "<TextDesc Name=\"Maker\">0x81</TextDesc></ConfRom>")
            .c_str());
    CNodeMapRef part(factory.ExtractSubtree("Maker").CreateNodeMap());
    EXPECT_NE(part._GetNode("Rom"), nullptr);
}

TEST(Factory, EmptyOneHasNothingToGive) {
    CNodeMapFactory empty;
    CNodeMapFactory full(Describe(Integer("A")).c_str());
    const std::string none = "The node map factory holds no description.";
    EXPECT_EQ(Failure<RuntimeException>([&] { full.AddInjectionData(empty); }), none);
    EXPECT_EQ(Failure<RuntimeException>([&] { empty.ExtractSubtree("A"); }), none);
    EXPECT_EQ(Failure<RuntimeException>([&] { empty.Preprocess(); }), none);
    EXPECT_FALSE(empty.IsPreprocessed());
    EXPECT_FALSE(empty.IsLoaded());
    empty.ReleaseCameraDescriptionFileData();
    EXPECT_TRUE(empty.IsCameraDescriptionFileDataReleased());
    EXPECT_FALSE(full.IsCameraDescriptionFileDataReleased());
    full.ReleaseCameraDescriptionFileData();
    EXPECT_TRUE(full.IsCameraDescriptionFileDataReleased());
    full.Preprocess();
    EXPECT_TRUE(full.IsPreprocessed());
}
