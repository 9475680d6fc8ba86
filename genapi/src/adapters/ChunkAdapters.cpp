#include <GenApi/ChunkAdapter.h>
#include <GenApi/ChunkAdapterGEV.h>
#include <GenApi/ChunkAdapterGeneric.h>
#include <GenApi/ChunkAdapterU3V.h>

namespace GENAPI_NAMESPACE {

CChunkAdapter::CChunkAdapter(INodeMap* pNodeMap, int64_t MaxChunkCacheSize)
    : m_pNodeMap(pNodeMap), m_maxChunkCacheSize(MaxChunkCacheSize) {}
CChunkAdapter::~CChunkAdapter() = default;
void CChunkAdapter::AttachNodeMap(INodeMap* pNodeMap) {
    m_pNodeMap = pNodeMap;
}
void CChunkAdapter::DetachNodeMap() {
    m_pNodeMap = nullptr;
}
// Nothing can be attached yet, so nothing is to be detached.
void CChunkAdapter::DetachBuffer() {}
void CChunkAdapter::UpdateBuffer(uint8_t*) {
    throw RUNTIME_EXCEPTION("CChunkAdapter::UpdateBuffer is not implemented");
}
void CChunkAdapter::ClearCaches() {
    throw RUNTIME_EXCEPTION("CChunkAdapter::ClearCaches is not implemented");
}

#define GENAPI_DEFINE_MISSING_CHUNK_ADAPTER(Name)                                                            \
    Name::Name(INodeMap* pNodeMap, int64_t MaxChunkCacheSize)                                                \
        : CChunkAdapter(pNodeMap, MaxChunkCacheSize) {}                                                      \
    Name::~Name() = default;                                                                                 \
    bool Name::CheckBufferLayout(uint8_t*, int64_t) {                                                        \
        throw RUNTIME_EXCEPTION(#Name "::CheckBufferLayout is not implemented");                             \
    }                                                                                                        \
    void Name::AttachBuffer(uint8_t*, int64_t, AttachStatistics_t*) {                                        \
        throw RUNTIME_EXCEPTION(#Name "::AttachBuffer is not implemented");                                  \
    }

GENAPI_DEFINE_MISSING_CHUNK_ADAPTER(CChunkAdapterGEV)
GENAPI_DEFINE_MISSING_CHUNK_ADAPTER(CChunkAdapterU3V)
GENAPI_DEFINE_MISSING_CHUNK_ADAPTER(CChunkAdapterGeneric)

void CChunkAdapterGeneric::AttachBuffer(uint8_t*, SingleChunkData_t*, int64_t, AttachStatistics_t*) {
    throw RUNTIME_EXCEPTION("CChunkAdapterGeneric::AttachBuffer with a chunk list is not implemented");
}

} // namespace GENAPI_NAMESPACE
