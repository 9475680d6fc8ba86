// Writing: down the chain of nodes to a register or to a value that lives in the map.
#include "genapi/src/map/EngineStep.h"

#include <cmath>
#include <cstdlib>

namespace GENAPI_NAMESPACE::inside {

void Engine::WriteInteger(NodeIndex node, int64_t value, bool verify) {
    const NodeDescription& description = Node(node);
    if (description.kind != ValueKind::Integer || !description.error.empty())
        NoNumber(node);
    const Level level(*this, node);
    if (description.type == NodeType::Enumeration) {
        WriteEnumeration(node, value, verify);
    } else if (description.type == NodeType::Boolean) {
        WriteSource(node, Number::Of(value != 0 ? description.onOff->on : description.onOff->off), verify);
    } else {
        if (verify)
            CheckInteger(node, value);
        if (description.reg)
            WriteIntegerRegister(node, value);
        else if (description.type == NodeType::Integer)
            WriteSource(node, Number::Of(value), verify);
        else
            WriteConverted(node, Number::Of(value), verify);
    }
    ReportErrors(node);
}

void Engine::WriteFloat(NodeIndex node, double value, bool verify) {
    const NodeDescription& description = Node(node);
    if (!description.error.empty())
        NoNumber(node);
    if (!std::isfinite(value))
        throw OUT_OF_RANGE_EXCEPTION("Value %s can't be written to '%s'.", ShortestText(value).c_str(),
                                     Name(node).c_str());
    const Level level(*this, node);
    if (verify)
        CheckFloat(node, value);
    if (description.reg)
        WriteFloatRegister(node, value);
    else if (description.type == NodeType::Float)
        WriteSource(node, Number::Of(value), verify);
    else
        WriteConverted(node, Number::Of(value), verify);
    ReportErrors(node);
}

// A float becomes a whole number by rounding: 0.1 * 30 must give 3.
void Engine::WriteNumber(NodeIndex node, Number value, bool verify) {
    if (Node(node).kind == ValueKind::Float) {
        WriteFloat(node, value.AsDouble(), verify);
        return;
    }
    if (value.isInteger) {
        WriteInteger(node, value.integer, verify);
        return;
    }
    if (!std::isfinite(value.real))
        throw OUT_OF_RANGE_EXCEPTION("Value %s can't be written to '%s'.", ShortestText(value.real).c_str(),
                                     Name(node).c_str());
    const NodeIndex nearest =
        Node(node).type == NodeType::Enumeration ? NearestEntry(node, value.real) : kNoNode;
    WriteInteger(node, nearest == kNoNode ? Round(value.real) : Node(nearest).entry->value, verify);
}

NodeIndex Engine::NearestEntry(NodeIndex enumeration, double value) {
    NodeIndex best = kNoNode;
    for (const NodeIndex entry : Node(enumeration).entries) {
        if (!IsEntryAvailable(entry))
            continue;
        const double distance = std::fabs(Node(entry).entry->numericValue - value);
        if (best == kNoNode || distance < std::fabs(Node(best).entry->numericValue - value))
            best = entry;
    }
    return best;
}

void Engine::WriteSource(NodeIndex node, Number value, bool verify) {
    const SourcePart& source = *Node(node).source;
    if (source.form == SourcePart::Form::Own) {
        StoreOwn(node, value);
        return;
    }
    if (source.form == SourcePart::Form::Table) {
        const TableEntry* entry = CurrentEntry(source);
        if (!entry)
            throw ACCESS_EXCEPTION("Node '%s' has no value for the current '%s'.", Name(node).c_str(),
                                   Name(source.index).c_str());
        if (entry->node != kNoNode) {
            WriteNumber(entry->node, value, verify);
            return;
        }
        m_tableValues[entry->slot] = value;
        m_states[node].valueKept = false;
        Changed(node);
        return;
    }
    for (const NodeIndex target : source.targets)
        WriteNumber(target, value, verify);
}

void Engine::StoreOwn(NodeIndex node, Number value) {
    const NodeDescription& description = Node(node);
    if (description.kind == ValueKind::Float)
        m_states[node].real = value.AsDouble();
    else if (description.type == NodeType::Boolean)
        m_states[node].integer = value.AsInteger() == description.onOff->on;
    else
        m_states[node].integer = value.AsInteger();
    Changed(node);
}

void Engine::WriteConverted(NodeIndex node, Number value, bool verify) {
    const FormulaPart& part = *Node(node).formula;
    if (part.node == kNoNode)
        throw ACCESS_EXCEPTION("Node '%s' is computed and can't be written.", Name(node).c_str());
    const Number raw = Evaluate(node, true, &value);
    WriteNumber(part.node, raw, verify);
}

void Engine::WriteEnumeration(NodeIndex node, int64_t value, bool verify) {
    const NodeIndex entry = EntryOf(node, value);
    if (entry == kNoNode)
        throw INVALID_ARGUMENT_EXCEPTION("Value %lld is no entry of '%s'.", static_cast<long long>(value),
                                         Name(node).c_str());
    if (verify)
        RequireEntry(node, entry);
    WriteSource(node, Number::Of(value), verify);
}

void Engine::RequireEntry(NodeIndex enumeration, NodeIndex entry) {
    if (!IsEntryAvailable(entry))
        throw ACCESS_EXCEPTION("Entry '%s' of '%s' is not available: %s.",
                               Node(entry).entry->symbolic.Copy().c_str(), Name(enumeration).c_str(),
                               WhyNot(entry, false, 0).c_str());
}

// A device tells through these enumerations whether it took what was written.
void Engine::ReportErrors(NodeIndex node) {
    for (const NodeIndex error : Node(node).errors) {
        const CacheUse pastCache(*this, true);
        const int64_t code = ReadInteger(error);
        if (code == 0)
            continue;
        const NodeIndex entry = Node(error).type == NodeType::Enumeration ? EntryOf(error, code) : kNoNode;
        std::string text = std::to_string(code);
        if (entry != kNoNode) {
            text = Node(entry).entry->symbolic.Copy();
            for (const Element& element : m_description->document.nodes[entry].elements)
                if (element.name == ElementName::DisplayName || element.name == ElementName::ToolTip)
                    text += ": " + element.text.Copy();
        }
        throw RUNTIME_EXCEPTION("The device refused the value of '%s': '%s' says %s.", Name(node).c_str(),
                                Name(error).c_str(), text.c_str());
    }
}

void Engine::WriteText(NodeIndex node, const std::string& value, bool verify) {
    RequireBuilt(node);
    const NodeDescription& description = Node(node);
    if (description.type == NodeType::String) {
        if (description.source->form == SourcePart::Form::Own) {
            m_texts[description.source->textSlot] = value;
            Changed(node);
        } else {
            const Level level(*this, node);
            WriteText(description.source->node, value, verify);
        }
        ReportErrors(node);
        return;
    }
    if (description.type != NodeType::StringReg)
        throw RUNTIME_EXCEPTION("Node '%s' has no text value.", Name(node).c_str());
    const int64_t length = Locate(node).length;
    if (static_cast<int64_t>(value.size()) > length)
        throw OUT_OF_RANGE_EXCEPTION("A text of %zu bytes is too long for '%s', which takes %lld.",
                                     value.size(), Name(node).c_str(), static_cast<long long>(length));
    // All bytes are written: the rest of a longer old text must not show.
    std::string padded = value;
    padded.resize(static_cast<size_t>(length), '\0');
    WriteBytes(node, padded);
    ReportErrors(node);
}

void Engine::Execute(NodeIndex command, bool verify) {
    const NodeDescription& description = Node(command);
    const int64_t value =
        description.commandValue == kNoNode ? description.onOff->on : ReadInteger(description.commandValue);
    m_states[command].active = true;
    {
        const Level level(*this, command);
        WriteSource(command, Number::Of(value), verify);
    }
    Changed(command);
    ReportErrors(command);
}

bool Engine::IsDone(NodeIndex command) {
    const NodeDescription& description = Node(command);
    bool done = true;
    if (description.source->form != SourcePart::Form::Own && IsReadableNode(description.source->node)) {
        const int64_t value = description.commandValue == kNoNode ? description.onOff->on
                                                                  : ReadInteger(description.commandValue);
        const CacheUse pastCache(*this, true);
        done = ReadInteger(description.source->node) != value;
    }
    if (done && m_states[command].active) {
        m_states[command].active = false;
        Changed(command);
    }
    return done;
}

} // namespace GENAPI_NAMESPACE::inside
