#include "genapi/src/description/FormulaBuilder.h"
#include "genapi/src/description/NodeBuilder.h"

#include <GenApi/IBase.h>

#include <algorithm>

namespace GENAPI_NAMESPACE::inside {

namespace {

using Edges = std::vector<std::pair<NodeIndex, NodeIndex>>;

/// Collects the edges of one description and what follows from them.
class EdgeBuilder {
public:
    explicit EdgeBuilder(Description& description) : m_description(description) {}

    void Build() {
        for (NodeIndex i = 0; i < m_description.nodes.size(); ++i)
            Collect(i);
        m_description.reads = Adjacency(m_description.nodes.size(), m_reads);
        AddSelectorEdges();
        m_description.invalidators = Adjacency(m_description.nodes.size(), std::move(m_invalidators));
        m_description.dependents = Adjacency(m_description.nodes.size(), std::move(m_dependents));
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
        for (const Element& element : m_description.document->nodes[i].elements)
            if (element.name == "pInvalidator")
                CollectInvalidator(i, m_description.Find(element.text));
    }

    void CollectInvalidator(NodeIndex node, NodeIndex invalidator) {
        Depends(node, invalidator);
        if (invalidator != kNoNode)
            m_invalidators.emplace_back(node, invalidator);
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
        for (NodeIndex i = 0; i < m_description.nodes.size(); ++i)
            for (const NodeIndex selected : m_description.nodes[i].selected) {
                m_description.nodes[selected].selecting.push_back(i);
                Depends(selected, i);
                for (const NodeIndex reg : RegistersBehind(selected))
                    Depends(reg, i);
            }
    }

    // Bounded, because a hostile file can make every selector reach every node; past the budget only the
    // feature itself becomes stale.
    std::vector<NodeIndex> RegistersBehind(NodeIndex start) {
        constexpr size_t kMaxNodes = 512;
        std::vector<NodeIndex> seen{start};
        std::vector<NodeIndex> registers;
        m_seen.resize(m_description.nodes.size(), kNoNode);
        for (size_t next = 0; next < seen.size() && seen.size() < kMaxNodes && m_selectorBudget > 0; ++next) {
            // Past its own value a register reads only where it lies.
            if (m_description.nodes[seen[next]].reg) {
                registers.push_back(seen[next]);
                continue;
            }
            for (const NodeIndex child : m_description.reads.Of(seen[next])) {
                --m_selectorBudget;
                if (child != start && m_seen[child] != m_walk && seen.size() < kMaxNodes) {
                    m_seen[child] = m_walk;
                    seen.push_back(child);
                }
            }
        }
        ++m_walk;
        return registers;
    }

    // What can't be kept makes everything that is computed from it impossible to keep.
    void SpreadCaching() {
        std::vector<NodeDescription>& nodes = m_description.nodes;
        const Adjacency valueUsers(nodes.size(), std::move(m_valueUsers));
        const Adjacency placeUsers(nodes.size(), std::move(m_placeUsers));
        const Adjacency predicateUsers(nodes.size(), std::move(m_predicateUsers));
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
        SpreadWriteAround(valueUsers);
    }

    void SpreadModeCaching(const Adjacency& valueUsers, const Adjacency& placeUsers,
                           const Adjacency& predicateUsers) {
        std::vector<NodeDescription>& nodes = m_description.nodes;
        std::vector<NodeIndex> open;
        const auto mark = [&](NodeIndex i) {
            if (nodes[i].modeCacheable) {
                nodes[i].modeCacheable = false;
                open.push_back(i);
            }
        };
        for (NodeIndex i = 0; i < nodes.size(); ++i)
            if (!nodes[i].cacheable || nodes[i].addressVolatile)
                for (const NodeIndex user : predicateUsers.Of(i))
                    mark(user);
        while (!open.empty()) {
            const NodeIndex i = open.back();
            open.pop_back();
            for (const Adjacency* users : {&valueUsers, &placeUsers, &predicateUsers})
                for (const NodeIndex user : users->Of(i))
                    mark(user);
        }
    }

    void SpreadWriteAround(const Adjacency& valueUsers) {
        std::vector<NodeDescription>& nodes = m_description.nodes;
        std::vector<NodeIndex> open;
        for (NodeIndex i = 0; i < nodes.size(); ++i)
            if (nodes[i].caching == WriteAround)
                open.push_back(i);
        while (!open.empty()) {
            const NodeIndex i = open.back();
            open.pop_back();
            for (const NodeIndex user : valueUsers.Of(i))
                if (nodes[user].caching == WriteThrough) {
                    nodes[user].caching = WriteAround;
                    open.push_back(user);
                }
        }
    }

    Description& m_description;
    Edges m_dependents;
    Edges m_reads;
    Edges m_invalidators;
    Edges m_valueUsers;
    Edges m_placeUsers;
    Edges m_predicateUsers;
    std::vector<uint32_t> m_seen; ///< the last walk that passed each node
    uint32_t m_walk = 0;
    int64_t m_selectorBudget = 20'000'000;
};

void CheckPorts(Description& description) {
    for (NodeDescription& node : description.nodes)
        if (node.reg && node.error.empty() && description.nodes[node.reg->port].type != NodeType::Port)
            node.error = "pPort '" + std::string(description.nodes[node.reg->port].name) + "' is no Port";
}

void CollectLists(Description& description) {
    for (NodeIndex i = 0; i < description.nodes.size(); ++i) {
        NodeDescription& node = description.nodes[i];
        for (const NodeIndex feature : node.features)
            description.nodes[feature].isFeature = true;
        std::vector<NodeIndex>& entries = node.entries;
        entries.erase(std::remove_if(entries.begin(), entries.end(),
                                     [&](NodeIndex entry) {
                                         const NodeDescription& target = description.nodes[entry];
                                         return !target.entry || !target.error.empty();
                                     }),
                      entries.end());
        for (const NodeIndex entry : entries)
            description.nodes[entry].entry->enumeration = i;
        if (node.reg && node.error.empty()) {
            node.reg->slot = static_cast<uint32_t>(description.registers.size());
            description.registers.push_back(i);
        }
        if (node.port) {
            node.port->slot = static_cast<uint32_t>(description.ports.size());
            description.ports.push_back(i);
        }
        if (node.pollingTime >= 0)
            description.polled.push_back(i);
        if (node.hasEvent)
            description.withEvent.push_back(i);
    }
}

} // namespace

Adjacency::Adjacency(size_t nodes, Edges edges) : m_offsets(nodes + 1, 0) {
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
    m_targets.reserve(edges.size());
    for (const auto& [from, to] : edges) {
        ++m_offsets[from + 1];
        m_targets.push_back(to);
    }
    for (size_t i = 0; i < nodes; ++i)
        m_offsets[i + 1] += m_offsets[i];
}

std::shared_ptr<const Description> LinkDescription(std::shared_ptr<const Document> document) {
    auto description = std::make_shared<Description>();
    description->document = std::move(document);
    const std::vector<SourceNode>& sources = description->document->nodes;
    description->nodes.resize(sources.size());
    description->byName.reserve(sources.size());
    for (NodeIndex i = 0; i < sources.size(); ++i)
        description->byName.emplace(sources[i].name, i);
    NodeBuilder builder(*description);
    for (NodeIndex i = 0; i < sources.size(); ++i)
        builder.Build(i);
    CheckPorts(*description);
    CollectLists(*description);
    for (NodeIndex i = 0; i < sources.size(); ++i)
        BuildFormulas(*description, i);
    EdgeBuilder(*description).Build();
    return description;
}

} // namespace GENAPI_NAMESPACE::inside
