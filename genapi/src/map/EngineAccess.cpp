// Access modes: what a node may be used for now, and why not.
#include "genapi/src/map/EngineStep.h"

#include <GenApi/EnumClasses.h>
#include <GenApi/IPort.h>

namespace GENAPI_NAMESPACE::inside {

namespace {

constexpr int kMaxReasonDepth = 16;

EAccessMode WithoutWriting(EAccessMode mode) {
    return mode == RW ? RO : mode == WO ? NA : mode;
}
EAccessMode WithoutReading(EAccessMode mode) {
    return mode == RW ? WO : mode == RO ? NA : mode;
}

std::string ModeText(EAccessMode mode) {
    return EAccessModeClass::ToString(mode).c_str();
}

} // namespace

EAccessMode Engine::Mode(NodeIndex node) {
    return ModesOf(node).real;
}

bool Engine::IsReadableNode(NodeIndex node) {
    return IsReadable(Mode(node));
}

void Engine::RequireReadable(NodeIndex node) {
    const EAccessMode mode = Mode(node);
    if (!IsReadable(mode))
        throw ACCESS_EXCEPTION("Node '%s' is not readable: %s (access mode %s).", Name(node).c_str(),
                               WhyNot(node, false, 0).c_str(), ModeText(mode).c_str());
}

void Engine::RequireWritable(NodeIndex node) {
    const Modes modes = ModesOf(node);
    if (!IsWritable(modes.real) && !IsWritable(modes.overPort))
        throw ACCESS_EXCEPTION("Node '%s' is not writable: %s (access mode %s).", Name(node).c_str(),
                               WhyNot(node, true, 0).c_str(), ModeText(modes.real).c_str());
}

void Engine::ImposeMode(NodeIndex node, EAccessMode mode) {
    m_states[node].imposedMode = static_cast<uint8_t>(mode);
    AccessChanged(node);
}

Engine::Modes Engine::ModesOf(NodeIndex node) {
    NodeState& state = State(node);
    if (state.modeKept)
        return {static_cast<EAccessMode>(state.mode), static_cast<EAccessMode>(state.modeOverPort)};
    constexpr int kMaxDepth = 200;
    if (m_depth >= kMaxDepth || !SpendStep())
        return {NA, NA};
    // Predicates may lead back here; within such a circle this node restricts nothing.
    if (state.askingMode) {
        m_metCycle = true;
        return {RW, RW};
    }
    const bool outermost = m_depth == 0;
    if (outermost)
        m_metCycle = false;
    const CacheUse useCache(*this, false);
    struct Asking {
        Asking(NodeState& asked, int& level) : state(asked), depth(level) {
            state.askingMode = true;
            ++depth;
        }
        ~Asking() {
            state.askingMode = false;
            --depth;
        }
        NodeState& state;
        int& depth;
    } const asking(state, m_depth);
    const Modes modes = ComputeModes(node);
    // What was found inside a circle holds only for the node that was asked first.
    if (Node(node).modeCacheable && (outermost || !m_metCycle)) {
        state.mode = static_cast<uint8_t>(modes.real);
        state.modeOverPort = static_cast<uint8_t>(modes.overPort);
        state.modeKept = true;
    }
    return modes;
}

Engine::Modes Engine::ComputeModes(NodeIndex node) {
    const NodeDescription& description = Node(node);
    if (!description.error.empty())
        return {NI, NI};
    const Truth implemented = description.implemented == kNoNode ? Truth::True : Ask(description.implemented);
    if (implemented == Truth::False)
        return {NI, NI};
    const Truth available = description.available == kNoNode ? Truth::True : Ask(description.available);
    const Truth locked = description.locked == kNoNode ? Truth::False : Ask(description.locked);
    Modes modes = BaseModes(node);
    if (implemented == Truth::Unknown || available != Truth::True || locked == Truth::Unknown)
        return {Combine(modes.real, NA), Combine(modes.overPort, NA)};
    const EAccessMode imposed =
        Combine(description.imposedMode, static_cast<EAccessMode>(m_states[node].imposedMode));
    modes = {Combine(modes.real, imposed), Combine(modes.overPort, imposed)};
    if (locked == Truth::True)
        modes = {WithoutWriting(modes.real), WithoutWriting(modes.overPort)};
    return modes;
}

// A predicate that can't be read must not stop anyone from listing features, so failures are no exceptions
// here.
Engine::Truth Engine::Ask(NodeIndex predicate) {
    if (!IsReadableNode(predicate))
        return Truth::Unknown;
    try {
        const Number value = ReadNumber(predicate);
        return value.IsTrue() ? Truth::True : Truth::False;
    } catch (const GENICAM_NAMESPACE::GenericException&) {
        return Truth::Unknown;
    }
}

Engine::Modes Engine::BaseModes(NodeIndex node) {
    switch (Node(node).type) {
    case NodeType::IntReg:
    case NodeType::MaskedIntReg:
    case NodeType::FloatReg:
    case NodeType::StringReg:
    case NodeType::Register:
        return RegisterModes(node);
    case NodeType::Integer:
    case NodeType::Float:
    case NodeType::Boolean:
    case NodeType::Enumeration:
    case NodeType::String:
        return SourceModes(node);
    case NodeType::Command: {
        const Modes modes = SourceModes(node);
        return {WithoutReading(modes.real), WithoutReading(modes.overPort)};
    }
    case NodeType::SwissKnife:
    case NodeType::IntSwissKnife:
    case NodeType::Converter:
    case NodeType::IntConverter:
        return FormulaModes(node);
    case NodeType::Port:
        return PortModes(node);
    default:
        return {RO, RO};
    }
}

Engine::Modes Engine::RegisterModes(NodeIndex node) {
    const RegisterPart& reg = *Node(node).reg;
    for (const AddressTerm& term : reg.terms)
        if (!IsReadableNode(term.node) || (term.offsetNode != kNoNode && !IsReadableNode(term.offsetNode)))
            return {NA, NA};
    if (reg.lengthNode != kNoNode && !IsReadableNode(reg.lengthNode))
        return {NA, NA};
    const Modes port = ModesOf(reg.port);
    if (HoldsData(reg.port) && !IsInsideData(node))
        return {NA, NA};
    return {Combine(reg.mode, port.real), Combine(reg.mode, port.overPort)};
}

bool Engine::IsInsideData(NodeIndex node) {
    try {
        const Place place = Locate(node);
        const NodeIndex port = Node(node).reg->port;
        return DataAt(port, place) || Whereabouts(port, place);
    } catch (const GENICAM_NAMESPACE::GenericException&) {
        return false;
    }
}

Engine::Modes Engine::PortModes(NodeIndex port) {
    const PortState& state = Port(port);
    if (HoldsData(port))
        return {RO, RO};
    if (!state.implementation)
        return {NA, NA};
    const EAccessMode mode = state.implementation->GetAccessMode();
    return {mode, mode == RO ? RW : mode};
}

Engine::Modes Engine::SourceModes(NodeIndex node) {
    const SourcePart& source = *Node(node).source;
    if (source.form == SourcePart::Form::Own)
        return {RW, RW};
    if (source.form == SourcePart::Form::Table) {
        if (!IsReadableNode(source.index))
            return {NA, NA};
        try {
            const TableEntry* entry = CurrentEntry(source);
            if (!entry)
                return {NA, NA};
            return entry->node == kNoNode ? Modes{RW, RW} : ModesOf(entry->node);
        } catch (const GENICAM_NAMESPACE::GenericException&) {
            return {NA, NA};
        }
    }
    Modes modes = ModesOf(source.node);
    for (const NodeIndex copy : source.copies) {
        const Modes other = ModesOf(copy);
        if (!IsWritable(other.real))
            modes.real = WithoutWriting(modes.real);
        if (!IsWritable(other.overPort))
            modes.overPort = WithoutWriting(modes.overPort);
    }
    if (IsWritable(modes.overPort) && IncrementsDiffer(node))
        modes = {WithoutWriting(modes.real), WithoutWriting(modes.overPort)};
    return modes;
}

Engine::Modes Engine::FormulaModes(NodeIndex node) {
    const FormulaPart& formula = *Node(node).formula;
    if (!formula.error.empty())
        return {NA, NA};
    for (const VariableReference& variable : formula.variables)
        if (variable.property == VariableReference::Property::Value && !IsReadableNode(variable.node))
            return {NA, NA};
    return formula.node == kNoNode ? Modes{RO, RO} : ModesOf(formula.node);
}

// Follows the same order as ComputeModes, so that the first reason found is the one that decided.
std::string Engine::WhyNot(NodeIndex node, bool write, int depth) {
    const NodeDescription& description = Node(node);
    if (!description.error.empty())
        return "it could not be built: " + description.error.Copy();
    const auto ask = [&](NodeIndex predicate, Truth wanted) {
        return predicate == kNoNode ? wanted : Ask(predicate);
    };
    if (ask(description.implemented, Truth::True) != Truth::True)
        return "it is not implemented, as '" + Name(description.implemented) + "' says";
    if (ask(description.available, Truth::True) != Truth::True)
        return "it is not available, as '" + Name(description.available) + "' says";
    if (write && ask(description.locked, Truth::False) != Truth::False)
        return "it is locked by '" + Name(description.locked) + "'";
    const EAccessMode own = static_cast<EAccessMode>(m_states[node].imposedMode);
    for (const EAccessMode imposed : {own, description.imposedMode})
        if (write ? !IsWritable(imposed) : !IsReadable(imposed))
            return "its access is imposed to be " + ModeText(imposed);
    if (depth >= kMaxReasonDepth)
        return "of what it is built on";
    return WhyBaseNot(node, write, depth);
}

std::string Engine::WhyBaseNot(NodeIndex node, bool write, int depth) {
    const NodeDescription& description = Node(node);
    const auto because = [&](NodeIndex other, bool toWrite) {
        return "'" + Name(other) + "' is not " + (toWrite ? "writable" : "readable") + ", " +
               WhyNot(other, toWrite, depth + 1);
    };
    if (description.reg) {
        const RegisterPart& reg = *description.reg;
        for (const AddressTerm& term : reg.terms)
            for (const NodeIndex part : {term.node, term.offsetNode})
                if (part != kNoNode && !IsReadableNode(part))
                    return because(part, false);
        if (reg.lengthNode != kNoNode && !IsReadableNode(reg.lengthNode))
            return because(reg.lengthNode, false);
        if (write ? !IsWritable(reg.mode) : !IsReadable(reg.mode))
            return "its register is " + ModeText(reg.mode);
        if (HoldsData(reg.port))
            return write ? "events and chunks can't be written" : "the data of its port is too short";
        if (Node(reg.port).port->isChunk && !Port(reg.port).implementation)
            return "no attached buffer has the chunk of '" + Name(reg.port) + "'";
        return Port(reg.port).implementation ? "port '" + Name(reg.port) + "' is " + ModeText(Mode(reg.port))
                                             : "port '" + Name(reg.port) + "' is not connected";
    }
    if (description.type == NodeType::Command && !write)
        return "it is a command";
    if (description.source && description.source->form == SourcePart::Form::Table)
        return "of the entry that '" + Name(description.source->index) + "' chooses";
    if (description.source && description.source->node != kNoNode) {
        for (const NodeIndex copy : description.source->copies)
            if (write && !IsWritable(Mode(copy)))
                return because(copy, true);
        if (write && IsWritable(Mode(description.source->node)) && IncrementsDiffer(node))
            return "the increments of its targets differ";
        return because(description.source->node, write);
    }
    if (description.formula) {
        if (!description.formula->error.empty())
            return "its formula is wrong: " + description.formula->error.Copy();
        for (const VariableReference& variable : description.formula->variables)
            if (variable.property == VariableReference::Property::Value && !IsReadableNode(variable.node))
                return because(variable.node, false);
        if (description.formula->node != kNoNode)
            return because(description.formula->node, write);
        return "it is computed";
    }
    return "nodes of this kind never are";
}

} // namespace GENAPI_NAMESPACE::inside
