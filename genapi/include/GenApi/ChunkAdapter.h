#pragma once

#include <GenApi/INodeMap.h>

#include <memory>

namespace GENAPI_NAMESPACE {

/// What became of the chunks of a buffer.
typedef struct {
    int NumChunkPorts;     ///< chunk ports of the node map
    int NumChunks;         ///< chunks in the buffer
    int NumAttachedChunks; ///< chunks that a port has been attached to
} AttachStatistics_t;

/// Gives the chunks of an image buffer to the chunk ports of a node map. The buffer is not copied and must
/// stay until it is detached. Features behind chunks can only be read; what is kept of them becomes stale,
/// and their callbacks run, each time that a buffer is attached, updated or detached. A buffer that is laid
/// out like the one before is attached without memory being allocated. One adapter at a time per map, one
/// thread at a time per adapter; the map may be used by other threads. The map must outlive the adapter, or
/// be detached from it before.
class GENAPI_API CChunkAdapter {
public:
    explicit CChunkAdapter(INodeMap* pNodeMap = nullptr, int64_t MaxChunkCacheSize = -1);
    virtual ~CChunkAdapter();
    CChunkAdapter(const CChunkAdapter&) = delete;
    CChunkAdapter& operator=(const CChunkAdapter&) = delete;

    /// InvalidArgumentException for null or for a map of another implementation.
    virtual void AttachNodeMap(INodeMap* pNodeMap);
    /// Also detaches the buffer and drops the copies of chunks.
    virtual void DetachNodeMap();
    /// True when the buffer is a row of chunks as the transport has it.
    virtual bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) = 0;
    /// `BufferLength` is what the device has filled, not what has been allocated. InvalidArgumentException
    /// for null, RuntimeException with the reason for a malformed buffer; no chunk is attached then. Chunks
    /// without a port are ignored. Does nothing but check while no map is attached.
    virtual void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                              AttachStatistics_t* pAttachStatistics = nullptr) = 0;
    /// Features behind chunks are not available any more, but for those of ports with CacheChunkData: they
    /// keep the chunk of the last buffer, if it is not longer than MaxChunkCacheSize (negative: any length).
    virtual void DetachBuffer();
    /// Attaches a buffer that is laid out like the last one without looking at it. LogicalErrorException when
    /// there has been none.
    virtual void UpdateBuffer(uint8_t* pBuffer);
    /// Drops the copies of chunks.
    void ClearCaches();

protected:
    /// A layout is begun, chunks are added to it, then it is attached or refused.
    void BeginLayout(const uint8_t* pBuffer, int64_t size, AttachStatistics_t* pStatistics);
    void AddChunk(uint64_t id, size_t offset, size_t length);
    void AttachLayout(const uint8_t* pBuffer, AttachStatistics_t* pStatistics);
    void RefuseLayout();
    void AttachTagged(const uint8_t* pBuffer, int64_t size, bool bigEndian, AttachStatistics_t* pStatistics);

    INodeMap* m_pNodeMap;
    int64_t m_maxChunkCacheSize;

private:
    struct Layout;
    std::unique_ptr<Layout> m_layout;
};

} // namespace GENAPI_NAMESPACE
