#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include <GenApi/ChunkAdapterGeneric.h>
#include <GenApi/NodeMapRef.h>
#include <ZqApi/Types.h>

#include "ZqApi_TL/ZqStreamBufferInfo.h"

namespace ZqApi {

class CZqStreamBuffer;
class IZqDeviceInside;

/// The chunk data of one stream buffer: a node map of its own, made from the camera's chunk features, and the
/// adapter that binds it to the buffer's bytes.
///
/// A member of its buffer. Attaching and detaching belong to whoever holds the buffer, one thread at a time.
class StreamBufferChunks {
public:
    explicit StreamBufferChunks(const CZqStreamBuffer& buffer) : m_Buffer(buffer) {}
    StreamBufferChunks(const StreamBufferChunks&) = delete;
    StreamBufferChunks& operator=(const StreamBufferChunks&) = delete;

    /// Lets the next Prepare look anew: a new acquisition begins.
    void Renew();
    /// Makes node map and adapter unless they exist; neither when the camera describes no chunks. What could
    /// not be made is not tried again before Renew.
    void Prepare(CZqGenTLLib* pGenTL, IZqDeviceInside& device);
    bool HasAdapter() const { return m_pAdapter != nullptr; }
    /// Null when there is none.
    INodeMap* GetNodeMap() const { return m_NodeMap._Ptr; }

    bool IsAttached() const { return m_bAttached; }
    /// Binds the node map to what the buffer holds now. Throws what the producer or the adapter refuses, with
    /// nothing attached then.
    void Attach();
    void Detach();
    /// The memory is about to hold another frame: the next hand-out attaches anew.
    void Forget() { m_bAttached = false; }
    /// Detaches and deletes the adapter; the node map stays, its chunk features not available.
    void DeleteAdapter();

private:
    void AttachBytes();
    void AttachAsListed(GenApi::CChunkAdapterGeneric& adapter, uint8_t* base, size_t size);
    size_t FilledSize(const CZqStreamBufferInfo& info) const;
    size_t QueryChunkList(SINGLE_CHUNK_DATA* list, size_t count);

    const CZqStreamBuffer& m_Buffer;
    // A start prepares all buffers while a reader may prepare the one that it has just taken.
    std::mutex m_Preparing;
    CZqGenTLLib* m_pCZqGenTL = nullptr;
    GenApi::CNodeMapRef m_NodeMap;
    std::unique_ptr<GenApi::CChunkAdapter> m_pAdapter;
    // The adapter where the producer has to tell the layout, else null.
    GenApi::CChunkAdapterGeneric* m_pGenericAdapter = nullptr;
    std::vector<SINGLE_CHUNK_DATA> m_ListedChunks;
    std::vector<GenApi::SingleChunkData_t> m_Chunks;
    // Set per frame; the adapter may still hold the layout of the frame before.
    std::atomic<bool> m_bAttached{false};
    bool m_bLayoutHeld = false;
    // Preparing failed, or found nothing; not tried again for every frame.
    bool m_bWithoutChunks = false;
};

} // namespace ZqApi
