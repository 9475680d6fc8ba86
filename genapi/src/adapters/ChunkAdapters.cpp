#include "genapi/src/adapters/ChunkTags.h"
#include "genapi/src/map/NodeMapImpl.h"

#include <GenApi/ChunkAdapterGEV.h>
#include <GenApi/ChunkAdapterGeneric.h>
#include <GenApi/ChunkAdapterU3V.h>

namespace GENAPI_NAMESPACE {

namespace {

inside::NodeMapImpl* ImplOf(INodeMap* map) {
    return dynamic_cast<inside::NodeMapImpl*>(map);
}

bool IsTagged(const uint8_t* buffer, int64_t length, bool bigEndian) {
    if (!buffer || length < 0)
        return false;
    inside::ChunkTags tags(buffer, static_cast<size_t>(length), bigEndian);
    inside::ChunkPlace chunk;
    while (tags.Next(chunk)) {
    }
    return tags.Fault().empty();
}

} // namespace

/// Kept from buffer to buffer, so that attaching needs no memory.
struct CChunkAdapter::Layout {
    std::vector<inside::ChunkPlace> chunks;
};

CChunkAdapter::CChunkAdapter(INodeMap* pNodeMap, int64_t MaxChunkCacheSize)
    : m_pNodeMap(nullptr), m_maxChunkCacheSize(MaxChunkCacheSize), m_layout(new Layout) {
    if (pNodeMap)
        CChunkAdapter::AttachNodeMap(pNodeMap);
}

CChunkAdapter::~CChunkAdapter() {
    try {
        CChunkAdapter::DetachNodeMap();
    } catch (...) { // NOLINT: a callback's exception has nowhere to go
    }
}

void CChunkAdapter::AttachNodeMap(INodeMap* pNodeMap) {
    if (!ImplOf(pNodeMap))
        throw INVALID_ARGUMENT_EXCEPTION("A chunk adapter needs a node map of this library.");
    if (pNodeMap != m_pNodeMap)
        CChunkAdapter::DetachNodeMap();
    m_pNodeMap = pNodeMap;
}

void CChunkAdapter::DetachNodeMap() {
    INodeMap* const map = m_pNodeMap;
    m_pNodeMap = nullptr;
    if (map)
        ImplOf(map)->Do([](inside::Engine& engine) { engine.DropChunks(); });
}

void CChunkAdapter::DetachBuffer() {
    if (m_pNodeMap)
        ImplOf(m_pNodeMap)->Do([](inside::Engine& engine) { engine.DetachChunks(); });
}

void CChunkAdapter::UpdateBuffer(uint8_t* pBuffer) {
    if (!pBuffer)
        throw INVALID_ARGUMENT_EXCEPTION("There is no buffer to read chunks from: null pointer.");
    if (!m_pNodeMap)
        return;
    const bool moved = ImplOf(m_pNodeMap)->Do([&](inside::Engine& engine) {
        return engine.MoveChunks(pBuffer, m_maxChunkCacheSize);
    });
    if (!moved)
        throw LOGICAL_ERROR_EXCEPTION("No buffer has been attached whose layout this one could have.");
}

void CChunkAdapter::ClearCaches() {
    if (m_pNodeMap)
        ImplOf(m_pNodeMap)->Do([](inside::Engine& engine) { engine.DropChunkCopies(); });
}

void CChunkAdapter::BeginLayout(const uint8_t* pBuffer, int64_t size, AttachStatistics_t* pStatistics) {
    m_layout->chunks.clear();
    if (pStatistics)
        *pStatistics = {};
    if (pBuffer && size >= 0)
        return;
    RefuseLayout();
    throw INVALID_ARGUMENT_EXCEPTION("There is no buffer to read chunks from.");
}

void CChunkAdapter::AddChunk(uint64_t id, size_t offset, size_t length) {
    m_layout->chunks.push_back({id, offset, length});
}

void CChunkAdapter::RefuseLayout() {
    if (m_pNodeMap)
        ImplOf(m_pNodeMap)->Do([](inside::Engine& engine) { engine.DropChunks(); });
}

void CChunkAdapter::AttachLayout(const uint8_t* pBuffer, AttachStatistics_t* pStatistics) {
    AttachStatistics_t statistics = {0, static_cast<int>(m_layout->chunks.size()), 0};
    if (m_pNodeMap)
        ImplOf(m_pNodeMap)->Do([&](inside::Engine& engine) {
            engine.AttachChunks(pBuffer, m_layout->chunks, m_maxChunkCacheSize);
            statistics.NumChunkPorts = static_cast<int>(engine.Chunks().ports.size());
            statistics.NumAttachedChunks = engine.Chunks().numAttached;
        });
    if (pStatistics)
        *pStatistics = statistics;
}

void CChunkAdapter::AttachTagged(const uint8_t* pBuffer, int64_t size, bool bigEndian,
                                 AttachStatistics_t* pStatistics) {
    BeginLayout(pBuffer, size, pStatistics);
    inside::ChunkTags tags(pBuffer, static_cast<size_t>(size), bigEndian);
    for (inside::ChunkPlace chunk; tags.Next(chunk);)
        AddChunk(chunk.id, chunk.offset, chunk.length);
    if (!tags.Fault().empty()) {
        RefuseLayout();
        throw RUNTIME_EXCEPTION("The buffer holds no row of chunks: %s.", tags.Fault().c_str());
    }
    AttachLayout(pBuffer, pStatistics);
}

CChunkAdapterGEV::CChunkAdapterGEV(INodeMap* pNodeMap, int64_t MaxChunkCacheSize)
    : CChunkAdapter(pNodeMap, MaxChunkCacheSize) {}
CChunkAdapterGEV::~CChunkAdapterGEV() = default;
bool CChunkAdapterGEV::CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) {
    return IsTagged(pBuffer, BufferLength, true);
}
void CChunkAdapterGEV::AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                                    AttachStatistics_t* pAttachStatistics) {
    AttachTagged(pBuffer, BufferLength, true, pAttachStatistics);
}

CChunkAdapterU3V::CChunkAdapterU3V(INodeMap* pNodeMap, int64_t MaxChunkCacheSize)
    : CChunkAdapter(pNodeMap, MaxChunkCacheSize) {}
CChunkAdapterU3V::~CChunkAdapterU3V() = default;
bool CChunkAdapterU3V::CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) {
    return IsTagged(pBuffer, BufferLength, false);
}
void CChunkAdapterU3V::AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                                    AttachStatistics_t* pAttachStatistics) {
    AttachTagged(pBuffer, BufferLength, false, pAttachStatistics);
}

CChunkAdapterGeneric::CChunkAdapterGeneric(INodeMap* pNodeMap, int64_t MaxChunkCacheSize)
    : CChunkAdapter(pNodeMap, MaxChunkCacheSize) {}
CChunkAdapterGeneric::~CChunkAdapterGeneric() = default;
bool CChunkAdapterGeneric::CheckBufferLayout(uint8_t*, int64_t) {
    return false;
}
void CChunkAdapterGeneric::AttachBuffer(uint8_t*, int64_t, AttachStatistics_t*) {
    throw INVALID_ARGUMENT_EXCEPTION("The generic chunk adapter needs a list of the buffer's chunks.");
}

void CChunkAdapterGeneric::AttachBuffer(uint8_t* pBuffer, SingleChunkData_t* ChunkData, int64_t NumChunks,
                                        AttachStatistics_t* pAttachStatistics) {
    BeginLayout(pBuffer, ChunkData || NumChunks == 0 ? NumChunks : -1, pAttachStatistics);
    for (int64_t i = 0; i < NumChunks; ++i) {
        const SingleChunkData_t chunk = ChunkData[i];
        const ptrdiff_t offset = chunk.ChunkOffset;
        const size_t length = chunk.ChunkLength;
        if (i >= static_cast<int64_t>(inside::kMaxChunks) || offset < 0 ||
            length > static_cast<size_t>(PTRDIFF_MAX - offset)) {
            RefuseLayout();
            throw RUNTIME_EXCEPTION("The list of chunks is impossible at entry %lld: %zu bytes at %lld.",
                                    static_cast<long long>(i), length, static_cast<long long>(offset));
        }
        AddChunk(chunk.ChunkID, static_cast<size_t>(offset), length);
    }
    AttachLayout(pBuffer, pAttachStatistics);
}

} // namespace GENAPI_NAMESPACE
