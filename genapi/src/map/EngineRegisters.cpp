// Registers: where they lie, how bytes become values, what is kept of them.
#include "genapi/src/map/EngineStep.h"
#include "genapi/src/map/RegisterCode.h"

#include <GenApi/IPort.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace GENAPI_NAMESPACE::inside {

int64_t Engine::LengthOf(NodeIndex node) {
    const RegisterPart& reg = *Node(node).reg;
    if (reg.lengthNode == kNoNode)
        return reg.length;
    const int64_t length = ReadInteger(reg.lengthNode);
    const bool isNumber = Node(node).kind == ValueKind::Integer || Node(node).kind == ValueKind::Float;
    if (length < 0 || length > kMaxRegisterLength || (isNumber && (length == 0 || length > 8)))
        throw ACCESS_EXCEPTION("Node '%s' has an impossible length of %lld bytes, from '%s'.",
                               Name(node).c_str(), static_cast<long long>(length),
                               Name(reg.lengthNode).c_str());
    return length;
}

Place Engine::Locate(NodeIndex node) {
    const CacheUse useCache(*this, false);
    const RegisterPart& reg = *Node(node).reg;
    Place place;
    place.length = LengthOf(node);
    auto address = static_cast<uint64_t>(reg.address);
    for (const AddressTerm& term : reg.terms) {
        auto summand = static_cast<uint64_t>(ReadInteger(term.node));
        if (term.factor == AddressTerm::Factor::Constant)
            summand *= static_cast<uint64_t>(term.offset);
        else if (term.factor == AddressTerm::Factor::Node)
            summand *= static_cast<uint64_t>(ReadInteger(term.offsetNode));
        else if (term.factor == AddressTerm::Factor::Length)
            summand *= static_cast<uint64_t>(place.length);
        address += summand;
    }
    place.address = static_cast<int64_t>(address);
    return place;
}

void Engine::PortRead(NodeIndex port, void* buffer, Place place) {
    PortState& state = Port(port);
    if (HoldsData(port)) {
        ReadData(port, buffer, place);
        return;
    }
    if (!state.implementation)
        throw ACCESS_EXCEPTION("Port '%s' is not connected.", Name(port).c_str());
    state.implementation->Read(buffer, place.address, place.length);
    if (Node(port).port->swap)
        SwapWords(static_cast<uint8_t*>(buffer), place.length);
}

void Engine::PortWrite(NodeIndex port, const void* buffer, Place place) {
    PortState& state = Port(port);
    if (HoldsData(port))
        throw ACCESS_EXCEPTION("The data of port '%s' can't be written.", Name(port).c_str());
    if (!state.implementation)
        throw ACCESS_EXCEPTION("Port '%s' is not connected.", Name(port).c_str());
    if (!Node(port).port->swap) {
        state.implementation->Write(buffer, place.address, place.length);
        return;
    }
    const auto* bytes = static_cast<const uint8_t*>(buffer);
    std::vector<uint8_t> swapped(bytes, bytes + place.length);
    SwapWords(swapped.data(), place.length);
    state.implementation->Write(swapped.data(), place.address, place.length);
}

void Engine::ReadRegister(NodeIndex node, Place place, uint8_t* bytes) {
    PortRead(Node(node).reg->port, bytes, place);
}

// Where several nodes are views of one word, the first one reads it for all.
void Engine::ReadWord(NodeIndex node, Place place, uint8_t* bytes) {
    const RegisterPart& reg = *Node(node).reg;
    const uint8_t* const known =
        reg.sharesWord && !m_ignoreCache ? m_words.Find(reg.slot, reg.port, place) : nullptr;
    if (known) {
        std::copy(known, known + place.length, bytes);
        return;
    }
    ReadRegister(node, place, bytes);
    if (reg.sharesWord)
        m_words.Keep(reg.slot, reg.port, place, bytes);
}

void Engine::DropWord(NodeIndex node) {
    const RegisterPart* const reg = Node(node).reg.Find();
    if (reg && reg->sharesWord)
        m_words.Drop(reg->slot);
}

// `place` is filled when the register has to be read.
bool Engine::IsKeptHere(NodeIndex node, Place* place) {
    const NodeState& state = State(node);
    if (state.valueKept && !m_ignoreCache && !Node(node).addressVolatile)
        return true;
    *place = Locate(node);
    const Place& kept = m_places[Node(node).reg->slot];
    return state.valueKept && !m_ignoreCache && kept.address == place->address &&
           kept.length == place->length;
}

void Engine::KeepRegister(NodeIndex node, Place place) {
    m_places[Node(node).reg->slot] = place;
    m_states[node].valueKept = Node(node).cacheable;
}

int64_t Engine::ReadIntegerRegister(NodeIndex node) {
    NodeState& state = m_states[node];
    Place place;
    if (IsKeptHere(node, &place))
        return state.integer;
    uint8_t bytes[8];
    ReadWord(node, place, bytes);
    const int64_t value = DecodeInteger(*Node(node).reg, bytes, place.length);
    // A read past the cache may find that others hold an old value.
    const bool others = state.valueKept && state.integer != value;
    state.integer = value;
    KeepRegister(node, place);
    if (others) {
        MarkChanged(node);
        Spread(node);
    }
    return value;
}

double Engine::ReadFloatRegister(NodeIndex node) {
    NodeState& state = m_states[node];
    Place place;
    if (IsKeptHere(node, &place))
        return state.real;
    uint8_t bytes[8];
    ReadWord(node, place, bytes);
    const double value = DecodeFloat(*Node(node).reg, bytes, place.length);
    const bool others = state.valueKept && !(state.real == value);
    state.real = value;
    KeepRegister(node, place);
    if (others) {
        MarkChanged(node);
        Spread(node);
    }
    return value;
}

std::string Engine::ReadRegisterBytes(NodeIndex node) {
    const bool mayKeep = Node(node).kind == ValueKind::Text || Node(node).kind == ValueKind::Bytes;
    Place place;
    if (mayKeep && IsKeptHere(node, &place))
        return m_bytes[node];
    place = Locate(node);
    std::string bytes(static_cast<size_t>(place.length), '\0');
    if (place.length > 0)
        ReadRegister(node, place, reinterpret_cast<uint8_t*>(&bytes[0]));
    if (!mayKeep)
        return bytes;
    const bool others = m_states[node].valueKept && m_bytes[node] != bytes;
    m_bytes[node] = bytes;
    KeepRegister(node, place);
    if (others) {
        MarkChanged(node);
        Spread(node);
    }
    return bytes;
}

// The bytes around a field must be the device's own, fresh ones. A register that can't be read is taken to
// hold what was written last.
uint64_t Engine::CurrentBits(NodeIndex node, Place place) {
    const RegisterPart& reg = *Node(node).reg;
    if (!IsReadable(reg.mode)) {
        const auto written = m_written.find({reg.port, place.address, place.length});
        return written == m_written.end() ? 0 : written->second;
    }
    uint8_t bytes[8];
    ReadRegister(node, place, bytes);
    return LoadBits(bytes, place.length, reg.littleEndian);
}

void Engine::WriteIntegerRegister(NodeIndex node, int64_t value) {
    const RegisterPart& reg = *Node(node).reg;
    const Place place = Locate(node);
    const Field field = FieldOf(reg, place.length);
    if (!Fits(field, reg.isSigned, value))
        throw OUT_OF_RANGE_EXCEPTION("Value %lld does not fit into the %d bits of '%s'.",
                                     static_cast<long long>(value), field.width, Name(node).c_str());
    const bool whole = field.width == 8 * place.length;
    const uint64_t bits = InsertField(whole ? 0 : CurrentBits(node, place), field, value);
    uint8_t bytes[8];
    StoreBits(bytes, place.length, reg.littleEndian, bits);
    const bool keep = WriteRegister(node, place, bytes);
    if (!IsReadable(reg.mode) && m_written.size() < 10000)
        m_written[{reg.port, place.address, place.length}] = bits;
    if (keep) {
        m_states[node].integer = DecodeInteger(reg, bytes, place.length);
        KeepRegister(node, place);
    }
}

void Engine::WriteFloatRegister(NodeIndex node, double value) {
    const Place place = Locate(node);
    uint8_t bytes[8];
    EncodeFloat(*Node(node).reg, value, bytes, place.length);
    if (WriteRegister(node, place, bytes)) {
        m_states[node].real = DecodeFloat(*Node(node).reg, bytes, place.length);
        KeepRegister(node, place);
    }
}

void Engine::WriteBytes(NodeIndex node, const std::string& value) {
    const Place place = Locate(node);
    if (static_cast<int64_t>(value.size()) != place.length)
        throw INVALID_ARGUMENT_EXCEPTION("%zu bytes can't be written to '%s', which has %lld.", value.size(),
                                         Name(node).c_str(), static_cast<long long>(place.length));
    const bool keep = WriteRegister(node, place, reinterpret_cast<const uint8_t*>(value.data()));
    if (keep && (Node(node).kind == ValueKind::Text || Node(node).kind == ValueKind::Bytes)) {
        m_bytes[node] = value;
        KeepRegister(node, place);
    }
}

// True when the written value may be kept. After a failed write nobody knows what the register holds.
bool Engine::WriteRegister(NodeIndex node, Place place, const uint8_t* bytes) {
    const RegisterPart& reg = *Node(node).reg;
    m_states[node].valueKept = false;
    DropWord(node);
    try {
        PortWrite(reg.port, bytes, place);
    } catch (...) {
        InvalidateOverlaps(reg.port, node, place);
        throw;
    }
    InvalidateOverlaps(reg.port, node, place);
    return reg.caching == WriteThrough && IsReadable(reg.mode);
}

void Engine::PortWritten(NodeIndex port, Place place) {
    InvalidateOverlaps(port, kNoNode, place);
}

// Without a writer every register there is stale.
void Engine::InvalidateOverlaps(NodeIndex port, NodeIndex writer, Place place) {
    m_words.DropAt(port, place);
    std::vector<NodeIndex> touched;
    if (writer != kNoNode) {
        touched.push_back(writer);
        MarkChanged(writer);
    }
    for (const NodeIndex other : m_description->registers) {
        const RegisterPart& reg = *Node(other).reg;
        if (other == writer || reg.port != port)
            continue;
        const bool fixed = reg.terms.empty() && reg.lengthNode == kNoNode;
        if (!fixed && !m_states[other].valueKept)
            continue;
        const Place where = fixed ? Place{reg.address, reg.length} : m_places[reg.slot];
        if (Overlap(where, place)) {
            Drop(other, Stale::Values);
            touched.push_back(other);
        }
    }
    Spread(touched);
}

} // namespace GENAPI_NAMESPACE::inside
