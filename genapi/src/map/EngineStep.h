#pragma once

#include "genapi/src/map/Engine.h"

namespace GENAPI_NAMESPACE::inside {

/// A formula has no value for the current values of its variables. To callers a RuntimeException like others.
class NoValueNow : public GENICAM_NAMESPACE::RuntimeException {
public:
    using RuntimeException::RuntimeException;
};

/// One level of depth. Refuses chains that would exhaust the stack.
class Engine::Level {
public:
    Level(Engine& engine, NodeIndex node) : m_engine(engine) {
        constexpr int kMaxDepth = 200;
        if (engine.m_depth >= kMaxDepth)
            throw RUNTIME_EXCEPTION("Node '%s' is reached through more than %d others.",
                                    engine.Name(node).c_str(), kMaxDepth);
        if (!engine.SpendStep())
            throw RUNTIME_EXCEPTION("Node '%s' can't be evaluated: too many steps.",
                                    engine.Name(node).c_str());
        ++engine.m_depth;
    }
    ~Level() { --m_engine.m_depth; }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;

private:
    Engine& m_engine;
};

/// One level of reading. Also refuses a node that is being read already. Writing needs no such
/// check of its own: limits and formulas may read what is being written.
class Engine::Step {
public:
    Step(Engine& engine, NodeIndex node) : m_engine(engine), m_node(node), m_level(engine, node) {
        if (engine.m_states[node].evaluating)
            throw RUNTIME_EXCEPTION("Node '%s' depends on its own value: circular reference.",
                                    engine.Name(node).c_str());
        engine.m_states[node].evaluating = true;
    }
    ~Step() { m_engine.m_states[m_node].evaluating = false; }
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;

private:
    Engine& m_engine;
    NodeIndex m_node;
    Level m_level;
};

} // namespace GENAPI_NAMESPACE::inside
