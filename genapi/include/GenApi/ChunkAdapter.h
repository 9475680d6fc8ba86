#pragma once

#include <GenApi/INodeMap.h>

namespace GENAPI_NAMESPACE {

/// What became of the chunks of a buffer.
typedef struct {
    int NumChunkPorts;     ///< chunk ports of the node map
    int NumChunks;         ///< chunks in the buffer
    int NumAttachedChunks; ///< chunks that a port has been attached to
} AttachStatistics_t;

/// Gives the chunks of an image buffer to the chunk ports of a node map. The buffer is not copied and must
/// stay until it is detached. One thread at a time per adapter. The map must outlive the attachment.
class GENAPI_API CChunkAdapter {
public:
    explicit CChunkAdapter(INodeMap* pNodeMap = nullptr, int64_t MaxChunkCacheSize = -1);
    virtual ~CChunkAdapter();
    CChunkAdapter(const CChunkAdapter&) = delete;
    CChunkAdapter& operator=(const CChunkAdapter&) = delete;

    virtual void AttachNodeMap(INodeMap* pNodeMap);
    virtual void DetachNodeMap();
    /// True when the buffer is laid out as the transport has it.
    virtual bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) = 0;
    virtual void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                              AttachStatistics_t* pAttachStatistics = nullptr) = 0;
    virtual void DetachBuffer();
    /// Not implemented: RuntimeException.
    virtual void UpdateBuffer(uint8_t* pBuffer);
    /// Not implemented: RuntimeException.
    void ClearCaches();

protected:
    INodeMap* m_pNodeMap;
    int64_t m_maxChunkCacheSize;
};

} // namespace GENAPI_NAMESPACE
