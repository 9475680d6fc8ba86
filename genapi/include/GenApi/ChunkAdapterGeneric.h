#pragma once

#include <GenApi/ChunkAdapter.h>

namespace GENAPI_NAMESPACE {

#pragma pack(push, 1)
/// Where one chunk lies in a buffer.
typedef struct {
    uint64_t ChunkID;
    ptrdiff_t ChunkOffset;
    size_t ChunkLength;
} SingleChunkData_t;
#pragma pack(pop)

/// Takes the layout as a list. Not implemented: CheckBufferLayout and AttachBuffer throw RuntimeException.
class GENAPI_API CChunkAdapterGeneric : public CChunkAdapter {
public:
    explicit CChunkAdapterGeneric(INodeMap* pNodeMap = nullptr, int64_t MaxChunkCacheSize = -1);
    ~CChunkAdapterGeneric() override;

    bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) override;
    void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                      AttachStatistics_t* pAttachStatistics = nullptr) override;
    void AttachBuffer(uint8_t* pBuffer, SingleChunkData_t* ChunkData, int64_t NumChunks,
                      AttachStatistics_t* pAttachStatistics = nullptr);
};

} // namespace GENAPI_NAMESPACE
