// Why nodes could not be built. What the library says is checked against the document by a reader of its own:
// a node may be left out only where the document itself is wrong.
#include "Camera.h"
#include "ZipArchive.h"

#include <pugixml.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>

using namespace GenICam;
using namespace GenApi;

namespace {

std::string Trimmed(const std::string& text) {
    const char* const blanks = " \t\r\n";
    const size_t begin = text.find_first_not_of(blanks);
    return begin == text.npos ? "" : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

bool IsOneOf(const std::string& text, std::initializer_list<const char*> list) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

bool IsNumber(const std::string& text) {
    char* end = nullptr;
    std::strtod(text.c_str(), &end);
    return end != text.c_str() && *end == 0;
}

int64_t NumberIn(const std::string& text) {
    const bool hex = IsOneOf(text.substr(0, 2), {"0x", "0X"});
    return static_cast<int64_t>(std::strtoull(text.c_str(), nullptr, hex ? 16 : 10));
}

/// The document as it is written, with the names of its nodes.
class RawDocument {
public:
    /// Starts where the root does: devices put texts in front of it.
    explicit RawDocument(const std::string& bytes) {
        const size_t root = std::min(bytes.find("<RegisterDescription"), bytes.size());
        isRead = m_document.load_buffer(bytes.data() + root, bytes.size() - root);
        Collect(m_document.child("RegisterDescription"));
    }

    /// Whether the document alone makes it impossible to build the node, for the reason given.
    bool Proves(const std::string& node, const std::string& reason) const {
        const auto found = m_nodes.find(node);
        if (found == m_nodes.end())
            return false;
        struct Rule {
            const char* pattern;
            bool (RawDocument::*holds)(pugi::xml_node node, const std::smatch& said) const;
        };
        static const Rule kRules[] = {
            {"(p[A-Z]\\w*) '(.*)' does not exist", &RawDocument::NamesNothing},
            {"it has no (pPort|pValue|Value)", &RawDocument::Lacks},
            {"the (\\w+) '(.*)' is no number", &RawDocument::HasNoNumber},
            {"(pPort) '(.*)' is no Port", &RawDocument::NamesNoPort},
            {"a Length of (-?\\d+) is impossible", &RawDocument::HasLength},
            {"bits (-?\\d+) to (-?\\d+) lie outside the register", &RawDocument::HasBits},
            {"nodes of type (\\w+) are not implemented", &RawDocument::IsOfUnknownType}};
        std::smatch said;
        for (const Rule& rule : kRules)
            if (std::regex_match(reason, said, std::regex(rule.pattern)))
                return (this->*rule.holds)(found->second, said);
        return false;
    }

    bool isRead = false;

private:
    void Collect(pugi::xml_node parent) {
        for (const pugi::xml_node node : parent.children()) {
            const std::string tag = node.name();
            if (tag == "Extension")
                continue;
            const std::string name = Trimmed(node.attribute("Name").value());
            if (tag == "EnumEntry")
                m_nodes.emplace("EnumEntry_" + Trimmed(parent.attribute("Name").value()) + "_" + name, node);
            else if (!name.empty())
                m_nodes.emplace(name, node);
            Collect(node);
        }
    }

    /// What entries of structures do not say, the structure does.
    static std::vector<std::string> TextsOf(pugi::xml_node node, const std::string& element) {
        std::vector<std::string> texts;
        for (const pugi::xml_node child : node.children(element.c_str()))
            texts.push_back(Trimmed(child.text().get()));
        const bool isEntry = std::string(node.name()) == "StructEntry";
        return texts.empty() && isEntry ? TextsOf(node.parent(), element) : texts;
    }
    static bool Has(pugi::xml_node node, const std::string& element, const std::string& text) {
        const std::vector<std::string> texts = TextsOf(node, element);
        return std::find(texts.begin(), texts.end(), text) != texts.end();
    }
    static bool HasAttribute(pugi::xml_node node, const std::string& attribute, const std::string& text) {
        const auto children = node.children();
        return std::any_of(children.begin(), children.end(), [&](pugi::xml_node child) {
            return Trimmed(child.attribute(attribute.c_str()).value()) == text;
        });
    }
    static int64_t LastNumber(pugi::xml_node node, std::initializer_list<const char*> elements,
                              int64_t otherwise) {
        for (const char* element : elements)
            if (const auto texts = TextsOf(node, element); !texts.empty())
                return NumberIn(texts.back());
        return otherwise;
    }

    bool NamesNothing(pugi::xml_node node, const std::smatch& said) const {
        return (Has(node, said[1], said[2]) || HasAttribute(node, said[1], said[2])) &&
               m_nodes.count(said[2]) == 0;
    }
    bool Lacks(pugi::xml_node node, const std::smatch& said) const {
        const std::string tag = node.name();
        const bool mustHave = said[1] == "Value"    ? tag == "EnumEntry"
                              : said[1] == "pValue" ? IsOneOf(tag, {"Converter", "IntConverter"})
                                                    : IsOneOf(tag, {"IntReg", "MaskedIntReg", "StructEntry",
                                                                    "FloatReg", "StringReg", "Register"});
        return mustHave && TextsOf(node, said[1]).empty();
    }
    bool HasNoNumber(pugi::xml_node node, const std::smatch& said) const {
        return (Has(node, said[1], said[2]) || HasAttribute(node, said[1], said[2])) && !IsNumber(said[2]);
    }
    bool NamesNoPort(pugi::xml_node node, const std::smatch& said) const {
        const auto port = m_nodes.find(said[2]);
        return Has(node, said[1], said[2]) && port != m_nodes.end() &&
               std::string(port->second.name()) != "Port";
    }
    bool HasLength(pugi::xml_node node, const std::smatch& said) const {
        const int64_t length = LastNumber(node, {"Length"}, 0);
        const std::string tag = node.name();
        const bool isPossible = IsOneOf(tag, {"IntReg", "MaskedIntReg", "StructEntry"})
                                    ? length >= 1 && length <= 8
                                : tag == "FloatReg" ? length == 4 || length == 8
                                                    : length >= 1 && length <= 64 * 1024 * 1024;
        return NumberIn(said[1]) == length && !isPossible && TextsOf(node, "pLength").empty();
    }
    bool HasBits(pugi::xml_node node, const std::smatch& said) const {
        const int64_t lsb = LastNumber(node, {"Bit", "LSB"}, -1);
        const int64_t msb = LastNumber(node, {"Bit", "MSB"}, -1);
        const int64_t bits = 8 * LastNumber(node, {"Length"}, 0);
        return NumberIn(said[1]) == lsb && NumberIn(said[2]) == msb &&
               (std::min(lsb, msb) < 0 || std::max(lsb, msb) >= bits);
    }
    bool IsOfUnknownType(pugi::xml_node node, const std::smatch& said) const {
        static constexpr std::initializer_list<const char*> kTypes = {
            "Node",        "Category",      "Integer",   "IntReg",       "MaskedIntReg",
            "StructEntry", "Float",         "FloatReg",  "Boolean",      "Command",
            "Enumeration", "EnumEntry",     "String",    "StringReg",    "Register",
            "SwissKnife",  "IntSwissKnife", "Converter", "IntConverter", "Port"};
        return said[1] == std::string(node.name()) && !IsOneOf(said[1], kTypes);
    }

    pugi::xml_document m_document;
    std::map<std::string, pugi::xml_node> m_nodes;
};

struct Unbuilt {
    std::string node;
    std::string reason;
};

std::vector<Unbuilt> UnbuiltOf(const CNodeMapRef& map) {
    NodeList_t nodes;
    map._GetNodes(nodes);
    std::vector<Unbuilt> unbuilt;
    gcstring reason;
    gcstring attribute;
    for (INode* node : nodes)
        if (node->GetProperty("BuildError", reason, attribute))
            unbuilt.push_back({node->GetName().c_str(), reason.c_str()});
    return unbuilt;
}

std::string Content(const std::filesystem::path& path) {
    if (path.extension() == ".zip")
        return FirstMember(path);
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

} // namespace

TEST(BuildErrors, EveryKindIsProvenByTheDocument) {
    const std::string reg = "<Address>0</Address><Length>4</Length>";
    const std::string nodes =
        ::Node("Integer", "Pointer", "<pValue> Gone </pValue>") +
        ::Register("IntReg", "Offset", 0, 4, "<pIndex pOffset=\"Gone\">Good</pIndex>") +
        ::Node("IntReg", "Portless", reg) + ::Node("IntReg", "Odd", reg + "<pPort>Good</pPort>") +
        ::Node("Converter", "Empty", "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom>") +
        "<Enumeration Name=\"E\"><EnumEntry Name=\"A\"/><Value>1</Value></Enumeration>" +
        ::Node("Integer", "Number", "<Value>one</Value>") +
        ::Register("IntReg", "OffsetNumber", 0, 4, "<pIndex Offset=\"x\">Good</pIndex>") +
        IntReg("Wide", 0, 9) + ::Register("FloatReg", "Half", 0, 2) + ::Register("StringReg", "None", 0, 0) +
        "<StructReg>" + reg +
        "<pPort>Device</pPort><StructEntry Name=\"High\"><Bit>32</Bit></StructEntry>"
        "</StructReg>" +
        ::Register("MaskedIntReg", "Bitless", 0, 4) + ::Node("Thing", "Strange", "") +
        ::Node("Integer", "Good", "<Value>1</Value>");
    const Camera camera(nodes);
    const RawDocument document(Describe(nodes));
    const std::vector<Unbuilt> unbuilt = UnbuiltOf(camera.map);
    EXPECT_EQ(unbuilt.size(), 14u);
    for (const auto& [node, reason] : unbuilt)
        EXPECT_TRUE(document.Proves(node, reason)) << node << ": " << reason;
}

TEST(BuildErrors, WhatTheDocumentDoesNotSayIsNoReason) {
    const RawDocument document(
        Describe(IntReg("R", 0, 4, "<pIndex Offset=\"4\">I</pIndex>") +
                 "<Extension><Integer Name=\"Inner\"/>"
                 "</Extension>" +
                 ::Node("Integer", "I", "<pValue>R</pValue><Max>7</Max><pMin>Inner</pMin>") +
                 ::Register("MaskedIntReg", "M", 0, 4, "<LSB>31</LSB><MSB>0</MSB>")));
    EXPECT_TRUE(document.Proves("I", "pMin 'Inner' does not exist"));
    const std::pair<const char*, const char*> kClaims[] = {{"I", "pValue 'R' does not exist"},
                                                           {"I", "pValue 'Gone' does not exist"},
                                                           {"I", "it has no Value"},
                                                           {"R", "it has no pPort"},
                                                           {"I", "the Max '7' is no number"},
                                                           {"I", "the Max 'x' is no number"},
                                                           {"R", "the Offset '4' is no number"},
                                                           {"R", "pPort 'Device' is no Port"},
                                                           {"R", "a Length of 4 is impossible"},
                                                           {"R", "a Length of 9 is impossible"},
                                                           {"M", "bits 31 to 0 lie outside the register"},
                                                           {"M", "bits 32 to 0 lie outside the register"},
                                                           {"I", "nodes of type Integer are not implemented"},
                                                           {"I", "nodes of type Thing are not implemented"},
                                                           {"Gone", "it has no pPort"},
                                                           {"I", "something else"}};
    for (const auto& [node, reason] : kClaims)
        EXPECT_FALSE(document.Proves(node, reason)) << node << ": " << reason;
}

TEST(BuildErrors, OfRealDescriptionsAreProvenByThem) {
    const char* const folder = std::getenv("ZQAPI_TEST_DATA");
    if (!folder)
        GTEST_SKIP() << "ZQAPI_TEST_DATA is not set";
    size_t files = 0;
    size_t whole = 0;
    size_t proven = 0;
    for (const auto& file : std::filesystem::directory_iterator(std::string(folder) + "/corpus")) {
        if (!IsOneOf(file.path().extension(), {".xml", ".zip"}))
            continue;
        ++files;
        CNodeMapFactory factory(ContentType_Xml, gcstring(file.path().c_str()), CacheUsage_Ignore);
        const std::vector<Unbuilt> unbuilt = UnbuiltOf(CNodeMapRef(factory.CreateNodeMap()));
        if (unbuilt.empty()) {
            ++whole;
            continue;
        }
        const RawDocument document(Content(file.path()));
        EXPECT_TRUE(document.isRead) << file.path();
        for (const auto& [node, reason] : unbuilt) {
            const bool holds = document.Proves(node, reason);
            EXPECT_TRUE(holds) << file.path() << " " << node << ": " << reason;
            proven += holds ? 1 : 0;
        }
    }
    std::cout << whole << " of " << files << " files have no node that could not be built, the others "
              << proven << " by their own fault\n";
    EXPECT_GT(files, 30u);
    EXPECT_GT(whole, files - 5);
}
