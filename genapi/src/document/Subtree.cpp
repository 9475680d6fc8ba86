#include "genapi/src/document/Document.h"

#include <Base/GCException.h>

#include <unordered_map>

namespace GENAPI_NAMESPACE::inside {

namespace {

// pInvalidator and pSelected point from a node to nodes that do not help it to work; following them would
// pull in most of a camera.
bool IsNeeded(const Element& element) {
    if (element.name == "EnumEntry")
        return true;
    return element.name.size() > 1 && element.name[0] == 'p' && element.name[1] >= 'A' &&
           element.name[1] <= 'Z' && element.name != "pInvalidator" && element.name != "pSelected";
}

class Extraction {
public:
    explicit Extraction(const Document& document)
        : m_document(document), m_wanted(document.nodes.size(), false) {
        for (size_t i = 0; i < document.nodes.size(); ++i)
            m_places.emplace(document.nodes[i].name, i);
    }

    bool Want(std::string_view name) {
        const auto found = m_places.find(name);
        if (found == m_places.end())
            return false;
        if (!m_wanted[found->second]) {
            m_wanted[found->second] = true;
            m_open.push_back(found->second);
        }
        return true;
    }

    void WantAllNeeded() {
        while (!m_open.empty()) {
            const SourceNode& node = m_document.nodes[m_open.back()];
            m_open.pop_back();
            for (const Element& element : node.elements) {
                if (IsNeeded(element))
                    Want(element.text);
                if (element.attributeName == "pOffset")
                    Want(element.attribute);
            }
        }
    }

    bool IsWanted(size_t place) const { return m_wanted[place]; }

private:
    const Document& m_document;
    std::unordered_map<std::string_view, size_t> m_places;
    std::vector<bool> m_wanted;
    std::vector<size_t> m_open;
};

void Rename(Document& document, std::string_view from, const std::string& to) {
    for (SourceNode& node : document.nodes) {
        if (node.name == from)
            node.name = to;
        for (Element& element : node.elements)
            if (IsNeeded(element) && element.text == from)
                element.text = to;
    }
}

} // namespace

Document ExtractDocument(const Document& document, std::string_view root, bool renameToRoot) {
    Extraction extraction(document);
    if (!extraction.Want(root))
        throw RUNTIME_EXCEPTION("There is no node '%s' to extract.", std::string(root).c_str());
    extraction.WantAllNeeded();
    Document subtree;
    subtree.header = document.header;
    subtree.names = document.names;
    for (size_t i = 0; i < document.nodes.size(); ++i)
        if (extraction.IsWanted(i) && !(renameToRoot && root != "Root" && document.nodes[i].name == "Root"))
            subtree.nodes.push_back(document.nodes[i]);
    if (renameToRoot)
        Rename(subtree, root, "Root");
    return subtree;
}

} // namespace GENAPI_NAMESPACE::inside
