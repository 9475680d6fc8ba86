#include "genapi/src/document/Document.h"
#include "genapi/src/document/Lexical.h"

#include <Base/GCException.h>

#include <pugixml.hpp>

#include <algorithm>
#include <unordered_set>

namespace GENAPI_NAMESPACE::inside {

namespace {

// Real files stay below a tenth of each.
constexpr size_t kMaxNodes = 200'000;
constexpr std::ptrdiff_t kMaxTags = 1'000'000;
constexpr int kMaxGroupDepth = 64;
constexpr size_t kMaxNameLength = 1024;

std::string_view LocalName(const pugi::xml_node& node) {
    const std::string_view name = node.name();
    const size_t colon = name.rfind(':');
    return colon == name.npos ? name : name.substr(colon + 1);
}

/// Comments inside a text cut it into several pieces.
std::string TextOf(const pugi::xml_node& node) {
    std::string text;
    for (const pugi::xml_node piece : node.children())
        if (piece.type() == pugi::node_pcdata || piece.type() == pugi::node_cdata)
            text += piece.value();
    return text;
}

bool IsAnyOf(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

class Parser {
public:
    Parser(Document& document, bool keepTexts) : m_document(document), m_keepTexts(keepTexts) {}

    void ReadRoot(const pugi::xml_node& root) {
        ReadHeader(root);
        ReadNodes(root, 0);
    }

private:
    void ReadHeader(const pugi::xml_node& root) {
        SourceHeader& header = m_document.header;
        header.modelName = root.attribute("ModelName").value();
        header.vendorName = root.attribute("VendorName").value();
        header.toolTip = root.attribute("ToolTip").value();
        header.standardNameSpace = root.attribute("StandardNameSpace").value();
        header.productGuid = root.attribute("ProductGuid").value();
        header.versionGuid = root.attribute("VersionGuid").value();
        ReadVersion(root, {"SchemaMajorVersion", "SchemaMinorVersion", "SchemaSubMinorVersion"},
                    header.schema);
        ReadVersion(root, {"MajorVersion", "MinorVersion", "SubMinorVersion"}, header.device);
        if (header.schema[0] != 1)
            throw RUNTIME_EXCEPTION("The description follows schema version %u.%u; only 1.x is supported.",
                                    unsigned{header.schema[0]}, unsigned{header.schema[1]});
    }

    static void ReadVersion(const pugi::xml_node& root, std::initializer_list<const char*> names,
                            uint16_t* numbers) {
        for (const char* name : names) {
            const auto value = ParseInteger(root.attribute(name).value());
            if (value && *value >= 0 && *value <= 0xFFFF)
                *numbers = static_cast<uint16_t>(*value);
            ++numbers;
        }
    }

    void ReadNodes(const pugi::xml_node& parent, int depth) {
        if (depth > kMaxGroupDepth)
            throw RUNTIME_EXCEPTION("Group '%s' is nested deeper than %d.",
                                    parent.attribute("Comment").value(), kMaxGroupDepth);
        for (const pugi::xml_node child : parent.children()) {
            if (child.type() != pugi::node_element)
                continue;
            const std::string_view tag = LocalName(child);
            if (tag == "Group")
                ReadNodes(child, depth + 1);
            else if (tag == "StructReg")
                ReadStructure(child);
            else if (tag != "Extension" && child.attribute("Name"))
                ReadNode(child, tag);
        }
    }

    SourceNode Named(const pugi::xml_node& element, std::string_view tag) {
        SourceNode node;
        node.tag = m_document.names->Keep(tag);
        node.name = std::string(Trim(element.attribute("Name").value()));
        node.standard = Trim(element.attribute("NameSpace").value()) == "Standard";
        return node;
    }

    // The first of several nodes of one name stays.
    void Add(SourceNode node) {
        if (node.name.empty() || node.name.size() > kMaxNameLength) {
            m_document.warnings.push_back("a " + std::string(node.tag) + " has no usable name");
            return;
        }
        if (!m_taken.insert(node.name).second) {
            m_document.warnings.push_back("'" + node.name + "' exists twice; the second is left out");
            return;
        }
        if (m_document.nodes.size() >= kMaxNodes)
            throw RUNTIME_EXCEPTION("The description has more than %zu nodes; the next is '%s'.", kMaxNodes,
                                    node.name.c_str());
        m_document.nodes.push_back(std::move(node));
    }

    void ReadNode(const pugi::xml_node& element, std::string_view tag) {
        SourceNode node = Named(element, tag);
        ReadElements(element, node);
        Add(std::move(node));
    }

    void ReadElements(const pugi::xml_node& parent, SourceNode& node) {
        for (const pugi::xml_node child : parent.children())
            if (child.type() == pugi::node_element)
                ReadElement(child, node);
    }

    void ReadElement(const pugi::xml_node& child, SourceNode& node) {
        const std::string_view name = LocalName(child);
        if (name == "Extension" || name == "StructEntry")
            return;
        if (!m_keepTexts && IsAnyOf(name, {"ToolTip", "Description", "DocuURL"}))
            return;
        if (name == "EnumEntry")
            AddReference(node, "EnumEntry", LiftEntry(child, node.name));
        else if (name == "IntSwissKnife" || name == "SwissKnife")
            AddReference(node, "pAddress", LiftFormula(child, name, node.name));
        else
            node.elements.push_back(Plain(child, name, node.tag));
    }

    void AddReference(SourceNode& node, std::string_view name, std::string target) {
        node.elements.push_back({m_document.names->Keep(name), std::move(target), {}, {}});
    }

    Element Plain(const pugi::xml_node& child, std::string_view name, std::string_view tag) {
        Element element;
        element.name = m_document.names->Keep(name);
        element.text = TextOf(child);
        // A String's value is the one text whose blanks count.
        if (!(tag == "String" && name == "Value"))
            element.text = std::string(Trim(element.text));
        for (const std::string_view known : {"Name", "Index", "Offset", "pOffset"})
            if (const pugi::xml_attribute attribute = child.attribute(known.data())) {
                element.attributeName = known;
                element.attribute = std::string(Trim(attribute.value()));
                break;
            }
        return element;
    }

    std::string LiftEntry(const pugi::xml_node& element, const std::string& enumeration) {
        SourceNode entry = Named(element, "EnumEntry");
        const std::string symbolic = entry.name;
        entry.name = EnumEntryName(enumeration, symbolic);
        ReadElements(element, entry);
        const bool hasSymbolic =
            std::any_of(entry.elements.begin(), entry.elements.end(),
                        [](const Element& e) { return e.name == "Symbolic" && !e.text.empty(); });
        if (!hasSymbolic)
            entry.elements.push_back({m_document.names->Keep("Symbolic"), symbolic, {}, {}});
        std::string name = symbolic.empty() ? std::string() : entry.name;
        Add(std::move(entry));
        return name;
    }

    std::string LiftFormula(const pugi::xml_node& element, std::string_view tag, const std::string& owner) {
        SourceNode formula = Named(element, tag);
        if (formula.name.empty())
            formula.name = "_" + owner + "_Address" + std::to_string(m_document.nodes.size());
        ReadElements(element, formula);
        std::string name = formula.name;
        Add(std::move(formula));
        return name;
    }

    // Every entry becomes a masked register of its own. What it does not say itself it takes from the
    // structure; where the register lies always comes from there.
    void ReadStructure(const pugi::xml_node& element) {
        SourceNode shared;
        shared.tag = m_document.names->Keep("StructReg");
        shared.name = std::string(Trim(element.attribute("Comment").value()));
        ReadElements(element, shared);
        for (const pugi::xml_node child : element.children())
            if (child.type() == pugi::node_element && LocalName(child) == "StructEntry")
                ReadStructureEntry(child, shared);
    }

    void ReadStructureEntry(const pugi::xml_node& element, const SourceNode& shared) {
        SourceNode entry = Named(element, "StructEntry");
        ReadElements(element, entry);
        const auto isPlace = [](std::string_view name) {
            return IsAnyOf(name,
                           {"Address", "pAddress", "pIndex", "Length", "pLength", "pPort", "Endianess"});
        };
        std::vector<Element>& own = entry.elements;
        own.erase(std::remove_if(own.begin(), own.end(), [&](const Element& e) { return isPlace(e.name); }),
                  own.end());
        const size_t count = own.size();
        for (const Element& inherited : shared.elements) {
            const auto end = own.begin() + static_cast<std::ptrdiff_t>(count);
            const bool overridden =
                std::any_of(own.begin(), end, [&](const Element& e) { return e.name == inherited.name; });
            if (!overridden)
                own.push_back(inherited);
        }
        Add(std::move(entry));
    }

    Document& m_document;
    bool m_keepTexts;
    std::unordered_set<std::string> m_taken;
};

} // namespace

std::string EnumEntryName(const std::string& enumeration, std::string_view entry) {
    return "EnumEntry_" + enumeration + "_" + std::string(entry);
}

Document ParseDocument(const std::string& text, bool keepTexts) {
    if (std::count(text.begin(), text.end(), '<') > kMaxTags)
        throw RUNTIME_EXCEPTION("The description has more than %td tags.", kMaxTags);
    pugi::xml_document xml;
    const pugi::xml_parse_result result = xml.load_buffer(text.data(), text.size(), pugi::parse_default);
    if (!result)
        throw RUNTIME_EXCEPTION("The description is not well-formed XML: %s at byte %td.",
                                result.description(), result.offset);
    const pugi::xml_node root = xml.document_element();
    if (LocalName(root) != "RegisterDescription")
        throw RUNTIME_EXCEPTION("The description has the root element '%s' instead of 'RegisterDescription'.",
                                root.name());
    Document document;
    Parser(document, keepTexts).ReadRoot(root);
    return document;
}

} // namespace GENAPI_NAMESPACE::inside
