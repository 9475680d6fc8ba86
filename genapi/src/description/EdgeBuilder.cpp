// Who depends on whom.
#include "genapi/src/description/EdgeLists.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace GENAPI_NAMESPACE::inside {

namespace {

/// Collects the edges of one description and what follows from them.
class EdgeBuilder {
public:
    EdgeBuilder(Arena& arena, Description& description, const Edges& invalidators)
        : m_arena(arena), m_description(description), m_invalidators(invalidators) {}

    void Build() {
        const size_t count = m_description.nodes.size();
        for (Edges* edges : {&m_reads, &m_valueUsers, &m_dependents})
            edges->reserve(2 * count);
        for (NodeIndex i = 0; i < count; ++i)
            Collect(i);
        for (const auto& [node, invalidator] : m_invalidators)
            Depends(node, invalidator);
        EdgeLists(count, m_reads).Keep(m_arena, m_description.reads);
        AddSelectorEdges();
        EdgeLists(count, m_invalidators).Keep(m_arena, m_description.invalidators);
        EdgeLists(count, m_dependents).Keep(m_arena, m_description.dependents);
        SpreadCaching();
    }

private:
    void Depends(NodeIndex node, NodeIndex on) {
        if (on != kNoNode)
            m_dependents.emplace_back(on, node);
    }
    void Reads(NodeIndex node, NodeIndex what) {
        if (what == kNoNode)
            return;
        m_reads.emplace_back(node, what);
        m_valueUsers.emplace_back(what, node);
        Depends(node, what);
    }
    void AsksForMode(NodeIndex node, NodeIndex predicate) {
        if (predicate == kNoNode)
            return;
        m_predicateUsers.emplace_back(predicate, node);
        Depends(node, predicate);
    }

    void Collect(NodeIndex i) {
        const NodeDescription& node = m_description.nodes[i];
        AsksForMode(i, node.implemented);
        AsksForMode(i, node.available);
        AsksForMode(i, node.locked);
        for (const NodeIndex entry : node.entries)
            Depends(i, entry);
        if (node.reg)
            CollectRegister(i, *node.reg);
        if (node.source)
            CollectSource(i, *node.source);
        if (node.limits)
            for (const NumberSource* limit : {&node.limits->min, &node.limits->max, &node.limits->inc})
                Depends(i, limit->node);
        if (node.formula) {
            Reads(i, node.formula->node);
            for (const VariableReference& variable : node.formula->variables)
                if (variable.property != VariableReference::Property::Constant)
                    Reads(i, variable.node);
        }
        Depends(i, node.commandValue);
    }

    void CollectRegister(NodeIndex i, const RegisterPart& reg) {
        for (const AddressTerm& term : reg.terms) {
            ReadsPlace(i, term.node);
            ReadsPlace(i, term.offsetNode);
        }
        ReadsPlace(i, reg.lengthNode);
        Depends(i, reg.port);
    }
    void ReadsPlace(NodeIndex node, NodeIndex what) {
        if (what == kNoNode)
            return;
        m_reads.emplace_back(node, what);
        m_placeUsers.emplace_back(what, node);
        Depends(node, what);
    }

    void CollectSource(NodeIndex i, const SourcePart& source) {
        Reads(i, source.node);
        for (const NodeIndex copy : source.copies)
            Depends(i, copy);
        Reads(i, source.index);
        for (const TableEntry& entry : source.entries)
            Reads(i, entry.node);
        if (source.fallback)
            Reads(i, source.fallback->node);
    }

    // A device may keep one register for all settings of a selector: choosing another one makes the registers
    // behind the selected feature stale, not only the feature.
    void AddSelectorEdges() {
        Edges selecting;
        for (NodeIndex i = 0; i < m_description.nodes.size(); ++i)
            for (const NodeIndex selected : m_description.nodes[i].selected) {
                selecting.emplace_back(selected, i);
                Depends(selected, i);
                const auto registers = RegistersBehind(selected);
                m_description.nodes[i].selectsAllRegisters |= !registers;
                if (registers)
                    for (const NodeIndex reg : *registers)
                        Depends(reg, i);
            }
        if (selecting.empty())
            return;
        const EdgeLists lists(m_description.nodes.size(), selecting);
        for (NodeIndex i = 0; i < m_description.nodes.size(); ++i) {
            const Adjacency::Range range = lists.Of(i);
            m_arena.KeepList(m_description.nodes[i].selecting,
                             std::vector<NodeIndex>(range.begin(), range.end()));
        }
    }

    // Bounded, because a hostile file can make every selector reach every node. Nothing where there are too
    // many: all registers count as reached then, which takes no edges.
    std::optional<std::vector<NodeIndex>> RegistersBehind(NodeIndex start) {
        constexpr size_t kMaxNodes = 512;
        std::vector<NodeIndex> seen{start};
        std::vector<NodeIndex> registers;
        m_seen.resize(m_description.nodes.size(), 0);
        ++m_walk;
        for (size_t next = 0; next < seen.size(); ++next) {
            // Past its own value a register reads only where it lies.
            if (m_description.nodes[seen[next]].reg) {
                registers.push_back(seen[next]);
                continue;
            }
            for (const NodeIndex child : m_description.reads.Of(seen[next])) {
                if (m_selectorBudget-- <= 0)
                    return std::nullopt;
                if (child == start || m_seen[child] == m_walk)
                    continue;
                if (seen.size() == kMaxNodes)
                    return std::nullopt;
                m_seen[child] = m_walk;
                seen.push_back(child);
            }
        }
        return registers;
    }

    // What can't be kept makes everything that is computed from it impossible to keep.
    void SpreadCaching() {
        List<NodeDescription>& nodes = m_description.nodes;
        const EdgeLists valueUsers(nodes.size(), m_valueUsers);
        const EdgeLists placeUsers(nodes.size(), m_placeUsers);
        const EdgeLists predicateUsers(nodes.size(), m_predicateUsers);
        std::vector<NodeIndex> open;
        for (NodeIndex i = 0; i < nodes.size(); ++i)
            if (nodes[i].reg && nodes[i].reg->caching == NoCache)
                open.push_back(i);
        for (const NodeIndex i : open)
            nodes[i].cacheable = false;
        while (!open.empty()) {
            const NodeIndex i = open.back();
            open.pop_back();
            for (const NodeIndex user : valueUsers.Of(i))
                if (nodes[user].cacheable) {
                    nodes[user].cacheable = false;
                    nodes[user].caching = NoCache;
                    open.push_back(user);
                }
            for (const NodeIndex user : placeUsers.Of(i))
                if (!nodes[user].addressVolatile) {
                    nodes[user].addressVolatile = true;
                    if (nodes[user].cacheable)
                        open.push_back(user);
                }
        }
        SpreadModeCaching(valueUsers, placeUsers, predicateUsers);
        SpreadModeFollowing(valueUsers, placeUsers);
        SpreadWriteAround(valueUsers);
    }

    using Users = std::initializer_list<const EdgeLists*>;

    /// Goes on to the users of each node for which `mark` is true, which it must be once at most.
    template <class Mark>
    void Spread(std::vector<NodeIndex> open, Users users, Mark mark) const {
        while (!open.empty()) {
            const NodeIndex i = open.back();
            open.pop_back();
            for (const EdgeLists* lists : users)
                for (const NodeIndex user : lists->Of(i))
                    if (mark(m_description.nodes[user]))
                        open.push_back(user);
        }
    }

    /// All nodes for which `mark` is true at first.
    template <class Mark>
    std::vector<NodeIndex> Marked(Mark mark) const {
        std::vector<NodeIndex> marked;
        for (NodeIndex i = 0; i < m_description.nodes.size(); ++i)
            if (mark(m_description.nodes[i]))
                marked.push_back(i);
        return marked;
    }

    void SpreadModeCaching(const EdgeLists& valueUsers, const EdgeLists& placeUsers,
                           const EdgeLists& predicateUsers) {
        const auto mark = [](NodeDescription& node) { return std::exchange(node.modeCacheable, false); };
        std::vector<NodeIndex> asked;
        for (const NodeIndex i :
             Marked([](const NodeDescription& node) { return !node.cacheable || node.addressVolatile; }))
            for (const NodeIndex user : predicateUsers.Of(i))
                if (mark(m_description.nodes[user]))
                    asked.push_back(user);
        Spread(std::move(asked), {&valueUsers, &placeUsers, &predicateUsers}, mark);
    }

    // Predicates, tables and increments are values; so is where a register lies in an event or a chunk.
    bool AsksValuesForMode(const NodeDescription& node) const {
        if (node.implemented != kNoNode || node.available != kNoNode || node.locked != kNoNode)
            return true;
        if (node.source && (node.source->form == SourcePart::Form::Table || !node.source->copies.empty()))
            return true;
        if (!node.reg || !node.error.empty())
            return false;
        const NodeDescription& port = m_description.nodes[node.reg->port];
        return port.modeFollowsValues || port.hasEvent || port.port->isChunk;
    }

    void SpreadModeFollowing(const EdgeLists& valueUsers, const EdgeLists& placeUsers) {
        const auto mark = [](NodeDescription& node) { return !std::exchange(node.modeFollowsValues, true); };
        for (const NodeIndex port : m_description.ports)
            m_description.nodes[port].modeFollowsValues = AsksValuesForMode(m_description.nodes[port]);
        Spread(Marked([&](NodeDescription& node) { return AsksValuesForMode(node) && mark(node); }),
               {&valueUsers, &placeUsers}, mark);
    }

    void SpreadWriteAround(const EdgeLists& valueUsers) {
        Spread(Marked([](const NodeDescription& node) { return node.caching == WriteAround; }), {&valueUsers},
               [](NodeDescription& node) {
                   const bool first = node.caching == WriteThrough;
                   if (first)
                       node.caching = WriteAround;
                   return first;
               });
    }

    Arena& m_arena;
    Description& m_description;
    const Edges& m_invalidators;
    Edges m_dependents;
    Edges m_reads;
    Edges m_valueUsers;
    Edges m_placeUsers;
    Edges m_predicateUsers;
    std::vector<uint32_t> m_seen; ///< the last walk that passed each node
    uint32_t m_walk = 0;
    int64_t m_selectorBudget = 20'000'000;
};

} // namespace

// Sorts by counting: most nodes have few edges, and there are a hundred thousand of them.
EdgeLists::EdgeLists(size_t nodes, const Edges& edges) : m_offsets(nodes + 2, 0), m_targets(edges.size()) {
    for (const auto& [from, to] : edges)
        ++m_offsets[from + 2];
    for (size_t i = 2; i < m_offsets.size(); ++i)
        m_offsets[i] += m_offsets[i - 1];
    for (const auto& [from, to] : edges)
        m_targets[m_offsets[from + 1]++] = to;
    m_offsets.pop_back();
    uint32_t kept = 0;
    for (size_t i = 0; i < nodes; ++i) {
        const auto begin = m_targets.begin() + m_offsets[i];
        const auto end = m_targets.begin() + m_offsets[i + 1];
        if (end - begin <= 1) { // nearly always
            m_offsets[i] = kept;
            if (begin != end)
                m_targets[kept++] = *begin;
            continue;
        }
        if (!std::is_sorted(begin, end)) // rare
            std::sort(begin, end);
        const auto last = std::unique(begin, end);
        m_offsets[i] = kept;
        kept = static_cast<uint32_t>(std::copy(begin, last, m_targets.begin() + kept) - m_targets.begin());
    }
    m_offsets[nodes] = kept;
    m_targets.resize(kept);
}

void BuildEdges(Arena& arena, Description& description, const Edges& invalidators) {
    EdgeBuilder(arena, description, invalidators).Build();
}

} // namespace GENAPI_NAMESPACE::inside
