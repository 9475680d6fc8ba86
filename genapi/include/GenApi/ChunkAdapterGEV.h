#pragma once

#include <GenApi/ChunkAdapter.h>

namespace GENAPI_NAMESPACE {

/// Reads the chunk layout of GigE Vision: each chunk is followed by its ID and length, most significant byte
/// first.
class GENAPI_API CChunkAdapterGEV : public CChunkAdapter {
public:
    explicit CChunkAdapterGEV(INodeMap* pNodeMap = nullptr, int64_t MaxChunkCacheSize = -1);
    ~CChunkAdapterGEV() override;

    bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) override;
    void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                      AttachStatistics_t* pAttachStatistics = nullptr) override;
};

} // namespace GENAPI_NAMESPACE
