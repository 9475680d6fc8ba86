#include "Camera.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

using namespace GenICam;
using namespace GenApi;

namespace {

std::vector<std::string> Diagnostics(INodeMap* map) {
    gcstring_vector lines;
    GetDiagnostics(map, lines);
    std::vector<std::string> texts;
    for (const gcstring& line : lines)
        texts.emplace_back(line.c_str());
    return texts;
}

std::vector<std::string> Diagnostics(const std::string& nodes) {
    return Diagnostics(Camera(nodes).map._Ptr);
}

using Lines = std::vector<std::string>;

} // namespace

TEST(Diagnostics, OfAFlawlessDescriptionAreNone) {
    EXPECT_EQ(
        Diagnostics(IntReg("R", 0) +
                    ::Node("Integer", "I",
                           "<pValue>R</pValue><pInvalidator>R</pInvalidator><pUnheardOf>X</pUnheardOf>")),
        Lines());
}

TEST(Diagnostics, NameEachNodeThatCouldNotBeBuilt) {
    EXPECT_EQ(Diagnostics(::Node("Integer", "A", "<pValue>Gone</pValue>") +
                          ::Node("IntReg", "B", "<Address>0</Address><Length>4</Length>") +
                          ::Node("Integer", "C", "<Value>one</Value>") + ::Node("Thing", "D", "")),
              (Lines{"A: pValue 'Gone' does not exist", "B: it has no pPort",
                     "C: the Value 'one' is no number", "D: nodes of type Thing are not implemented"}));
}

TEST(Diagnostics, NameEachReferenceThatLeadsNowhere) {
    const std::string more = "<pIsLocked>L</pIsLocked><pAlias>A</pAlias><pInvalidator>V</pInvalidator>";
    EXPECT_EQ(Diagnostics("<Category Name=\"Root\"><pFeature>I</pFeature><pFeature>F</pFeature></Category>" +
                          ::Node("Integer", "I", more + "<Value>1</Value><pSelected>S</pSelected>") +
                          ::Node("Integer", "Bad", "<pMin>M</pMin><pMax>N</pMax>")),
              (Lines{"Root: pFeature 'F' does not exist", "I: pIsLocked 'L' does not exist",
                     "I: pAlias 'A' does not exist", "I: pInvalidator 'V' does not exist",
                     "I: pSelected 'S' does not exist", "Bad: pMin 'M' does not exist",
                     "Bad: pMax 'N' does not exist"}));
}

TEST(Diagnostics, NameEachFormulaThatIsWrong) {
    EXPECT_EQ(
        Diagnostics(::Node("IntSwissKnife", "Syntax", "<Formula>1 +</Formula>") +
                    ::Node("SwissKnife", "Unknown", "<Formula>NOBODY + 1</Formula>") +
                    ::Node("Converter", "Back",
                           "<FormulaTo>FROM + X</FormulaTo><FormulaFrom>TO</FormulaFrom>"
                           "<pValue>I</pValue>") +
                    ::Node("Integer", "I", "<Value>1</Value>")),
        (Lines{"Syntax: operand expected at position 3", "Unknown: 'NOBODY' is not defined in \"NOBODY + 1\"",
               "Back: 'X' is not defined in \"FROM + X\""}));
}

TEST(Diagnostics, NameNodesWhoseNameWasTaken) {
    const std::string nodes =
        ::Node("Integer", "A", "<Value>1</Value>") + ::Node("Float", "A", "<Value>2</Value>");
    const Lines line{"A: another node has this name, this one is left out"};
    EXPECT_EQ(Diagnostics(nodes), line);
    CNodeMapFactory target(Describe(nodes).c_str());
    std::string other = Describe(::Node("Integer", "B", "<Value>1</Value>"));
    const std::string port = "<Port Name=\"Device\"/>";
    other.erase(other.find(port), port.size());
    CNodeMapFactory addition(other.c_str());
    target.AddInjectionData(addition);
    const CNodeMapRef merged(target.CreateNodeMap());
    EXPECT_NE(merged._GetNode("B"), nullptr);
    EXPECT_EQ(Diagnostics(merged._Ptr), line);
}

TEST(Diagnostics, OfNoMapAreRefused) {
    gcstring_vector lines;
    EXPECT_EQ(Failure<InvalidArgumentException>([&] { GetDiagnostics(nullptr, lines); }),
              "There are no diagnostics but of node maps that a factory made.");
}

TEST(Diagnostics, HoldEveryNodeOfRealDescriptionsThatCouldNotBeBuilt) {
    const char* const folder = std::getenv("ZQAPI_TEST_DATA");
    if (!folder)
        GTEST_SKIP() << "ZQAPI_TEST_DATA is not set";
    size_t unbuilt = 0;
    for (const auto& file : std::filesystem::directory_iterator(std::string(folder) + "/corpus")) {
        if (file.path().extension() != ".xml")
            continue;
        CNodeMapFactory factory(ContentType_Xml, gcstring(file.path().c_str()), CacheUsage_Ignore);
        const CNodeMapRef map(factory.CreateNodeMap());
        const Lines lines = Diagnostics(map._Ptr);
        for (const std::string& line : lines)
            EXPECT_EQ(line.find("another node has this name"), line.npos) << file.path() << " " << line;
        NodeList_t nodes;
        map._GetNodes(nodes);
        gcstring reason;
        gcstring attribute;
        for (INode* node : nodes) {
            if (!node->GetProperty("BuildError", reason, attribute))
                continue;
            ++unbuilt;
            const std::string line = std::string(node->GetName().c_str()) + ": " + reason.c_str();
            EXPECT_EQ(std::count(lines.begin(), lines.end(), line), 1) << file.path() << " " << line;
        }
    }
    EXPECT_GT(unbuilt, 0u);
}
