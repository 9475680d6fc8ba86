// Chunks of image buffers as register spaces, and the data of events, which are read in the same way.
#include "genapi/src/map/Engine.h"

#include "genapi/src/document/Lexical.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <numeric>
#include <tuple>

namespace GENAPI_NAMESPACE::inside {

namespace {

/// Two registers that every chunk has, in the order of bytes of this machine: where it begins, and how long
/// it is.
constexpr int64_t kBaseRegister = std::numeric_limits<int64_t>::max();
constexpr int64_t kLengthRegister = kBaseRegister - 15;

} // namespace

void Engine::FindChunkPorts() {
    for (const NodeIndex port : m_description->ports) {
        if (!Node(port).port->isChunk || !Node(port).error.empty())
            continue;
        m_chunks.ports.push_back(port);
        if (Node(port).port->cacheChunkData)
            m_chunks.copying.push_back(port);
        for (const Element& element : m_description->document.nodes[port].elements)
            if (element.name == ElementName::pChunkID && m_description->Find(element.text) != kNoNode)
                m_chunks.idNodes.push_back(m_description->Find(element.text));
    }
    if (m_chunks.ports.empty())
        return;
    for (const NodeIndex id : m_chunks.idNodes)
        m_chunks.idsVolatile |= !Node(id).cacheable || Node(id).addressVolatile;
    Spread(m_chunks.ports);
    for (NodeState& state : m_states)
        state.behindChunk = state.visit == m_visit;
}

void Engine::Renew(NodeState& state) const {
    state.epoch = m_chunks.epoch;
    state.modeKept = false;
    state.valueKept = state.ownsValue;
}

void Engine::ChunksChanged() {
    if (++m_chunks.epoch == 0)
        for (NodeState& state : m_states)
            if (state.behindChunk)
                Renew(state);
    for (const NodeIndex node : m_chunks.watched)
        MarkChanged(node);
}

void Engine::ChunkIdsMayHaveChanged() {
    m_chunks.idsChanged = true;
    ChunksChanged();
}

void Engine::SetHasCallbacks(NodeIndex node, bool has) {
    m_states[node].hasCallbacks = has;
    if (!m_states[node].behindChunk)
        return;
    std::vector<NodeIndex>& watched = m_chunks.watched;
    watched.erase(std::remove(watched.begin(), watched.end(), node), watched.end());
    if (has)
        watched.push_back(node);
}

std::optional<uint64_t> Engine::ChunkIdOf(NodeIndex port) {
    for (const Element& element : m_description->document.nodes[port].elements) {
        if (element.name != ElementName::pChunkID)
            continue;
        const NodeIndex id = m_description->Find(element.text);
        try {
            if (id != kNoNode && IsReadableNode(id))
                return ParseHexDigits(ReadText(id));
        } catch (const GENICAM_NAMESPACE::GenericException&) {
            // An ID that can't be read belongs to no chunk.
        }
        return std::nullopt;
    }
    return ParseHexDigits(Node(port).port->chunkId);
}

// Of chunks with the same ID, the last one in memory counts. Reading an ID may lead back to a chunk; it is
// then read as if no chunk had changed.
void Engine::MatchChunks() {
    struct Matching {
        explicit Matching(ChunkBuffer& chunks) : buffer(chunks) { buffer.matching = true; }
        ~Matching() { buffer.matching = false; }
        ChunkBuffer& buffer;
    } const matching(m_chunks);
    m_chunks.idsChanged = false;
    const std::vector<ChunkPlace>& layout = m_chunks.layout;
    for (const NodeIndex port : m_chunks.ports) {
        Port(port).chunk = kNoChunk;
        const auto id = ChunkIdOf(port);
        if (!id)
            continue;
        const auto behind =
            std::upper_bound(m_chunks.sorted.begin(), m_chunks.sorted.end(), *id,
                             [&](uint64_t wanted, uint32_t place) { return wanted < layout[place].id; });
        if (behind != m_chunks.sorted.begin() && layout[*std::prev(behind)].id == *id)
            Port(port).chunk = *std::prev(behind);
    }
}

// Memory is taken first: a layout that was known by half would be taken for a known one.
void Engine::TakeLayout(const std::vector<ChunkPlace>& chunks) {
    DropChunks();
    std::vector<uint32_t> found;
    found.reserve(m_chunks.ports.size());
    m_chunks.sorted.reserve(chunks.size());
    m_chunks.layout.reserve(chunks.size());
    m_chunks.layout = chunks;
    m_chunks.sorted.resize(chunks.size());
    std::iota(m_chunks.sorted.begin(), m_chunks.sorted.end(), 0U);
    std::sort(m_chunks.sorted.begin(), m_chunks.sorted.end(), [&](uint32_t left, uint32_t right) {
        return std::tie(chunks[left].id, chunks[left].offset) <
               std::tie(chunks[right].id, chunks[right].offset);
    });
    MatchChunks();
    for (const NodeIndex port : m_chunks.ports)
        if (Port(port).chunk != kNoChunk)
            found.push_back(Port(port).chunk);
    std::sort(found.begin(), found.end());
    m_chunks.numAttached = static_cast<int>(std::unique(found.begin(), found.end()) - found.begin());
}

void Engine::CopyChunks(int64_t maxCopy) {
    for (const NodeIndex port : m_chunks.copying) {
        PortState& state = Port(port);
        const ChunkPlace* chunk = ChunkOf(port);
        state.hasBytes = chunk && (maxCopy < 0 || chunk->length <= static_cast<uint64_t>(maxCopy));
        if (state.hasBytes)
            state.bytes.assign(m_chunks.base + chunk->offset, m_chunks.base + chunk->offset + chunk->length);
    }
}

// The usual buffer is laid out like the one before, and costs no more than the comparison.
void Engine::AttachChunks(const uint8_t* base, const std::vector<ChunkPlace>& chunks, int64_t maxCopy) {
    if (chunks != m_chunks.layout || !m_chunks.idNodes.empty())
        TakeLayout(chunks);
    m_chunks.base = base;
    m_chunks.attached = true;
    CopyChunks(maxCopy);
    ChunksChanged();
}

bool Engine::MoveChunks(const uint8_t* base, int64_t maxCopy) {
    if (m_chunks.layout.empty())
        return false;
    m_chunks.base = base;
    m_chunks.attached = true;
    m_chunks.idsChanged = !m_chunks.idNodes.empty();
    CopyChunks(maxCopy);
    ChunksChanged();
    return true;
}

void Engine::DetachChunks() {
    if (!m_chunks.attached)
        return;
    m_chunks.attached = false;
    m_chunks.base = nullptr;
    ChunksChanged();
}

void Engine::DropChunks() {
    DetachChunks();
    m_chunks.layout.clear();
    m_chunks.sorted.clear();
    m_chunks.numAttached = 0;
    for (const NodeIndex port : m_chunks.ports)
        Port(port).chunk = kNoChunk;
    DropChunkCopies();
}

void Engine::DropChunkCopies() {
    for (const NodeIndex port : m_chunks.copying) {
        Port(port).hasBytes = false;
        std::vector<uint8_t>().swap(Port(port).bytes);
    }
    if (!m_chunks.copying.empty())
        ChunksChanged();
}

const ChunkPlace* Engine::ChunkOf(NodeIndex port) {
    if (!m_chunks.attached)
        return nullptr;
    if ((m_chunks.idsChanged || m_chunks.idsVolatile) && !m_chunks.matching)
        MatchChunks();
    const uint32_t chunk = Port(port).chunk;
    return chunk == kNoChunk ? nullptr : &m_chunks.layout[chunk];
}

bool Engine::HoldsData(NodeIndex port) {
    return ChunkOf(port) || Port(port).hasBytes;
}

// Null when the place does not lie in the data. Negative addresses reach back into what lies before the
// chunk: a camera describes the length of its picture as the last word of the tag there.
const uint8_t* Engine::DataAt(NodeIndex port, Place place) {
    const ChunkPlace* const chunk = ChunkOf(port);
    const PortState& state = Port(port);
    const uint8_t* const bytes = chunk ? m_chunks.base + chunk->offset : state.bytes.data();
    const uint64_t size = chunk ? chunk->length : state.bytes.size();
    const auto length = static_cast<uint64_t>(place.length);
    if (place.length < 0)
        return nullptr;
    if (place.address < 0) {
        const uint64_t back = ~static_cast<uint64_t>(place.address) + 1;
        if (!chunk || back > chunk->offset || length > back + size)
            return nullptr;
        return bytes - back;
    }
    const auto address = static_cast<uint64_t>(place.address);
    return address <= size && length <= size - address ? bytes + address : nullptr;
}

std::optional<int64_t> Engine::Whereabouts(NodeIndex port, Place place) {
    if (!Node(port).port->isChunk || place.length != sizeof(int64_t) ||
        (place.address != kBaseRegister && place.address != kLengthRegister))
        return std::nullopt;
    const ChunkPlace* const chunk = ChunkOf(port);
    const PortState& state = Port(port);
    if (place.address == kLengthRegister)
        return static_cast<int64_t>(chunk ? chunk->length : state.bytes.size());
    return static_cast<int64_t>(
        reinterpret_cast<intptr_t>(chunk ? m_chunks.base + chunk->offset : state.bytes.data()));
}

void Engine::ReadData(NodeIndex port, void* buffer, Place place) {
    if (const auto value = Whereabouts(port, place)) {
        std::memcpy(buffer, &*value, sizeof *value);
        return;
    }
    const uint8_t* const data = DataAt(port, place);
    if (!data) {
        const ChunkPlace* const chunk = ChunkOf(port);
        throw ACCESS_EXCEPTION("The data of port '%s' ends at %zu, before %lld bytes at %lld.",
                               Name(port).c_str(), chunk ? chunk->length : Port(port).bytes.size(),
                               static_cast<long long>(place.length), static_cast<long long>(place.address));
    }
    if (place.length > 0)
        std::memcpy(buffer, data, static_cast<size_t>(place.length));
}

} // namespace GENAPI_NAMESPACE::inside
