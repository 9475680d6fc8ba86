#include "genapi/src/description/EdgeLists.h"
#include "genapi/src/description/FormulaBuilder.h"
#include "genapi/src/description/NodeBuilder.h"

#include <algorithm>

namespace GENAPI_NAMESPACE::inside {

namespace {

void CheckPorts(Arena& arena, Description& description) {
    for (NodeDescription& node : description.nodes)
        if (node.reg && description.nodes[node.reg->port].type != NodeType::Port)
            arena.KeepText(node.error,
                           "pPort '" + description.nodes[node.reg->port].name.Copy() + "' is no Port");
}

void DropUnbuiltEntries(Description& description, NodeIndex enumeration) {
    List<NodeIndex>& entries = description.nodes[enumeration].entries;
    NodeIndex* const end = std::remove_if(entries.begin(), entries.end(), [&](NodeIndex entry) {
        return !description.nodes[entry].entry || !description.nodes[entry].error.empty();
    });
    entries.Shorten(static_cast<size_t>(end - entries.begin()));
    for (const NodeIndex entry : entries)
        description.nodes[entry].entry->enumeration = enumeration;
}

void CollectLists(Arena& arena, Description& description) {
    std::vector<NodeIndex> registers;
    std::vector<NodeIndex> ports;
    std::vector<NodeIndex> polled;
    std::vector<NodeIndex> withEvent;
    for (NodeIndex i = 0; i < description.nodes.size(); ++i) {
        NodeDescription& node = description.nodes[i];
        for (const NodeIndex feature : node.features)
            description.nodes[feature].isFeature = true;
        DropUnbuiltEntries(description, i);
        if (node.reg && node.error.empty()) {
            node.reg->slot = static_cast<uint32_t>(registers.size());
            registers.push_back(i);
        }
        if (node.port) {
            node.port->slot = static_cast<uint32_t>(ports.size());
            ports.push_back(i);
        }
        if (node.pollingTime >= 0)
            polled.push_back(i);
        if (node.hasEvent)
            withEvent.push_back(i);
    }
    arena.KeepList(description.registers, registers);
    arena.KeepList(description.ports, ports);
    arena.KeepList(description.polled, polled);
    arena.KeepList(description.withEvent, withEvent);
}

/// Numbers that lie at the same place show parts of the same word, which is read once for all of them. Not so
/// what must not be kept, or comes with events and chunks.
void ShareWords(Description& description) {
    for (const NodeIndex i : description.registers) {
        NodeDescription& node = description.nodes[i];
        const NodeDescription& port = description.nodes[node.reg->port];
        const bool isNumber = node.kind == ValueKind::Integer || node.kind == ValueKind::Float;
        node.reg->sharesWord =
            isNumber && node.reg->caching != NoCache && !port.hasEvent && !port.port->isChunk;
    }
}

void CollectFormulaErrors(Arena& arena, Description& description) {
    std::vector<std::string> errors;
    for (const NodeDescription& node : description.nodes)
        if (node.formula && !node.formula->error.empty())
            errors.push_back(node.name.Copy() + ": " + node.formula->error.Copy());
    arena.NewList(description.formulaErrors, errors.size());
    for (size_t i = 0; i < errors.size(); ++i)
        arena.KeepText(description.formulaErrors[i], errors[i]);
}

} // namespace

void LinkDescription(Arena& arena, Description& description) {
    const size_t count = description.document.nodes.size();
    arena.NewList(description.nodes, count);
    NodeBuilder builder(arena, description);
    for (NodeIndex i = 0; i < count; ++i)
        builder.Build(i);
    builder.Finish();
    CheckPorts(arena, description);
    CollectLists(arena, description);
    ShareWords(description);
    FormulaBuilder formulas(arena, description);
    for (NodeIndex i = 0; i < count; ++i)
        formulas.Build(i);
    CollectFormulaErrors(arena, description);
    BuildEdges(arena, description, builder.Invalidators());
}

} // namespace GENAPI_NAMESPACE::inside
