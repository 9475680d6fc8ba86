#include "genapi/src/document/DocumentWriter.h"

#include <Base/GCException.h>

namespace GENAPI_NAMESPACE::inside {

namespace {

// pInvalidator and pSelected point from a node to nodes that do not help it to work; following them would
// pull in most of a camera.
bool IsNeeded(std::string_view name) {
    return name == "EnumEntry" || name == "p1212Parser" ||
           (IsPointerName(name) && name != "pInvalidator" && name != "pSelected");
}

class Extraction {
public:
    explicit Extraction(const Document& document)
        : m_document(document), m_wanted(document.nodes.size(), false) {}

    bool Want(std::string_view name) {
        const uint32_t place = m_document.Find(name);
        if (place == Document::kNowhere)
            return false;
        if (!m_wanted[place]) {
            m_wanted[place] = true;
            m_open.push_back(place);
        }
        return true;
    }

    void WantAllNeeded() {
        while (!m_open.empty()) {
            const SourceNode& node = m_document.nodes[m_open.back()];
            m_open.pop_back();
            for (const Element& element : node.elements) {
                if (IsNeeded(m_document.NameOf(element.name)))
                    Want(element.text);
                if (element.attributeName == AttributeName::pOffset)
                    Want(element.attribute);
            }
        }
    }

    bool IsWanted(size_t place) const { return m_wanted[place]; }

private:
    const Document& m_document;
    std::vector<bool> m_wanted;
    std::vector<uint32_t> m_open;
};

} // namespace

void ExtractDocument(const Document& document, std::string_view root, bool renameToRoot,
                     DocumentWriter& writer) {
    Extraction extraction(document);
    if (!extraction.Want(root))
        throw RUNTIME_EXCEPTION("There is no node '%s' to extract.", std::string(root).c_str());
    extraction.WantAllNeeded();
    writer.CopyHeader(document.header);
    const bool rename = renameToRoot && root != "Root";
    const auto renamed = [&](std::string_view name) { return rename && name == root ? "Root" : name; };
    std::vector<ElementDraft> elements;
    for (size_t i = 0; i < document.nodes.size(); ++i) {
        const SourceNode& node = document.nodes[i];
        if (!extraction.IsWanted(i) || (rename && node.name == "Root"))
            continue;
        writer.DraftElements(document, node, elements);
        for (ElementDraft& element : elements)
            if (IsNeeded(writer.NameOf(element.name)))
                element.text = renamed(element.text);
        NodeDraft draft = writer.Draft(document, node);
        draft.name = renamed(draft.name);
        writer.Add(draft, elements.data(), elements.size());
    }
    writer.Finish();
}

} // namespace GENAPI_NAMESPACE::inside
