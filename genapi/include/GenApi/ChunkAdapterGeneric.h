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

/// Takes the layout as a list.
class GENAPI_API CChunkAdapterGeneric : public CChunkAdapter {
public:
    explicit CChunkAdapterGeneric(INodeMap* pNodeMap = nullptr, int64_t MaxChunkCacheSize = -1);
    ~CChunkAdapterGeneric() override;

    /// False: the bytes don't tell.
    bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) override;
    /// There is no layout in the bytes that this adapter could read: InvalidArgumentException.
    void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                      AttachStatistics_t* pAttachStatistics = nullptr) override;
    /// Every entry must lie inside the buffer, whose length is not known here; RuntimeException for one that
    /// can't. Entries may overlap or be empty.
    void AttachBuffer(uint8_t* pBuffer, SingleChunkData_t* ChunkData, int64_t NumChunks,
                      AttachStatistics_t* pAttachStatistics = nullptr);
};

} // namespace GENAPI_NAMESPACE
