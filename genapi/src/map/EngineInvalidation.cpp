// What becomes stale when something changes, and whose callbacks are to run.
#include "genapi/src/map/Engine.h"

#include <algorithm>
#include <utility>

namespace GENAPI_NAMESPACE::inside {

void Engine::Drop(NodeIndex node, Stale what) {
    NodeState& state = m_states[node];
    if (what == Stale::All || Node(node).modeFollowsValues)
        state.modeKept = false;
    if (!state.ownsValue)
        state.valueKept = false;
    DropWord(node);
    MarkChanged(node);
}

void Engine::MarkChanged(NodeIndex node) {
    NodeState& state = m_states[node];
    if (!state.hasCallbacks || state.changed)
        return;
    state.changed = true;
    m_changed.push_back(node);
}

void Engine::Reach(NodeIndex node, Stale what) {
    NodeState& state = m_states[node];
    if (state.visit == m_visit)
        return;
    state.visit = m_visit;
    Drop(node, what);
    if (state.spreads)
        m_open.push_back(node);
}

// The nodes it starts from are left as they are: whoever wrote one knows what it holds now.
void Engine::Spread(const NodeIndex* from, size_t count, Stale what) {
    if (++m_visit == 0) {
        for (NodeState& state : m_states)
            state.visit = 0;
        m_visit = 1;
    }
    m_open.clear();
    for (size_t i = 0; i < count; ++i) {
        m_states[from[i]].visit = m_visit;
        m_open.push_back(from[i]);
    }
    bool allRegisters = false;
    while (!m_open.empty()) {
        const NodeIndex node = m_open.back();
        m_open.pop_back();
        for (const NodeIndex dependent : m_description->dependents.Of(node))
            Reach(dependent, what);
        if (Node(node).selectsAllRegisters && !std::exchange(allRegisters, true))
            for (const NodeIndex reg : m_description->registers)
                Reach(reg, what);
    }
    for (const NodeIndex id : m_chunks.idNodes)
        if (m_states[id].visit == m_visit)
            return ChunkIdsMayHaveChanged();
}

void Engine::Changed(NodeIndex node) {
    if (Node(node).modeFollowsValues)
        m_states[node].modeKept = false;
    MarkChanged(node);
    Spread(node);
}

void Engine::AccessChanged(NodeIndex node) {
    m_states[node].modeKept = false;
    MarkChanged(node);
    Spread(node, Stale::All);
}

void Engine::Invalidate(NodeIndex node) {
    std::vector<NodeIndex> stale{node};
    std::vector<bool> seen(m_states.size(), false);
    seen[node] = true;
    for (size_t next = 0; next < stale.size(); ++next)
        for (const NodeIndex child : m_description->reads.Of(stale[next]))
            if (!seen[child]) {
                seen[child] = true;
                stale.push_back(child);
            }
    for (const NodeIndex each : stale)
        Drop(each, Stale::All);
    Spread(stale, Stale::All);
}

void Engine::InvalidateAll() {
    for (NodeIndex i = 0; i < m_states.size(); ++i)
        Drop(i, Stale::All);
    m_chunks.idsChanged = !m_chunks.idNodes.empty();
}

std::vector<NodeIndex> Engine::TakeChanged() {
    for (const NodeIndex node : m_changed)
        m_states[node].changed = false;
    return std::exchange(m_changed, {});
}

bool Engine::IsPollingDue(size_t which, int64_t elapsed) {
    const NodeDescription& node = Node(m_description->polled[which]);
    if (node.blockPolling != kNoNode && Ask(node.blockPolling) == Truth::True)
        return false;
    int64_t& waited = m_pollElapsed[which];
    waited = elapsed > INT64_MAX - waited ? INT64_MAX : waited + elapsed;
    if (waited < node.pollingTime)
        return false;
    waited = 0;
    return true;
}

void Engine::Poll(int64_t elapsed) {
    for (size_t i = 0; i < m_description->polled.size(); ++i) {
        const NodeIndex node = m_description->polled[i];
        if (elapsed < 0 || !Node(node).error.empty() || !IsPollingDue(i, elapsed))
            continue;
        if (Node(node).type == NodeType::Command) {
            if (m_states[node].active)
                IsDone(node);
        } else if (Node(node).type == NodeType::Enumeration) {
            const NodeIndex entry = IsReadableNode(node) ? EntryOf(node, ReadInteger(node)) : kNoNode;
            if (entry != kNoNode && Node(entry).entry->selfClearing)
                Invalidate(node);
        } else {
            Invalidate(node);
        }
    }
}

} // namespace GENAPI_NAMESPACE::inside
