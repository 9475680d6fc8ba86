#pragma once

#include <cstddef>
#include <memory>
#include <shared_mutex>
#include <vector>

#include <ZqApi/Image.h>

#include "ZqApi_TL/DeliveredQueue.h"
#include "ZqApi_TL/ZqStreamBuffer.h"

namespace ZqApi {

/// The buffers of one data stream: where their memory comes from, and who holds them when they are torn down.
///
/// Filling and emptying belong to one thread at a time (the stream's control lock); handing in a buffer may
/// come from any thread meanwhile.
class StreamBufferPool {
public:
    /// Without an allocator the producer supplies the memory; the allocator is not owned.
    StreamBufferPool(CZqGenTLLib* pGenTL, IZqDataStreamInside* pDataStream, IZqAllocator* pAllocator);
    ~StreamBufferPool();

    size_t Size() const { return m_Buffers.size(); }
    const std::vector<CZqStreamBuffer*>& Buffers() const { return m_Buffers; }

    /// Announces one more buffer, its memory from the allocator if there is one, and queues it. On a failure
    /// the buffer is revoked before its memory goes back.
    void Add(size_t payloadSize);
    CZqStreamBuffer* Register(void* pBuffer, size_t size, void* pContext, size_t index);
    /// Takes a buffer out of the pool, revokes and destroys it. One that the application holds lives on,
    /// without its handle, until it is handed in. The first failure leaves at the end.
    void Deregister(CZqStreamBuffer* pBuffer);
    /// Deregisters every buffer, whatever fails, and throws the first failure.
    void DeregisterAll();

    /// Ends the application's hold on a buffer. `queue` is called, while no tear-down can begin, if the
    /// buffer is still in the pool; otherwise the buffer is destroyed.
    template <class Queue>
    void HandIn(CZqStreamBuffer* pBuffer, Queue queue) {
        {
            const std::shared_lock<std::shared_mutex> lock(m_Gate);
            if (!IsOrphan(pBuffer)) {
                pBuffer->SetLent(false);
                queue();
                return;
            }
        }
        DeleteOrphan(pBuffer);
    }

    /// Gives back the memory of buffers that the producer refused to revoke: only now can it no longer write
    /// there.
    void OnStreamClosed();

private:
    struct Memory {
        void* pBuffer;
        size_t size;
        void* pContext;
    };

    bool IsOrphan(const CZqStreamBuffer* pBuffer) const;
    void DeleteOrphan(CZqStreamBuffer* pBuffer);
    Memory Allocate(size_t size);
    void Deallocate(const Memory& memory);

    CZqGenTLLib* const m_pCZqGenTL;
    IZqDataStreamInside* const m_pIZqDataStreamInside;
    IZqAllocator* const m_pAllocator;
    std::vector<CZqStreamBuffer*> m_Buffers;
    std::shared_mutex m_Gate;
    std::vector<std::unique_ptr<CZqStreamBuffer>> m_Orphans;
    std::vector<Memory> m_HeldMemory;
};

} // namespace ZqApi
