#include "genapi/src/document/DocumentWriter.h"

#include <Base/GCException.h>

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace GENAPI_NAMESPACE::inside {

namespace {

// Real files stay below a tenth of each.
constexpr size_t kMaxNodes = 200'000;
constexpr size_t kMaxUnknownNames = 50'000;
constexpr size_t kMaxNameLength = 1024;
constexpr size_t kMaxRepeated = 1000;

uint32_t Hash(std::string_view name) {
    return static_cast<uint32_t>(XXH3_64bits(name.data(), name.size()));
}

} // namespace

uint32_t Document::Find(std::string_view name) const {
    if (places.empty())
        return kNowhere;
    const size_t mask = places.size() - 1;
    for (size_t place = Hash(name) & mask; places[place] != 0; place = (place + 1) & mask)
        if (nodes[places[place] - 1].name == name)
            return places[place] - 1;
    return kNowhere;
}

ElementName DocumentWriter::Name(std::string_view name) {
    const ElementName known = FindElementName(name);
    if (known != ElementName::FirstUnknown)
        return known;
    const auto found = m_unknownPlaces.find(name);
    if (found != m_unknownPlaces.end())
        return found->second;
    if (m_unknownNames.size() >= kMaxUnknownNames)
        throw RUNTIME_EXCEPTION("The description has more than %zu kinds of elements.", kMaxUnknownNames);
    m_unknownNames.push_back(m_arena.Keep(name));
    const auto number = static_cast<ElementName>(static_cast<size_t>(known) + m_unknownNames.size() - 1);
    m_unknownPlaces.emplace(m_unknownNames.back(), number);
    return number;
}

void DocumentWriter::CopyHeader(const SourceHeader& header) {
    SourceHeader& own = m_document.header;
    m_arena.KeepText(own.modelName, header.modelName);
    m_arena.KeepText(own.vendorName, header.vendorName);
    m_arena.KeepText(own.toolTip, header.toolTip);
    m_arena.KeepText(own.standardNameSpace, header.standardNameSpace);
    m_arena.KeepText(own.productGuid, header.productGuid);
    m_arena.KeepText(own.versionGuid, header.versionGuid);
    std::copy(std::begin(header.schema), std::end(header.schema), own.schema);
    std::copy(std::begin(header.device), std::end(header.device), own.device);
}

NodeDraft DocumentWriter::Draft(const Document& document, const SourceNode& node) {
    return {Name(document.NameOf(node.tag)), node.standard, node.mergePriority, node.name};
}

void DocumentWriter::DraftElements(const Document& document, const SourceNode& node,
                                   std::vector<ElementDraft>& elements) {
    elements.clear();
    for (const Element& element : node.elements)
        elements.push_back(
            {Name(document.NameOf(element.name)), element.attributeName, element.text, element.attribute});
}

void DocumentWriter::Grow() {
    std::vector<uint32_t> places(2 * m_places.size(), 0);
    const size_t mask = places.size() - 1;
    for (size_t i = 0; i < m_rows.size(); ++i) {
        size_t place = m_rows[i].hash & mask;
        while (places[place] != 0)
            place = (place + 1) & mask;
        places[place] = static_cast<uint32_t>(i + 1);
    }
    m_places = std::move(places);
}

std::string_view DocumentWriter::Kept(std::string_view text) {
    constexpr size_t kMaxSharedLength = 128;
    if (!m_sharing || text.size() > kMaxSharedLength)
        return m_arena.Keep(text);
    const auto known = m_shared.find(text);
    return known != m_shared.end() ? *known : *m_shared.insert(m_arena.Keep(text)).first;
}

bool DocumentWriter::Add(const NodeDraft& node, const ElementDraft* first, size_t count) {
    if (node.name.empty() || node.name.size() > kMaxNameLength)
        return false;
    const size_t mask = m_places.size() - 1;
    const uint32_t hash = Hash(node.name);
    size_t place = hash & mask;
    for (; m_places[place] != 0; place = (place + 1) & mask)
        if (const Row& row = m_rows[m_places[place] - 1]; row.hash == hash && row.node.name == node.name) {
            KeepRepeated(node.name);
            return false;
        }
    if (m_rows.size() >= kMaxNodes)
        throw RUNTIME_EXCEPTION("The description has more than %zu nodes; the next is '%s'.", kMaxNodes,
                                std::string(node.name).c_str());
    Element* const elements = m_arena.NewArray<Element>(count);
    for (size_t i = 0; i < count; ++i) {
        elements[i].name = first[i].name;
        elements[i].attributeName = first[i].attributeName;
        elements[i].text.Point(Kept(first[i].text));
        elements[i].attribute.Point(Kept(first[i].attribute));
    }
    m_rows.push_back({node, elements, count, hash});
    m_rows.back().node.name = Kept(node.name);
    m_places[place] = static_cast<uint32_t>(m_rows.size());
    if (2 * m_rows.size() > m_places.size())
        Grow();
    return true;
}

void DocumentWriter::KeepRepeated(std::string_view name) {
    if (m_repeated.size() < kMaxRepeated)
        m_repeated.push_back(Kept(name));
}

void DocumentWriter::CopyRepeated(const Document& document) {
    for (const Text& name : document.repeated)
        KeepRepeated(name);
}

void DocumentWriter::Finish() {
    m_arena.NewList(m_document.nodes, m_rows.size());
    for (size_t i = 0; i < m_rows.size(); ++i) {
        const Row& row = m_rows[i];
        SourceNode& node = m_document.nodes[i];
        node.tag = row.node.tag;
        node.standard = row.node.standard;
        node.mergePriority = row.node.mergePriority;
        node.name.Point(row.node.name);
        node.elements.Point(row.first, row.count);
    }
    m_arena.KeepList(m_document.places, m_places);
    m_arena.NewList(m_document.unknownNames, m_unknownNames.size());
    for (size_t i = 0; i < m_unknownNames.size(); ++i)
        m_document.unknownNames[i].Point(m_unknownNames[i]);
    m_arena.NewList(m_document.repeated, m_repeated.size());
    for (size_t i = 0; i < m_repeated.size(); ++i)
        m_document.repeated[i].Point(m_repeated[i]);
}

void CopyDocument(const Document& document, DocumentWriter& writer) {
    writer.CopyHeader(document.header);
    std::vector<ElementDraft> elements;
    for (const SourceNode& node : document.nodes) {
        writer.DraftElements(document, node, elements);
        writer.Add(writer.Draft(document, node), elements.data(), elements.size());
    }
    writer.CopyRepeated(document);
    writer.Finish();
}

std::string EnumEntryName(std::string_view enumeration, std::string_view entry) {
    std::string name = "EnumEntry_";
    return name.append(enumeration).append("_").append(entry);
}

} // namespace GENAPI_NAMESPACE::inside
