// What every node tells of itself and of its neighbours.
#include "Camera.h"

using namespace GenICam;
using namespace GenApi;

namespace {

using Names = std::vector<std::string>;

std::string Integer(const std::string& name, const std::string& inside) {
    return ::Node("Integer", name, inside);
}

Names NamesOf(const NodeList_t& nodes) {
    Names names;
    for (INode* const node : nodes)
        names.emplace_back(node->GetName().c_str());
    return names;
}

Names Children(Camera& camera, const std::string& node, ELinkType type) {
    NodeList_t nodes;
    camera.Node(node)->GetChildren(nodes, type);
    return NamesOf(nodes);
}

} // namespace

TEST(Node, PrincipalInterfaceFollowsItsType) {
    Camera camera(
        "<Enumeration Name=\"E\"><EnumEntry "
        "Name=\"On\"><Value>1</Value></EnumEntry><Value>1</Value></Enumeration>"
        "<ConfRom Name=\"Rom\"><Address>0</Address><Length>16</Length><pPort>Device</pPort>"
        "<TextDesc Name=\"Maker\">0x81</TextDesc><IntKey Name=\"Serial\">12</IntKey></ConfRom>" +
        IntReg("Reg", 0) + ::Register("MaskedIntReg", "Bits", 0, 4, "<Bit>1</Bit>") +
        ::Register("FloatReg", "FloatReg", 0, 4) + ::Register("StringReg", "StringReg", 0, 4) +
        ::Register("Register", "Bytes", 0, 4) + Integer("Int", "<Value>1</Value>") +
        ::Node("Float", "Float", "<Value>1</Value>") + ::Node("Boolean", "Bool", "<Value>1</Value>") +
        ::Node("Command", "Command", "<Value>1</Value>") + ::Node("String", "String", "<Value>x</Value>") +
        ::Node("IntSwissKnife", "IntKnife", "<Formula>1</Formula>") +
        ::Node("SwissKnife", "Knife", "<Formula>1</Formula>") +
        ::Node("IntConverter", "IntConverter",
               "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>Int</pValue>") +
        ::Node("Converter", "Converter",
               "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>Int</pValue>") +
        ::Node("AdvFeatureLock", "Lock", "<FeatureID>1</FeatureID>") +
        ::Node("SmartFeature", "Smart", "<FeatureID>1</FeatureID>") + ::Node("Category", "Group", "") +
        ::Node("Node", "Plain", "") + ::Node("Thing", "Unknown", ""));
    const std::pair<const char*, EInterfaceType> kinds[] = {
        {"Int", intfIInteger},      {"Reg", intfIInteger},          {"Bits", intfIInteger},
        {"IntKnife", intfIInteger}, {"IntConverter", intfIInteger}, {"Serial", intfIInteger},
        {"Lock", intfIInteger},     {"Smart", intfIInteger},        {"Float", intfIFloat},
        {"FloatReg", intfIFloat},   {"Knife", intfIFloat},          {"Converter", intfIFloat},
        {"Bool", intfIBoolean},     {"Command", intfICommand},      {"E", intfIEnumeration},
        {"String", intfIString},    {"StringReg", intfIString},     {"Maker", intfIString},
        {"Bytes", intfIRegister},   {"Rom", intfIRegister},         {"Group", intfICategory},
        {"Device", intfIPort},      {"Plain", intfIBase},           {"Unknown", intfIBase}};
    for (const auto& [name, kind] : kinds)
        EXPECT_EQ(camera.Node(name)->GetPrincipalInterfaceType(), kind) << name;
    EXPECT_EQ(dynamic_cast<INode*>(camera.Enum("E")->GetEntryByName("On"))->GetPrincipalInterfaceType(),
              intfIEnumEntry);
}

TEST(Node, NamesTellWhereTheyAreDefined) {
    Camera camera("<Integer Name=\"Width\" NameSpace=\"Standard\"><Value>1</Value></Integer>" +
                  Integer("Own", "<DisplayName>My own</DisplayName><Value>1</Value>") +
                  "<Enumeration Name=\"E\"><EnumEntry Name=\"On\"><Value>1</Value></EnumEntry>"
                  "<EnumEntry Name=\"Off\"><Symbolic>Dark</Symbolic><Value>0</Value></EnumEntry>"
                  "<Value>1</Value></Enumeration>");
    EXPECT_EQ(camera.Node("Width")->GetNameSpace(), Standard);
    EXPECT_EQ(camera.Node("Own")->GetNameSpace(), Custom);
    EXPECT_TRUE(camera.Node("Width")->GetDisplayName() == "Width");
    EXPECT_TRUE(camera.Node("Own")->GetDisplayName() == "My own");
    EXPECT_TRUE(CNodePtr(camera.Enum("E")->GetEntry(1))->GetDisplayName() == "On");
    EXPECT_TRUE(CNodePtr(camera.Enum("E")->GetEntry(0))->GetDisplayName() == "Dark");
    EXPECT_TRUE(camera.Enum("E")->GetEntryByName("Dark")->GetSymbolic() == "Dark");
    EXPECT_EQ(camera.Enum("E")->GetEntryByName("Off"), nullptr);
}

TEST(Node, ChildrenAreListedByWhatTheyAreFor) {
    Camera camera(::Node("Category", "Root", "<pFeature>Copied</pFeature><pFeature>Scaled</pFeature>") +
                  Integer("Copied", "<pValueCopy>B</pValueCopy><pValue>A</pValue><pMax>Limit</pMax>") +
                  ::Node("Converter", "Scaled",
                         "<pVariable Name=\"V\">Limit</pVariable><FormulaTo>FROM</FormulaTo>"
                         "<FormulaFrom>TO+V</FormulaFrom><pValue>Copied</pValue>") +
                  Integer("Limit", "<Value>100</Value>") + IntReg("A", 0) + IntReg("B", 4) +
                  Integer("OverScaled", "<pValue>Scaled</pValue>"));
    EXPECT_EQ(Children(camera, "Root", ctReadingChildren), (Names{"Copied", "Scaled"}));
    EXPECT_EQ(Children(camera, "Copied", ctReadingChildren), Names{"A"});
    EXPECT_EQ(Children(camera, "Copied", ctWritingChildren), (Names{"A", "B"}));
    EXPECT_EQ(Children(camera, "Scaled", ctWritingChildren), Names{"Copied"});
    EXPECT_EQ(Children(camera, "Limit", ctWritingChildren), Names{});
    EXPECT_EQ(Children(camera, "A", ctWritingChildren), Names{});
    EXPECT_EQ(Children(camera, "OverScaled", ctTerminalNodes), Names{"A"});
    EXPECT_EQ(Children(camera, "Scaled", ctParentNodes), (Names{"Root", "OverScaled"}));
    const Names depending = Children(camera, "A", ctDependingNodes);
    for (const char* name : {"Copied", "Scaled", "OverScaled"})
        EXPECT_NE(std::find(depending.begin(), depending.end(), name), depending.end()) << name;
    EXPECT_EQ(std::find(depending.begin(), depending.end(), "B"), depending.end());
}

TEST(Node, PropertiesAreTheElementsOfTheDescription) {
    Camera camera(Integer("A", "<ToolTip>t</ToolTip><pInvalidator>B</pInvalidator>"
                               "<pInvalidator>C</pInvalidator><Value>1</Value>") +
                  Integer("B", "<pValue>Gone</pValue>") + Integer("C", "<Value>1</Value>"));
    gcstring_vector names;
    camera.Node("A")->GetPropertyNames(names);
    EXPECT_EQ(names.size(), 4u);
    for (const char* name : {"Name", "ToolTip", "pInvalidator", "Value"})
        EXPECT_TRUE(names.contains(name)) << name;
    EXPECT_STREQ(Property(camera, "A", "Name").c_str(), "A");
    EXPECT_STREQ(Property(camera, "A", "pInvalidator").c_str(), "B\tC");
    EXPECT_STREQ(Property(camera, "A", "BuildError").c_str(), "(none)");
    camera.Node("B")->GetPropertyNames(names);
    EXPECT_TRUE(names.contains("BuildError"));
    EXPECT_STREQ(Property(camera, "B", "BuildError").c_str(), "pValue 'Gone' does not exist");
}

TEST(Node, WhatCannotBeImposedIsRefused) {
    Camera camera(Integer("A", "<Value>1</Value>"));
    EXPECT_EQ(
        Failure<InvalidArgumentException>([&] { camera.Node("A")->ImposeAccessMode(_UndefinedAccesMode); }),
        "Access mode 5 can't be imposed on 'A'.");
    EXPECT_EQ(
        Failure<InvalidArgumentException>([&] { camera.Node("A")->ImposeVisibility(_UndefinedVisibility); }),
        "Visibility 99 can't be imposed on 'A'.");
    EXPECT_EQ(camera.Mode("A"), RW);
    EXPECT_EQ(camera.Node("A")->GetVisibility(), Beginner);
}

TEST(Node, DocumentationAddressIsFilledIn) {
    Camera camera(Integer("A",
                          "<DocuURL>http://docs/$(Sys::VendorName)/$(Sys::ModelName)/$(NodeName)/$(NodeName)"
                          "?v=$(Sys::DeviceVersion)&amp;s=$(Sys::SchemaVersion)</DocuURL><Value>1</Value>") +
                  Integer("B", "<Value>1</Value>"));
    EXPECT_STREQ(camera.Node("A")->GetDocuURL().c_str(), "http://docs/Vendor/Model/A/A?v=2.3.4&s=1.1.0");
    EXPECT_STREQ(camera.Node("B")->GetDocuURL().c_str(), "");
}

TEST(Node, CommonElementsAreUnderstoodOnEveryNode) {
    Camera camera(Integer("A", "<Description>long</Description><IsDeprecated>Yes</IsDeprecated>"
                               "<pAlias>B</pAlias><pCastAlias>F</pCastAlias><EventID>9C43</EventID>"
                               "<ImposedVisibility>Guru</ImposedVisibility><Visibility>Expert</Visibility>"
                               "<PollingTime>300</PollingTime><Value>1</Value>") +
                  Integer("B", "<Visibility>Nobody</Visibility><IsDeprecated>No</IsDeprecated>"
                               "<Streamable>No</Streamable><Value>1</Value>") +
                  ::Node("Float", "F", "<Value>1</Value>"));
    INode& a = *camera.Node("A");
    EXPECT_TRUE(a.GetDescription() == "long");
    EXPECT_TRUE(a.IsDeprecated());
    EXPECT_EQ(a.GetAlias(), camera.Node("B"));
    EXPECT_EQ(a.GetCastAlias(), camera.Node("F"));
    EXPECT_TRUE(a.GetEventID() == "9C43");
    EXPECT_EQ(a.GetVisibility(), Guru);
    EXPECT_EQ(a.GetPollingTime(), 300);
    INode& b = *camera.Node("B");
    EXPECT_FALSE(b.IsDeprecated());
    EXPECT_FALSE(b.IsStreamable());
    EXPECT_EQ(b.GetVisibility(), Beginner);
    EXPECT_EQ(b.GetPollingTime(), -1);
    EXPECT_EQ(b.GetAlias(), nullptr);
}

TEST(Node, SelectedNodesWithoutAValueAreNoFeatures) {
    Camera camera(Integer("S", "<Value>1</Value><pSelected>A</pSelected><pSelected>Plain</pSelected>"
                               "<pSelected>Gone</pSelected>") +
                  Integer("A", "<Value>1</Value>") + ::Node("Node", "Plain", ""));
    FeatureList_t selected;
    CSelectorPtr(camera.Node("S"))->GetSelectedFeatures(selected);
    ASSERT_EQ(selected.size(), 1u);
    EXPECT_TRUE(selected[0]->GetNode()->GetName() == "A");
}

TEST(Node, KeptValuesAreToldFromOthers) {
    Camera camera(Integer("A", "<pValue>R</pValue>") + IntReg("R", 0) +
                  IntReg("Never", 4, 4, "<Cachable>NoCache</Cachable>"));
    EXPECT_FALSE(camera.Value("A")->IsValueCacheValid());
    camera.Int("A")->GetValue();
    EXPECT_TRUE(camera.Value("A")->IsValueCacheValid());
    EXPECT_TRUE(camera.Node("R")->IsCachable());
    camera.Node("R")->InvalidateNode();
    EXPECT_FALSE(camera.Value("A")->IsValueCacheValid());
    camera.Int("Never")->GetValue();
    EXPECT_FALSE(camera.Value("Never")->IsValueCacheValid());
    EXPECT_FALSE(camera.Node("Never")->IsCachable());
}

TEST(Boolean, TakesFourTextsInAnyCase) {
    Camera camera(::Node("Boolean", "B", "<Value>false</Value>"));
    EXPECT_TRUE(camera.Value("B")->ToString() == "0");
    for (const char* text : {"1", "true", " TRUE\n"}) {
        camera.Bool("B")->SetValue(false);
        camera.Value("B")->FromString(text);
        EXPECT_TRUE(camera.Bool("B")->GetValue()) << text;
    }
    for (const char* text : {"0", "False"}) {
        *camera.Bool("B") = true;
        EXPECT_TRUE((*camera.Bool("B"))());
        camera.Value("B")->FromString(text);
        EXPECT_FALSE(camera.Bool("B")->GetValue()) << text;
    }
    EXPECT_EQ(Failure<InvalidArgumentException>([&] { camera.Value("B")->FromString("2"); }),
              "'2' is no value of 'B': 0, 1, true or false is needed.");
}

TEST(Command, TextExecutesAndTellsWhetherItIsDone) {
    Camera camera(::Node("Command", "C", "<pValue>R</pValue><CommandValue>5</CommandValue>") +
                  IntReg("R", 0));
    EXPECT_EQ(Failure<InvalidArgumentException>([&] { camera.Value("C")->FromString("0"); }),
              "'0' does not execute 'C': 1 or true is needed.");
    EXPECT_EQ(camera.port.writes, 0);
    camera.Value("C")->FromString("true");
    EXPECT_EQ(camera.port.memory[0], 5);
    EXPECT_TRUE(camera.Value("C")->ToString() == "1"); // still at it
    camera.port.Put(0, {0});
    EXPECT_TRUE(camera.Value("C")->ToString() == "0");
    (*camera.Command("C"))();
    EXPECT_EQ(camera.port.memory[0], 5);
}

TEST(RawRegister, TextsAreHexadecimalDigitsOfAnyKind) {
    Camera camera(::Register("Register", "R", 0, 3));
    for (const char* text : {"0x09AFf0", "0X09afF0", " 09AFF0 "}) {
        camera.port.Put(0, {0, 0, 0});
        camera.Value("R")->FromString(text);
        EXPECT_EQ(camera.port.Bytes(0, 3), (std::vector<int>{0x09, 0xAF, 0xF0})) << text;
    }
    EXPECT_TRUE(camera.Value("R")->ToString() == "0x09AFF0");
    for (const char* text : {"0x09AFG0", "09AF:0", "09AFg0", "09AF/0", "09AF0@", "x9AFF0"})
        EXPECT_EQ(Failure<InvalidArgumentException>([&] { camera.Value("R")->FromString(text); }),
                  "'" + std::string(text) + "' is no sequence of hexadecimal bytes.");
}

TEST(RawRegister, NoBytesAreRefused) {
    Camera camera(::Register("Register", "R", 0, 3) + IntReg("I", 4));
    uint8_t bytes[3] = {};
    for (const char* name : {"R", "I"}) {
        EXPECT_EQ(Failure<InvalidArgumentException>([&] { camera.Reg(name)->Set(nullptr, 3); }),
                  "No bytes to write to '" + std::string(name) + "'.");
        EXPECT_THROW(camera.Reg(name)->Set(bytes, -1), InvalidArgumentException);
        EXPECT_THROW(camera.Reg(name)->Get(nullptr, 3), InvalidArgumentException);
    }
    EXPECT_EQ(Failure<InvalidArgumentException>([&] { camera.Reg("R")->Get(bytes, 2); }),
              "A buffer of 2 bytes does not suit 'R', which has 3.");
    EXPECT_EQ(camera.port.writes, 0);
}

TEST(PortNode, ReadsAndWritesThroughToThePort) {
    Camera camera(IntReg("R", 0) +
                  "<Port Name=\"Chunk\"><ChunkID>1a</ChunkID><SwapEndianess>Yes</SwapEndianess>"
                  "<CacheChunkData>Yes</CacheChunkData></Port>");
    const CPortPtr port = camera.Node("Device");
    EXPECT_EQ(camera.Int("R")->GetValue(), 0);
    const uint8_t bytes[] = {7, 1};
    port->Write(bytes, 0, 2);
    EXPECT_EQ(camera.Int("R")->GetValue(), 0x107); // what was kept is stale
    uint8_t back[2] = {};
    port->Read(back, 0, 2);
    EXPECT_EQ(back[0], 7);
    EXPECT_EQ(Failure<InvalidArgumentException>([&] { port->Read(nullptr, 0, 2); }),
              "No buffer to read from port 'Device' into.");
    EXPECT_EQ(Failure<InvalidArgumentException>([&] { port->Write(nullptr, 0, 2); }),
              "No bytes to write to port 'Device'.");
    EXPECT_THROW(port->Read(back, 0, -1), InvalidArgumentException);
    EXPECT_THROW(port->Write(bytes, 0, -1), InvalidArgumentException);
    auto& chunk = dynamic_cast<IPortConstruct&>(*camera.Node("Chunk"));
    EXPECT_EQ(chunk.GetSwapEndianess(), Yes);
    EXPECT_EQ(dynamic_cast<IPortConstruct&>(*port).GetSwapEndianess(), No);
    EXPECT_TRUE(CChunkPortPtr(camera.Node("Chunk"))->GetChunkID() == "1a");
    EXPECT_EQ(CChunkPortPtr(camera.Node("Chunk"))->CacheChunkData(), Yes);
    EXPECT_EQ(CChunkPortPtr(camera.Node("Device"))->CacheChunkData(), No);
}

TEST(Enumeration, EntriesTellTheirValues) {
    Camera camera(
        "<Enumeration Name=\"E\"><EnumEntry Name=\"Once\"><Value>2</Value><NumericValue>2.5</NumericValue>"
        "<IsSelfClearing>Yes</IsSelfClearing></EnumEntry><EnumEntry Name=\"Off\"><Value>0</Value>"
        "</EnumEntry><EnumEntry Name=\"Bad\"></EnumEntry><Value>2</Value></Enumeration>");
    IEnumEntry& once = *camera.Enum("E")->GetEntryByName("Once");
    EXPECT_EQ(once.GetValue(), 2);
    EXPECT_EQ(once.GetNumericValue(), 2.5);
    EXPECT_TRUE(once.IsSelfClearing());
    EXPECT_TRUE(once.ToString() == "Once");
    EXPECT_EQ(Failure<AccessException>([&] { once.FromString("Off"); }),
              "Node '" + std::string(CNodePtr(&once)->GetName().c_str()) +
                  "' is not writable: it is an entry of an enumeration.");
    IEnumEntry& off = *camera.Enum("E")->GetEntryByName("Off");
    EXPECT_EQ(off.GetNumericValue(), 0.0);
    EXPECT_FALSE(off.IsSelfClearing());
    NodeList_t entries;
    camera.Enum("E")->GetEntries(entries);
    EXPECT_EQ(entries.size(), 2u); // the one without a value is none
    *camera.Enum("E") = "Off";
    EXPECT_TRUE(**camera.Enum("E") == "Off");
}

TEST(Enumeration, VerifiedNumberNeedsAnEntry) {
    Camera camera(
        "<Enumeration Name=\"E\"><EnumEntry Name=\"One\"><Value>1</Value></EnumEntry><pValue>R</pValue>"
        "</Enumeration>" +
        IntReg("R", 0));
    camera.port.Put(0, {9});
    EXPECT_EQ(camera.Enum("E")->GetIntValue(), 9);
    EXPECT_EQ(Failure<OutOfRangeException>([&] { camera.Enum("E")->GetIntValue(true); }),
              "Value 9 of 'E' has no entry.");
    EXPECT_EQ(Failure<RuntimeException>([&] { camera.Value("E")->ToString(); }),
              "Value 9 of 'E' has no entry.");
    camera.port.Put(0, {1});
    EXPECT_EQ(camera.Enum("E")->GetIntValue(true, true), 1);
    EXPECT_TRUE(camera.Enum("E")->GetCurrentEntry()->GetSymbolic() == "One");
}

TEST(Category, IsNoPlaceForValues) {
    Camera camera(::Node("Category", "Root", "<pFeature>A</pFeature><pFeature>Gone</pFeature>") +
                  Integer("A", "<Value>1</Value>"));
    FeatureList_t features;
    CCategoryPtr(camera.Node("Root"))->GetFeatures(features);
    EXPECT_EQ(features.size(), 1u);
    EXPECT_TRUE(camera.Value("Root")->ToString() == "Root");
    EXPECT_EQ(Failure<AccessException>([&] { camera.Value("Root")->FromString("A"); }),
              "Node 'Root' is not writable: it is a category.");
    EXPECT_TRUE(camera.Node("A")->IsFeature());
    EXPECT_FALSE(camera.Node("Root")->IsFeature());
}

TEST(Node, PredicatesTakeEveryKindOfPointer) {
    Camera camera(Integer("A", "<Value>1</Value>") +
                  Integer("Never", "<pIsImplemented>No</pIsImplemented><Value>1</Value>") +
                  Integer("No", "<Visibility>Guru</Visibility><Value>0</Value>") +
                  IntReg("Fresh", 0, 4, "<Cachable>NoCache</Cachable>"));
    EXPECT_TRUE(IsImplemented(camera.Int("A")) && IsAvailable(camera.Int("A")) &&
                IsReadable(camera.Int("A")) && IsWritable(camera.Int("A")));
    EXPECT_FALSE(IsImplemented(camera.Int("Never")) || IsAvailable(camera.Int("Never")) ||
                 IsReadable(camera.Int("Never")) || IsWritable(camera.Int("Never")));
    EXPECT_TRUE(IsVisible(camera.Int("No"), Guru));
    EXPECT_FALSE(IsVisible(camera.Int("No"), Expert));
    EXPECT_FALSE(IsVisible(CIntegerPtr(), Guru));
    EXPECT_TRUE(IsCacheable(camera.Int("A")));
    EXPECT_FALSE(IsCacheable(camera.Int("Fresh")));
    EXPECT_FALSE(IsCacheable(CIntegerPtr()));
    const IBase* const none = nullptr;
    EXPECT_FALSE(IsVisible(none, Guru) || IsCacheable(none));
}

TEST(NodeMapRef, KeepsItsMapWhenAssignedToItself) {
    Camera camera(Integer("A", "<Value>1</Value>"));
    const CNodeMapRef& same = camera.map;
    camera.map = same;
    EXPECT_EQ(camera.Int("A")->GetValue(), 1);
}

TEST(NodeMap, FormulaFailuresNeedNoList) {
    Camera good(Integer("A", "<Value>1</Value>"));
    EXPECT_TRUE(good.map._Ptr->ParseSwissKnifes());
    Camera bad(::Node("IntSwissKnife", "K", "<Formula>1+</Formula>"));
    EXPECT_FALSE(bad.map._Ptr->ParseSwissKnifes());
}

TEST(Node, TableElementsOutsideNumbersMeanNothing) {
    Camera camera(::Node("Boolean", "B",
                         "<Value>1</Value><ValueDefault>0</ValueDefault><ValueIndexed Index=\"1\">0"
                         "</ValueIndexed><pIndex>B</pIndex>") +
                  ::Node("Float", "F", "<Value>1</Value><DisplayPrecision>3</DisplayPrecision>"));
    EXPECT_TRUE(camera.Bool("B")->GetValue());
    EXPECT_EQ(camera.Float("F")->GetDisplayPrecision(), 3);
}
