#pragma once

#include "genapi/src/description/Description.h"

namespace GENAPI_NAMESPACE::inside {

using Edges = std::vector<std::pair<NodeIndex, NodeIndex>>;

/// Edges (from, to) sorted by where they come from; each pair once, in order.
class EdgeLists {
public:
    EdgeLists(size_t nodes, const Edges& edges);

    Adjacency::Range Of(NodeIndex node) const {
        return {m_targets.data() + m_offsets[node], m_targets.data() + m_offsets[node + 1]};
    }
    void Keep(Arena& arena, Adjacency& place) const { place.Keep(arena, m_offsets, m_targets); }

private:
    std::vector<uint32_t> m_offsets;
    std::vector<NodeIndex> m_targets;
};

/// Collects what depends on what in a description whose nodes and formulas are built, and what follows from
/// it: selectors of features, and what can't be kept. `invalidators` are pairs of a node and what it names.
void BuildEdges(Arena& arena, Description& description, const Edges& invalidators);

} // namespace GENAPI_NAMESPACE::inside
