// The one camera whose description follows schema 1.0, which GigE Vision cameras had first.

#include "Descriptions.h"

#include <cstring>
#include <map>

namespace {

class Schema10 : public Descriptions {
protected:
    void SetUp() override {
        setenv("ZQGENTL_SIM", "GEV=2", 1);
        Descriptions::SetUp();
        unsetenv("ZQGENTL_SIM");
        system = OpenSystem();
        interface = OpenInterface(system, gevInterface);
        bigEndian = true;
        OpenCamera("ZQ-GEV-0:SIM-GEV-0002");
    }

    void OpenCamera(const char* id) {
        ASSERT_EQ(gentl.IFOpenDevice(interface, id, DEVICE_ACCESS_CONTROL, &device), GC_ERR_SUCCESS);
        ASSERT_EQ(gentl.DevGetPort(device, &remote), GC_ERR_SUCCESS);
    }

    int32_t UrlNumber(URL_INFO_CMD command) {
        int32_t number = -1;
        size_t size = sizeof number;
        INFO_DATATYPE type = 0;
        EXPECT_EQ(gentl.GCGetPortURLInfo(remote, 0, command, &type, &number, &size), GC_ERR_SUCCESS);
        return number;
    }

    std::string OldUrl() {
        char list[256];
        size_t size = sizeof list;
        EXPECT_EQ(gentl.GCGetPortURL(remote, list, &size), GC_ERR_SUCCESS);
        return list;
    }
};

using Names = std::set<std::string>;

const Names registers = {"IntReg", "FloatReg", "StringReg", "Register"};
const Names nodesOf10 = {"Category", "Integer",     "IntReg",    "Float",    "FloatReg",      "Boolean",
                         "Command",  "Enumeration", "StringReg", "Register", "IntSwissKnife", "Port"};
/// What may stand in every node, and what in some only.
const Names wordsOfAll = {"ToolTip",  "Visibility",        "EventID",   "pIsAvailable", "pIsLocked",
                          "Address",  "ImposedAccessMode", "Length",    "AccessMode",   "pPort",
                          "Cachable", "PollingTime",       "Value",     "pValue",       "pFeature",
                          "Formula",  "CommandValue",      "pVariable", "EnumEntry",    "ChunkID"};
const std::map<std::string, Names> wordsOfSome = {
    {"pInvalidator", registers},
    {"Sign", {"IntReg"}},
    {"Endianess", {"IntReg", "FloatReg"}},
    {"Streamable", {"Integer", "Enumeration", "Boolean", "Float"}},
    {"Min", {"Integer", "Float"}},
    {"pMin", {"Integer", "Float"}},
    {"Max", {"Integer", "Float"}},
    {"pMax", {"Integer", "Float"}},
    {"Inc", {"Integer"}},
    {"Unit", {"Float"}},
    {"Representation", {"Integer", "Float"}},
    {"pSelected", {"Integer", "Enumeration"}},
};

bool IsWordOf10(const std::string& node, const std::string& word) {
    const auto some = wordsOfSome.find(word);
    return some != wordsOfSome.end() ? some->second.count(node) != 0 : wordsOfAll.count(word) != 0;
}

bool IsDecimal(const std::string& text) {
    return text.find_first_not_of("-0123456789") == std::string::npos;
}

void ExpectNodeOf10(const pugi::xml_node& node) {
    SCOPED_TRACE(node.attribute("Name").value());
    EXPECT_EQ(nodesOf10.count(node.name()), 1U) << node.name();
    for (const pugi::xml_node word : node.children())
        EXPECT_TRUE(IsWordOf10(node.name(), word.name())) << word.name() << " in " << node.name();
    if (std::string(node.name()) == "IntReg") {
        EXPECT_TRUE(node.child("Sign"));
    }
    if (node.child("Endianess")) {
        EXPECT_STREQ(node.child_value("Endianess"), "BigEndian");
    }
    if (std::string(node.name()) == "Integer") {
        EXPECT_TRUE(IsDecimal(node.child_value("Min"))) << node.child_value("Min");
        EXPECT_TRUE(IsDecimal(node.child_value("Max"))) << node.child_value("Max");
    }
    const Names shown = {"", "Linear", "Logarithmic", "Boolean", "PureNumber", "HexNumber"};
    EXPECT_EQ(shown.count(node.child_value("Representation")), 1U) << node.child_value("Representation");
}

/// The names of all nodes but the registers, which schema 1.0 has one less of for each text.
Names FeaturesIn(const pugi::xml_node& root) {
    Names names;
    for (const pugi::xml_node node : root.children()) {
        const std::string name = node.attribute("Name").value();
        if (name.size() < 3 || name.substr(name.size() - 3) != "Reg")
            names.insert(name);
    }
    return names;
}

} // namespace

TEST_F(Schema10, IsSaidByPortAndFile) {
    EXPECT_EQ(PortText(remote, PORT_INFO_MODEL), "Sim-GEV-3M");
    EXPECT_EQ(UrlNumber(URL_INFO_SCHEMA_VER_MAJOR), 1);
    EXPECT_EQ(UrlNumber(URL_INFO_SCHEMA_VER_MINOR), 0);
    EXPECT_EQ(OldUrl(), ReadUrl(remote) + "?SchemaVersion=1.0.0");
    pugi::xml_document document;
    ASSERT_NO_FATAL_FAILURE(Load(remote, document));
    const pugi::xml_node root = document.child("RegisterDescription");
    EXPECT_STREQ(root.attribute("SchemaMajorVersion").value(), "1");
    EXPECT_STREQ(root.attribute("SchemaMinorVersion").value(), "0");
    EXPECT_STREQ(root.attribute("xmlns").value(), "http://www.genicam.org/GenApi/Version_1_0");
    EXPECT_STREQ(root.attribute("xsi:schemaLocation").value(),
                 "http://www.genicam.org/GenApi/Version_1_0 "
                 "http://www.genicam.org/GenApi/GenApiSchema_Version_1_0.xsd");
}

TEST_F(Schema10, HasNoWordsOfALaterOne) {
    pugi::xml_document document;
    ASSERT_NO_FATAL_FAILURE(Load(remote, document));
    size_t nodes = 0;
    for (const pugi::xml_node node : document.child("RegisterDescription").children()) {
        ExpectNodeOf10(node);
        ++nodes;
    }
    EXPECT_GT(nodes, 300U);
}

TEST_F(Schema10, HasTheSameFeaturesAndRegistersAsTheOtherCamera) {
    pugi::xml_document own;
    ASSERT_NO_FATAL_FAILURE(Load(remote, own));
    const pugi::xml_node root = own.child("RegisterDescription");
    ExpectLinks(root);
    ExpectRegisters(remote, root, "Device");
    OpenCamera("ZQ-GEV-0:SIM-GEV-0001");
    EXPECT_EQ(PortText(remote, PORT_INFO_MODEL), "Sim-GEV-5M");
    EXPECT_EQ(UrlNumber(URL_INFO_SCHEMA_VER_MINOR), 1);
    pugi::xml_document other;
    ASSERT_NO_FATAL_FAILURE(Load(remote, other));
    EXPECT_EQ(FeaturesIn(root), FeaturesIn(other.child("RegisterDescription")));
}

TEST_F(Schema10, RefusesTheBinningThatItCannotName) {
    EXPECT_EQ(WriteInt(camera::BinningHorizontal, 3), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(WriteInt(camera::BinningHorizontal, 4), GC_ERR_SUCCESS);
    EXPECT_EQ(ReadInt(camera::WidthMax), 512U);
}

TEST_F(Schema10, ChunksAreThoseOfOldCameras) {
    OpenStream();
    MakeSmallAndFast();
    constexpr uint32_t width = 5;
    for (const auto& [address, value] :
         {std::pair{camera::ChunkModeActive, 1U}, {camera::ChunkSelector, width}, {camera::ChunkEnable, 1U}})
        ASSERT_EQ(WriteInt(address, value), GC_ERR_SUCCESS);
    Queue(Announce(1, 1024));
    Start(1);
    const BUFFER_HANDLE buffer = Next();
    ASSERT_NE(buffer, nullptr);
    SINGLE_CHUNK_DATA chunks[2];
    size_t count = 2;
    ASSERT_EQ(gentl.DSGetBufferChunkData(stream, buffer, chunks, &count), GC_ERR_SUCCESS);
    ASSERT_EQ(count, 2U);
    EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_PAYLOADTYPE), size_t{PAYLOAD_TYPE_CHUNK_DATA});
    EXPECT_TRUE(BufferInfo<bool8_t>(buffer, BUFFER_INFO_CONTAINS_CHUNKDATA));
    EXPECT_EQ(chunks[1].ChunkID, 0x1005U);
    const uint8_t expected[] = {0, 0, 0, 8, 0, 0, 0x10, 0x05, 0, 0, 0, 4}; // data and tag
    const auto* base = BufferInfo<const uint8_t*>(buffer, BUFFER_INFO_BASE);
    EXPECT_EQ(std::memcmp(base + chunks[1].ChunkOffset, expected, sizeof expected), 0);
}
