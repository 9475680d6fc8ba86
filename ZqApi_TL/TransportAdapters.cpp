#include "ZqApi_TL/TransportAdapters.h"

#include <GenApi/ChunkAdapterGEV.h>
#include <GenApi/ChunkAdapterGeneric.h>
#include <GenApi/ChunkAdapterU3V.h>
#include <GenApi/EventAdapterGEV.h>
#include <GenApi/EventAdapterGeneric.h>
#include <GenApi/EventAdapterU3V.h>

namespace ZqApi {
namespace {

// The largest chunk that an adapter keeps a copy of after its buffer is gone.
constexpr int64_t MAX_CHUNK_CACHE_SIZE = 2048;

template <class Base, class U3V, class GEV, class Generic, class... Args>
std::unique_ptr<Base> MakeAdapter(const gcstring& tlType, Args... args) {
    if (tlType == TLTypeU3VName)
        return std::make_unique<U3V>(args...);
    if (tlType == TLTypeGEVName)
        return std::make_unique<GEV>(args...);
    return std::make_unique<Generic>(args...);
}

} // namespace

std::unique_ptr<GenApi::CEventAdapter> MakeEventAdapter(const gcstring& tlType, INodeMap* pNodeMap) {
    return MakeAdapter<GenApi::CEventAdapter, GenApi::CEventAdapterU3V, GenApi::CEventAdapterGEV,
                       GenApi::CEventAdapterGeneric>(tlType, pNodeMap);
}

std::unique_ptr<GenApi::CChunkAdapter> MakeChunkAdapter(const gcstring& tlType, INodeMap* pNodeMap) {
    return MakeAdapter<GenApi::CChunkAdapter, GenApi::CChunkAdapterU3V, GenApi::CChunkAdapterGEV,
                       GenApi::CChunkAdapterGeneric>(tlType, pNodeMap, MAX_CHUNK_CACHE_SIZE);
}

} // namespace ZqApi
