#pragma once

#include <Base/GCTypes.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace GENAPI_NAMESPACE::inside {

/// One child element of a node: what it is, its text and the one attribute that matters.
struct Element {
    std::string_view name;
    std::string text;
    std::string_view attributeName;
    std::string attribute;
};

/// One node as the file has it, after structures have been taken apart.
struct SourceNode {
    std::string_view tag;
    std::string name;
    bool standard = false; ///< NameSpace="Standard"
    std::vector<Element> elements;
};

struct SourceHeader {
    std::string modelName;
    std::string vendorName;
    std::string toolTip;
    std::string standardNameSpace;
    std::string productGuid;
    std::string versionGuid;
    uint16_t schema[3] = {1, 1, 0};
    uint16_t device[3] = {0, 0, 0};
};

/// Keeps each element name once.
class NamePool {
public:
    std::string_view Keep(std::string_view name) { return *m_names.emplace(name).first; }

private:
    std::unordered_set<std::string> m_names;
};

/// A description in a flat form, before names are resolved: a list of nodes that have names and elements.
/// Groups and extensions are gone; entries of enumerations and of structures, and formulas inside addresses,
/// are nodes.
struct Document {
    SourceHeader header;
    std::vector<SourceNode> nodes;
    std::vector<std::string> warnings;
    std::shared_ptr<NamePool> names = std::make_shared<NamePool>(); ///< shared with subtrees
};

/// The name of the node for an entry of an enumeration.
std::string EnumEntryName(const std::string& enumeration, std::string_view entry);

/// Parses a cleaned text. RuntimeException says what is wrong and where. `keepTexts` false drops tool tips
/// and descriptions.
Document ParseDocument(const std::string& text, bool keepTexts);

/// The node `root` and all that it needs. `renameToRoot` calls it "Root". RuntimeException when it does not
/// exist.
Document ExtractDocument(const Document& document, std::string_view root, bool renameToRoot);

} // namespace GENAPI_NAMESPACE::inside
