#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <vector>

#include <ZqApi/Image.h>

#include "ZqApi_TL/DeliveredQueue.h"
#include "ZqApi_TL/Teardown.h"
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
    CZqStreamBuffer* Register(void* pBuffer, size_t size, void* pContext, size_t index,
                              bool* pLeftAnnounced = nullptr);
    /// Makes room for `count` buffers. Throws std::bad_alloc.
    void Reserve(size_t count);
    /// Takes a buffer out of the pool, revokes and destroys it. One that the application holds lives on,
    /// without its handle, until it is handed in. The first failure leaves at the end.
    void Deregister(CZqStreamBuffer* pBuffer);
    /// Deregisters every buffer, whatever fails, and throws the first failure. `flush` is called in between:
    /// once no buffer can be queued any more, and before the first is revoked.
    template <class Flush>
    void DeregisterAll(Flush flush) {
        const std::vector<CZqStreamBuffer*> leaving = TakeAllOut();
        Teardown steps;
        steps.Run(flush);
        for (CZqStreamBuffer* const pBuffer : leaving)
            steps.Run([&] { Dismiss(pBuffer); });
        steps.RethrowFirst();
    }

    /// Ends the application's hold on a buffer. `queue` is called, while no tear-down can begin, if the
    /// buffer is still in the pool; otherwise the buffer is destroyed.
    template <class Queue>
    void HandIn(CZqStreamBuffer* pBuffer, Queue queue) {
        {
            const std::shared_lock<std::shared_mutex> lock(m_Gate);
            if (pBuffer->GetPlace() == CZqStreamBuffer::Place::Pool) {
                pBuffer->SetLent(false);
                queue();
                return;
            }
        }
        HandInDismissed(pBuffer);
    }

    /// Runs `action` while no buffer is being handed in.
    template <class Action>
    void WithoutHandIn(Action action) {
        const std::lock_guard<std::shared_mutex> lock(m_Gate);
        action();
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

    /// False when it is not in the pool.
    bool TakeOut(CZqStreamBuffer* pBuffer);
    std::vector<CZqStreamBuffer*> TakeAllOut();
    /// Revokes a buffer that was taken out, gives its memory back, and destroys it unless the application
    /// holds it.
    void Dismiss(CZqStreamBuffer* pBuffer);
    void Settle(CZqStreamBuffer* pBuffer);
    void HandInDismissed(CZqStreamBuffer* pBuffer);
    std::unique_ptr<CZqStreamBuffer> TakeOrphan(const CZqStreamBuffer* pBuffer);
    Memory Allocate(size_t size);
    void Deallocate(const Memory& memory);

    CZqGenTLLib* const m_pCZqGenTL;
    IZqDataStreamInside* const m_pIZqDataStreamInside;
    IZqAllocator* const m_pAllocator;
    std::vector<CZqStreamBuffer*> m_Buffers;
    std::shared_mutex m_Gate;
    // Revoked buffers that the application still holds. The gate guards them and every buffer's place.
    std::vector<std::unique_ptr<CZqStreamBuffer>> m_Orphans;
    std::vector<Memory> m_HeldMemory;
};

} // namespace ZqApi
