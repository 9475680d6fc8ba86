// Reading: one integer view and one float view over every kind of value.
#include "genapi/src/map/EngineStep.h"

#include <algorithm>

namespace GENAPI_NAMESPACE::inside {

/// The variables of one formula, for one evaluation.
class Engine::Variables final : public VariableValues {
public:
    Variables(Engine& engine, NodeIndex node, const Number* converted)
        : m_engine(engine), m_formula(*engine.Node(node).formula), m_converted(converted) {}

    Number Value(uint32_t slot) override {
        return slot == kConvertedSlot ? *m_converted : m_engine.VariableValue(m_formula.variables[slot]);
    }

private:
    Engine& m_engine;
    const FormulaPart& m_formula;
    const Number* m_converted;
};

int64_t Engine::ReadInteger(NodeIndex node) {
    const NodeState& state = State(node);
    const ValueKind kind = Node(node).kind;
    if (kind == ValueKind::Float)
        return Truncate(ReadFloat(node));
    if (kind != ValueKind::Integer)
        NoNumber(node);
    if (state.valueKept && (state.ownsValue || (!m_ignoreCache && !Node(node).addressVolatile)))
        return state.integer;
    const Step step(*this, node);
    return ComputeInteger(node);
}

double Engine::ReadFloat(NodeIndex node) {
    const NodeState& state = State(node);
    const NodeDescription& description = Node(node);
    if (description.type == NodeType::Enumeration)
        return ReadNumericValue(node);
    if (state.valueKept && (state.ownsValue || (!m_ignoreCache && !description.addressVolatile)))
        return state.real;
    const Step step(*this, node);
    return ComputeFloat(node);
}

Number Engine::ReadNumber(NodeIndex node) {
    return Node(node).kind == ValueKind::Float ? Number::Of(ReadFloat(node)) : Number::Of(ReadInteger(node));
}

void Engine::NoNumber(NodeIndex node) const {
    if (!Node(node).error.empty())
        throw ACCESS_EXCEPTION("Node '%s' could not be built: %s.", Name(node).c_str(),
                               Node(node).error.Copy().c_str());
    throw RUNTIME_EXCEPTION("Node '%s' has no numeric value.", Name(node).c_str());
}

int64_t Engine::ComputeInteger(NodeIndex node) {
    const NodeDescription& description = Node(node);
    if (!description.error.empty())
        NoNumber(node);
    if (description.reg)
        return ReadIntegerRegister(node);
    int64_t value = 0;
    switch (description.type) {
    case NodeType::Integer:
    case NodeType::Enumeration:
        value = ReadSource(node).AsInteger();
        break;
    case NodeType::Boolean:
        value = ReadBoolean(node);
        break;
    case NodeType::EnumEntry:
        value = description.entry->value;
        break;
    default:
        value = Evaluate(node, false, nullptr).AsInteger();
    }
    m_states[node].integer = value;
    m_states[node].valueKept = description.cacheable;
    return value;
}

double Engine::ComputeFloat(NodeIndex node) {
    const NodeDescription& description = Node(node);
    if (!description.error.empty())
        NoNumber(node);
    if (description.reg)
        return ReadFloatRegister(node);
    const double value = description.type == NodeType::Float ? ReadSource(node).AsDouble()
                                                             : Evaluate(node, false, nullptr).AsDouble();
    m_states[node].real = value;
    m_states[node].valueKept = description.cacheable;
    return value;
}

const TableEntry* Engine::CurrentEntry(const SourcePart& source) {
    const int64_t index = ReadInteger(source.index);
    for (const TableEntry& entry : source.entries)
        if (entry.index == index)
            return &entry;
    return source.fallback ? &*source.fallback : nullptr;
}

Number Engine::ReadSource(NodeIndex node) {
    const SourcePart& source = *Node(node).source; // never its own: that is kept for ever
    const bool asFloat = Node(node).kind == ValueKind::Float;
    const auto read = [&](NodeIndex target) {
        return asFloat && Node(target).type == NodeType::Enumeration ? Number::Of(ReadFloat(target))
                                                                     : ReadNumber(target);
    };
    if (source.form == SourcePart::Form::Node)
        return read(source.node);
    const TableEntry* entry = CurrentEntry(source);
    if (!entry)
        throw ACCESS_EXCEPTION("Node '%s' has no value for %lld, the value of '%s'.", Name(node).c_str(),
                               static_cast<long long>(ReadInteger(source.index)), Name(source.index).c_str());
    return entry->node == kNoNode ? m_tableValues[entry->slot] : read(entry->node);
}

// With both values left to their defaults, registers in the wild hold anything but 0 for "on".
int64_t Engine::ReadBoolean(NodeIndex node) {
    const SwitchPart& onOff = *Node(node).onOff;
    const int64_t value = ReadSource(node).AsInteger();
    return onOff.given ? value == onOff.on : value != 0;
}

double Engine::ReadNumericValue(NodeIndex enumeration) {
    const int64_t value = ReadInteger(enumeration);
    for (const NodeIndex entry : Node(enumeration).entries)
        if (Node(entry).entry->value == value)
            return Node(entry).entry->numericValue;
    return static_cast<double>(value);
}

Number Engine::Evaluate(NodeIndex node, bool writing, const Number* converted) {
    const FormulaPart& part = *Node(node).formula;
    if (!part.error.empty())
        throw RUNTIME_EXCEPTION("The formula of '%s' is wrong: %s.", Name(node).c_str(),
                                part.error.Copy().c_str());
    const Formula& formula = writing ? *part.writing : *part.reading;
    try {
        if (converted || part.node == kNoNode) {
            Variables variables(*this, node, converted);
            return EvaluateFormula(formula, variables);
        }
        const Number raw =
            Node(node).kind == ValueKind::Float && Node(part.node).type == NodeType::Enumeration
                ? Number::Of(ReadFloat(part.node))
                : ReadNumber(part.node);
        Variables variables(*this, node, &raw);
        return EvaluateFormula(formula, variables);
    } catch (const FormulaError& error) {
        throw GENICAM_NAMESPACE::ExceptionReporter<NoValueNow>(__FILE__, __LINE__, "RuntimeException")
            .Report("The formula of '%s' has no value now: %s in \"%s\".", Name(node).c_str(), error.what(),
                    formula.text.Copy().c_str());
    }
}

Number Engine::VariableValue(const VariableReference& variable) {
    using Property = VariableReference::Property;
    switch (variable.property) {
    case Property::Min:
        return Min(variable.node);
    case Property::Max:
        return Max(variable.node);
    case Property::Inc:
        if (Node(variable.node).kind == ValueKind::Float)
            return Number::Of(FloatIncrement(variable.node).value_or(0.0));
        return Number::Of(Increment(variable.node));
    case Property::AccessMode:
        return Number::Of(int64_t{Mode(variable.node)});
    case Property::Visibility:
        return Number::Of(int64_t{Node(variable.node).visibility});
    case Property::CachingMode:
        return Number::Of(int64_t{Node(variable.node).caching});
    case Property::Constant:
        return Number::Of(variable.constant);
    case Property::Value:
        break;
    }
    return ReadNumber(variable.node);
}

void Engine::RequireBuilt(NodeIndex node) const {
    if (!Node(node).error.empty())
        NoNumber(node);
}

std::string Engine::ReadText(NodeIndex node) {
    RequireBuilt(node);
    const NodeDescription& description = Node(node);
    if (description.type == NodeType::String) {
        if (description.source->form == SourcePart::Form::Own)
            return m_texts[description.source->textSlot];
        const Step step(*this, node);
        return ReadText(description.source->node);
    }
    if (description.type != NodeType::StringReg)
        throw RUNTIME_EXCEPTION("Node '%s' has no text value.", Name(node).c_str());
    std::string text = ReadBytes(node);
    text.resize(std::min(text.size(), text.find('\0')));
    return text;
}

std::string Engine::ReadBytes(NodeIndex node) {
    RequireBuilt(node);
    const Step step(*this, node);
    return ReadRegisterBytes(node);
}

bool Engine::IsKept(NodeIndex node) {
    return State(node).valueKept;
}

int64_t Engine::MaxTextLength(NodeIndex node) {
    RequireBuilt(node);
    const NodeDescription& description = Node(node);
    if (description.reg)
        return Locate(node).length;
    if (description.source && description.source->node != kNoNode) {
        const Level level(*this, node);
        return MaxTextLength(description.source->node);
    }
    return INT64_MAX;
}

NodeIndex Engine::EntryOf(NodeIndex enumeration, int64_t value) {
    NodeIndex first = kNoNode;
    for (const NodeIndex entry : Node(enumeration).entries) {
        if (Node(entry).entry->value != value)
            continue;
        if (first == kNoNode)
            first = entry;
        else if (!IsEntryAvailable(first) && IsEntryAvailable(entry))
            return entry;
    }
    return first;
}

NodeIndex Engine::EntryNamed(NodeIndex enumeration, std::string_view symbolic) const {
    for (const NodeIndex entry : Node(enumeration).entries)
        if (Node(entry).entry->symbolic == symbolic)
            return entry;
    return kNoNode;
}

bool Engine::IsEntryAvailable(NodeIndex entry) {
    return IsAvailable(Mode(entry));
}

} // namespace GENAPI_NAMESPACE::inside
