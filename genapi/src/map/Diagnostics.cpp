// What is wrong with a description. Looked for when somebody asks: hardly anybody does.
#include "genapi/src/description/ElementReader.h"
#include "genapi/src/map/NodeMapImpl.h"

#include <GenApi/Diagnostics.h>

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;

namespace inside {

namespace {

class Collector {
public:
    Collector(const Description& description, gcstring_vector& lines)
        : m_description(description), m_lines(lines) {}

    void Collect() {
        for (NodeIndex i = 0; i < m_description.nodes.size(); ++i)
            CollectNode(i);
        for (const Text& name : m_description.document.repeated)
            Add(name, "another node has this name, this one is left out");
    }

private:
    void Add(std::string_view node, std::string_view reason) {
        const std::string line = std::string(node).append(": ").append(reason);
        m_lines.push_back(gcstring(line.data(), line.size()));
    }

    void CollectNode(NodeIndex index) {
        const NodeDescription& node = m_description.nodes[index];
        if (!node.error.empty())
            Add(node.name, node.error);
        if (node.formula) {
            if (!node.formula->error.empty())
                Add(node.name, node.formula->error);
            CollectUndefined(node, node.formula->reading);
            CollectUndefined(node, node.formula->writing);
        }
        for (const Element& element : m_description.document.nodes[index].elements)
            CollectReference(node, element);
    }

    void CollectUndefined(const NodeDescription& node, const Ref<Formula>& formula) {
        if (!formula)
            return;
        for (const Text& name : formula->undefined)
            Add(node.name, "'" + name.Copy() + "' is not defined in \"" + formula->text.Copy() + "\"");
    }

    void CollectReference(const NodeDescription& node, const Element& element) {
        if (element.name >= ElementName::FirstUnknown || !IsPointerName(KnownElementName(element.name)) ||
            m_description.Find(element.text) != kNoNode)
            return;
        const std::string reason =
            std::string(KnownElementName(element.name)) + " " + Quoted(element.text) + " does not exist";
        if (node.error != reason)
            Add(node.name, reason);
    }

    const Description& m_description;
    gcstring_vector& m_lines;
};

} // namespace

void NodeMapImpl::GetDiagnostics(gcstring_vector& diagnostics) const {
    Collector(*m_description, diagnostics).Collect();
}

} // namespace inside

void GetDiagnostics(INodeMap* pNodeMap, gcstring_vector& Diagnostics) {
    const auto* const map = dynamic_cast<inside::NodeMapImpl*>(pNodeMap);
    if (!map)
        throw INVALID_ARGUMENT_EXCEPTION("There are no diagnostics but of node maps that a factory made.");
    map->GetDiagnostics(Diagnostics);
}

} // namespace GENAPI_NAMESPACE
