#include "ZqApi_TL/StreamBufferPool.h"

#include <algorithm>
#include <utility>

#include "ZqSDKCommon/Error.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqDataStream";

} // namespace

StreamBufferPool::StreamBufferPool(CZqGenTLLib* pGenTL, IZqDataStreamInside* pDataStream,
                                   IZqAllocator* pAllocator)
    : m_pCZqGenTL(pGenTL), m_pIZqDataStreamInside(pDataStream), m_pAllocator(pAllocator) {}

StreamBufferPool::~StreamBufferPool() = default;

StreamBufferPool::Memory StreamBufferPool::Allocate(size_t size) {
    Memory memory{nullptr, size, nullptr};
    if (m_pAllocator == nullptr)
        return memory;
    m_pAllocator->Allocate(&memory.pBuffer, size, &memory.pContext);
    if (memory.pBuffer == nullptr)
        throw ReportError<GenICam::BadAllocException>(UNIT, __LINE__, "");
    return memory;
}

void StreamBufferPool::Deallocate(const Memory& memory) {
    if (m_pAllocator != nullptr && memory.pBuffer != nullptr)
        m_pAllocator->Deallocate(memory.pBuffer, memory.size, memory.pContext);
}

void StreamBufferPool::Add(size_t payloadSize) {
    Reserve(m_Buffers.size() + 1);
    const Memory memory = Allocate(payloadSize);
    CZqStreamBuffer* pBuffer = nullptr;
    bool leftAnnounced = false;
    try {
        pBuffer = Register(memory.pBuffer, memory.size, memory.pContext, m_Buffers.size(), &leftAnnounced);
    } catch (...) {
        if (leftAnnounced)
            m_HeldMemory.push_back(memory);
        else
            Teardown().Run([&] { Deallocate(memory); });
        throw;
    }
    try {
        m_pIZqDataStreamInside->QueueBuffer(pBuffer);
    } catch (...) {
        Teardown().Run([&] { Deregister(pBuffer); });
        throw;
    }
}

CZqStreamBuffer* StreamBufferPool::Register(void* pBuffer, size_t size, void* pContext, size_t index,
                                            bool* pLeftAnnounced) {
    return ConvertBadAlloc(UNIT, __LINE__, [&] {
        // Room first, so that nothing can fail between announcing a buffer and keeping it.
        Reserve(m_Buffers.size() + 1);
        m_Buffers.push_back(new CZqStreamBuffer(m_pCZqGenTL, m_pIZqDataStreamInside, pBuffer, size, pContext,
                                                index, pLeftAnnounced));
        return m_Buffers.back();
    });
}

void StreamBufferPool::Reserve(size_t count) {
    const std::lock_guard<std::shared_mutex> lock(m_Gate);
    m_Buffers.reserve(count);
    m_Orphans.reserve(m_Orphans.size() + count);
    m_HeldMemory.reserve(m_HeldMemory.size() + count);
}

void StreamBufferPool::Deregister(CZqStreamBuffer* pBuffer) {
    if (TakeOut(pBuffer))
        Dismiss(pBuffer);
}

bool StreamBufferPool::TakeOut(CZqStreamBuffer* pBuffer) {
    const std::lock_guard<std::shared_mutex> lock(m_Gate);
    const auto position = std::find(m_Buffers.begin(), m_Buffers.end(), pBuffer);
    if (position == m_Buffers.end())
        return false;
    m_Buffers.erase(position);
    pBuffer->SetPlace(CZqStreamBuffer::Place::Leaving);
    return true;
}

std::vector<CZqStreamBuffer*> StreamBufferPool::TakeAllOut() {
    const std::lock_guard<std::shared_mutex> lock(m_Gate);
    for (CZqStreamBuffer* const pBuffer : m_Buffers)
        pBuffer->SetPlace(CZqStreamBuffer::Place::Leaving);
    return std::exchange(m_Buffers, {});
}

void StreamBufferPool::Dismiss(CZqStreamBuffer* pBuffer) {
    const Memory memory{pBuffer->GetBufferAddress(), pBuffer->GetAnnouncedSize(), pBuffer->GetUserContext()};
    Teardown steps;
    bool revoked = false;
    steps.Run([&] {
        pBuffer->DeleteInsideObjects();
        revoked = true;
    });
    if (revoked)
        steps.Run([&] { Deallocate(memory); });
    else
        m_HeldMemory.push_back(memory);
    Settle(pBuffer);
    steps.RethrowFirst();
}

void StreamBufferPool::Settle(CZqStreamBuffer* pBuffer) {
    std::unique_ptr<CZqStreamBuffer> doomed(pBuffer);
    const std::lock_guard<std::shared_mutex> lock(m_Gate);
    pBuffer->SetPlace(CZqStreamBuffer::Place::Outside);
    if (pBuffer->IsLent())
        m_Orphans.push_back(std::move(doomed));
}

void StreamBufferPool::HandInDismissed(CZqStreamBuffer* pBuffer) {
    std::unique_ptr<CZqStreamBuffer> doomed;
    const std::lock_guard<std::shared_mutex> lock(m_Gate);
    pBuffer->SetLent(false);
    // One that is still being revoked is destroyed by who revokes it.
    if (pBuffer->GetPlace() == CZqStreamBuffer::Place::Outside)
        doomed = TakeOrphan(pBuffer);
}

std::unique_ptr<CZqStreamBuffer> StreamBufferPool::TakeOrphan(const CZqStreamBuffer* pBuffer) {
    const auto position = std::find_if(
        m_Orphans.begin(), m_Orphans.end(),
        [pBuffer](const std::unique_ptr<CZqStreamBuffer>& orphan) { return orphan.get() == pBuffer; });
    if (position == m_Orphans.end())
        return nullptr;
    std::unique_ptr<CZqStreamBuffer> orphan = std::move(*position);
    m_Orphans.erase(position);
    return orphan;
}

void StreamBufferPool::OnStreamClosed() {
    for (const Memory& memory : m_HeldMemory)
        Teardown().Run([&] { Deallocate(memory); });
    m_HeldMemory.clear();
}

} // namespace ZqApi
