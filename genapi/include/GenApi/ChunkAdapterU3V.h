#pragma once

#include <GenApi/ChunkAdapter.h>

namespace GENAPI_NAMESPACE {

/// Reads the chunk layout of USB3 Vision: each chunk is followed by its ID and length, least significant byte
/// first.
class GENAPI_API CChunkAdapterU3V : public CChunkAdapter {
public:
    explicit CChunkAdapterU3V(INodeMap* pNodeMap = nullptr, int64_t MaxChunkCacheSize = -1);
    ~CChunkAdapterU3V() override;

    bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) override;
    void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                      AttachStatistics_t* pAttachStatistics = nullptr) override;
};

} // namespace GENAPI_NAMESPACE
