#include "genapi/src/map/Engine.h"

#include <GenApi/IPort.h>

namespace GENAPI_NAMESPACE::inside {

Engine::Engine(std::shared_ptr<const Description> description)
    : m_description(std::move(description)), m_nodes(m_description->nodes.begin()),
      m_states(m_description->nodes.size()), m_words(m_description->registers.size()),
      m_places(m_description->registers.size()),
      m_tableValues(m_description->tableValues.begin(), m_description->tableValues.end()),
      m_texts(m_description->texts), m_ports(m_description->ports.size()),
      m_pollElapsed(m_description->polled.size(), 0) {
    for (NodeIndex i = 0; i < m_states.size(); ++i) {
        NodeState& state = m_states[i];
        state.spreads = Node(i).selectsAllRegisters || !m_description->dependents.Of(i).IsEmpty();
        const SourcePart* source = Node(i).source.Find();
        if (!source || source->form != SourcePart::Form::Own || !Node(i).error.empty())
            continue; // what could not be built has no value, not even 0
        state.ownsValue = true;
        state.valueKept = true;
        if (Node(i).kind == ValueKind::Text)
            m_texts[source->textSlot] = source->initialText.Copy();
        else if (Node(i).kind == ValueKind::Float)
            state.real = source->initial.AsDouble();
        else
            state.integer = source->initial.AsInteger();
    }
    FindChunkPorts();
}

void Engine::Connect(NodeIndex port, IPort* implementation) {
    Port(port).implementation = implementation;
    AccessChanged(port);
}

void Engine::AttachEvent(NodeIndex port, const uint8_t* data, size_t size) {
    PortState& state = Port(port);
    if (size > 0) {
        state.bytes.assign(data, data + size);
        state.hasBytes = true;
    }
    AccessChanged(port);
}

} // namespace GENAPI_NAMESPACE::inside
