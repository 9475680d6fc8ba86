#include "genapi/src/document/DocumentWriter.h"
#include "genapi/src/document/Lexical.h"

#include <Base/GCException.h>

#include <pugixml.hpp>

#include <algorithm>
#include <vector>

namespace GENAPI_NAMESPACE::inside {

namespace {

// Real files stay below a tenth of each.
constexpr std::ptrdiff_t kMaxTags = 1'000'000;
constexpr size_t kShortestTag = 3;
constexpr int kMaxGroupDepth = 64;

/// Without a prefix.
std::string_view LocalName(std::string_view name) {
    const size_t colon = name.rfind(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

bool IsElement(const pugi::xml_node& node) {
    return node.type() == pugi::node_element;
}
bool IsText(const pugi::xml_node& node) {
    return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

/// Where an element lies in an address: an entry of a structure can't have its own.
bool IsPlace(ElementName name) {
    switch (name) {
    case ElementName::Address:
    case ElementName::pAddress:
    case ElementName::pIndex:
    case ElementName::Length:
    case ElementName::pLength:
    case ElementName::pPort:
    case ElementName::Endianess:
        return true;
    default:
        return false;
    }
}

AttributeName KnownAttribute(std::string_view name) {
    if (name == "Name")
        return AttributeName::Name;
    if (name == "Index")
        return AttributeName::Index;
    if (name == "Offset")
        return AttributeName::Offset;
    return name == "pOffset" ? AttributeName::pOffset : AttributeName::None;
}

class Parser {
public:
    Parser(DocumentWriter& writer, bool keepTexts) : m_writer(writer), m_keepTexts(keepTexts) {}

    void ReadRoot(const pugi::xml_node& root) {
        ReadHeader(root);
        m_priority = Priority(root, 0);
        ReadNodes(root, 0);
    }

private:
    void ReadHeader(const pugi::xml_node& root) {
        SourceHeader& header = m_writer.Header();
        const auto read = [&](Text& text, const char* name) {
            m_writer.GetArena().KeepText(text, root.attribute(name).value());
        };
        read(header.modelName, "ModelName");
        read(header.vendorName, "VendorName");
        read(header.toolTip, "ToolTip");
        read(header.standardNameSpace, "StandardNameSpace");
        read(header.productGuid, "ProductGuid");
        read(header.versionGuid, "VersionGuid");
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

    static int8_t Priority(const pugi::xml_node& element, int8_t otherwise) {
        const auto value = ParseInteger(element.attribute("MergePriority").value());
        return value && *value >= -1 && *value <= 1 ? static_cast<int8_t>(*value) : otherwise;
    }

    void ReadNodes(const pugi::xml_node& parent, int depth) {
        if (depth > kMaxGroupDepth)
            throw RUNTIME_EXCEPTION("Group '%s' is nested deeper than %d.",
                                    parent.attribute("Comment").value(), kMaxGroupDepth);
        for (pugi::xml_node child = parent.first_child(); child; child = child.next_sibling()) {
            if (!IsElement(child))
                continue;
            const ElementName tag = NameOf(child);
            if (tag == ElementName::Group)
                ReadNodes(child, depth + 1);
            else if (tag == ElementName::StructReg)
                ReadStructure(child);
            else if (tag != ElementName::Extension && child.attribute("Name"))
                ReadNode(child, tag);
        }
    }

    NodeDraft Named(const pugi::xml_node& element, ElementName tag) const {
        NodeDraft node;
        node.tag = tag;
        node.mergePriority = m_priority;
        for (pugi::xml_attribute attribute = element.first_attribute(); attribute;
             attribute = attribute.next_attribute()) {
            const std::string_view name = attribute.name();
            if (name == "Name")
                node.name = Trim(attribute.value());
            else if (name == "NameSpace")
                node.standard = Trim(attribute.value()) == "Standard";
            else if (name == "MergePriority")
                node.mergePriority = Priority(element, m_priority);
        }
        return node;
    }

    void ReadNode(const pugi::xml_node& element, ElementName tag) {
        const NodeDraft node = Named(element, tag);
        const size_t begin = m_elements.size();
        ReadElements(element, node);
        AddFrom(begin, node);
    }

    // The elements of nested nodes lie behind those of the outer one, and are gone when that goes on.
    void AddFrom(size_t begin, const NodeDraft& node) {
        m_writer.Add(node, m_elements.data() + begin, m_elements.size() - begin);
        m_elements.resize(begin);
    }

    // Hardly any file has prefixes: the name as a whole comes first.
    ElementName NameOf(const pugi::xml_node& element) {
        const std::string_view name = element.name();
        const ElementName known = FindElementName(name);
        return known != ElementName::FirstUnknown ? known : m_writer.Name(LocalName(name));
    }

    void ReadElements(const pugi::xml_node& parent, const NodeDraft& node) {
        for (pugi::xml_node child = parent.first_child(); child; child = child.next_sibling())
            if (IsElement(child))
                ReadElement(child, node);
    }

    void ReadElement(const pugi::xml_node& child, const NodeDraft& node) {
        const ElementName name = NameOf(child);
        switch (name) {
        case ElementName::Extension:
        case ElementName::StructEntry:
            return;
        case ElementName::ToolTip:
        case ElementName::Description:
        case ElementName::DocuURL:
            if (!m_keepTexts)
                return;
            break;
        case ElementName::EnumEntry:
            AddReference(name, LiftEntry(child, node.name));
            return;
        case ElementName::TextDesc:
        case ElementName::IntKey:
            LiftKey(child, name, node.name);
            return;
        case ElementName::IntSwissKnife:
        case ElementName::SwissKnife:
            AddReference(ElementName::pAddress, LiftFormula(child, name, node.name));
            return;
        default:
            break;
        }
        m_elements.push_back(Plain(child, name, node.tag));
    }

    void AddReference(ElementName name, std::string_view target) {
        m_elements.push_back({name, AttributeName::None, target, {}});
    }

    /// Comments inside a text cut it into several pieces. The first is the value of the element itself, but
    /// for one in a CDATA section.
    std::string_view TextOf(const pugi::xml_node& node) {
        const pugi::xml_node first = node.first_child();
        if (!first)
            return node.value();
        std::string text = node.value();
        for (pugi::xml_node piece = first; piece; piece = piece.next_sibling())
            if (IsText(piece) && text.empty() && !piece.next_sibling())
                return piece.value();
            else if (IsText(piece))
                text += piece.value();
        return m_writer.GetArena().Keep(text);
    }

    ElementDraft Plain(const pugi::xml_node& child, ElementName name, ElementName tag) {
        ElementDraft element;
        element.name = name;
        element.text = TextOf(child);
        // A String's value is the one text whose blanks count.
        if (!(tag == ElementName::String && name == ElementName::Value))
            element.text = Trim(element.text);
        for (pugi::xml_attribute attribute = child.first_attribute();
             attribute && element.attributeName == AttributeName::None;
             attribute = attribute.next_attribute()) {
            element.attributeName = KnownAttribute(attribute.name());
            if (element.attributeName != AttributeName::None)
                element.attribute = Trim(attribute.value());
        }
        return element;
    }

    std::string_view LiftEntry(const pugi::xml_node& element, std::string_view enumeration) {
        NodeDraft entry = Named(element, ElementName::EnumEntry);
        const std::string_view symbolic = entry.name;
        entry.name = m_writer.GetArena().Keep(EnumEntryName(enumeration, symbolic));
        const size_t begin = m_elements.size();
        ReadElements(element, entry);
        const bool hasSymbolic = std::any_of(
            m_elements.begin() + static_cast<std::ptrdiff_t>(begin), m_elements.end(),
            [](const ElementDraft& e) { return e.name == ElementName::Symbolic && !e.text.empty(); });
        if (!hasSymbolic)
            m_elements.push_back({ElementName::Symbolic, AttributeName::None, symbolic, {}});
        AddFrom(begin, entry);
        return symbolic.empty() ? std::string_view() : entry.name;
    }

    std::string_view LiftFormula(const pugi::xml_node& element, ElementName tag, std::string_view owner) {
        NodeDraft formula = Named(element, tag);
        if (formula.name.empty())
            formula.name =
                m_writer.GetArena().Keep("_" + std::string(owner) + "_Address" + std::to_string(m_unnamed++));
        const size_t begin = m_elements.size();
        ReadElements(element, formula);
        AddFrom(begin, formula);
        return formula.name;
    }

    // An entry of a configuration ROM knows the ROM and its key there.
    void LiftKey(const pugi::xml_node& element, ElementName tag, std::string_view rom) {
        const size_t begin = m_elements.size();
        m_elements.push_back({ElementName::p1212Parser, AttributeName::None, rom, {}});
        m_elements.push_back({ElementName::Key, AttributeName::None, Trim(TextOf(element)), {}});
        AddFrom(begin, Named(element, tag));
    }

    // Every entry becomes a masked register of its own. What it does not say itself it takes from the
    // structure; where the register lies always comes from there.
    void ReadStructure(const pugi::xml_node& element) {
        NodeDraft shared;
        shared.tag = ElementName::StructReg;
        shared.name = Trim(element.attribute("Comment").value());
        const size_t begin = m_elements.size();
        ReadElements(element, shared);
        const std::vector<ElementDraft> inherited(m_elements.begin() + static_cast<std::ptrdiff_t>(begin),
                                                  m_elements.end());
        m_elements.resize(begin);
        for (pugi::xml_node child = element.first_child(); child; child = child.next_sibling())
            if (IsElement(child) && NameOf(child) == ElementName::StructEntry)
                ReadStructureEntry(child, inherited);
    }

    void ReadStructureEntry(const pugi::xml_node& element, const std::vector<ElementDraft>& shared) {
        const NodeDraft entry = Named(element, ElementName::StructEntry);
        const size_t begin = m_elements.size();
        ReadElements(element, entry);
        const auto first = m_elements.begin() + static_cast<std::ptrdiff_t>(begin);
        m_elements.erase(
            std::remove_if(first, m_elements.end(), [](const ElementDraft& e) { return IsPlace(e.name); }),
            m_elements.end());
        const size_t own = m_elements.size();
        for (const ElementDraft& inherited : shared) {
            const bool overridden =
                std::any_of(m_elements.begin() + static_cast<std::ptrdiff_t>(begin),
                            m_elements.begin() + static_cast<std::ptrdiff_t>(own),
                            [&](const ElementDraft& e) { return e.name == inherited.name; });
            if (!overridden)
                m_elements.push_back(inherited);
        }
        AddFrom(begin, entry);
    }

    DocumentWriter& m_writer;
    const bool m_keepTexts;
    int8_t m_priority = 0;
    size_t m_unnamed = 0;
    std::vector<ElementDraft> m_elements; ///< of the node that is being read, and of those around it
};

} // namespace

void ParseDocument(char* text, size_t size, bool keepTexts, DocumentWriter& writer) {
    if (size / kShortestTag > size_t{kMaxTags} && std::count(text, text + size, '<') > kMaxTags)
        throw RUNTIME_EXCEPTION("The description has more than %td tags.", kMaxTags);
    pugi::xml_document xml;
    const pugi::xml_parse_result result = xml.load_buffer_inplace(
        text, size, pugi::parse_default | pugi::parse_embed_pcdata, pugi::encoding_utf8);
    if (!result)
        throw RUNTIME_EXCEPTION("The description is not well-formed XML: %s at byte %td.",
                                result.description(), result.offset);
    const pugi::xml_node root = xml.document_element();
    if (LocalName(root.name()) != "RegisterDescription")
        throw RUNTIME_EXCEPTION("The description has the root element '%s' instead of 'RegisterDescription'.",
                                root.name());
    Parser(writer, keepTexts).ReadRoot(root);
    writer.Finish();
}

} // namespace GENAPI_NAMESPACE::inside
