#include "ZqApi_TL/StreamBufferPool.h"

#include <algorithm>
#include <mutex>

#include "ZqApi_TL/Teardown.h"
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
    const Memory memory = Allocate(payloadSize);
    CZqStreamBuffer* pBuffer = nullptr;
    try {
        pBuffer = Register(memory.pBuffer, memory.size, memory.pContext, m_Buffers.size());
    } catch (...) {
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

CZqStreamBuffer* StreamBufferPool::Register(void* pBuffer, size_t size, void* pContext, size_t index) {
    return ConvertBadAlloc(UNIT, __LINE__, [&] {
        // Room first, so that nothing can fail between announcing a buffer and keeping it.
        m_Buffers.reserve(m_Buffers.size() + 1);
        m_Orphans.reserve(m_Orphans.size() + m_Buffers.size() + 1);
        m_HeldMemory.reserve(m_HeldMemory.size() + m_Buffers.size() + 1);
        m_Buffers.push_back(
            new CZqStreamBuffer(m_pCZqGenTL, m_pIZqDataStreamInside, pBuffer, size, pContext, index));
        return m_Buffers.back();
    });
}

void StreamBufferPool::Deregister(CZqStreamBuffer* pBuffer) {
    std::unique_ptr<CZqStreamBuffer> owned;
    {
        const std::lock_guard<std::shared_mutex> lock(m_Gate);
        const auto position = std::find(m_Buffers.begin(), m_Buffers.end(), pBuffer);
        if (position == m_Buffers.end())
            return;
        m_Buffers.erase(position);
        if (pBuffer->IsLent())
            m_Orphans.emplace_back(pBuffer);
        else
            owned.reset(pBuffer);
    }
    const Memory memory{pBuffer->GetBufferAddress(), pBuffer->GetAnnouncedSize(), pBuffer->GetUserContext()};
    Teardown revoke;
    bool revoked = false;
    revoke.Run([&] {
        pBuffer->DeleteInsideObjects();
        revoked = true;
    });
    if (revoked)
        Deallocate(memory);
    else
        m_HeldMemory.push_back(memory);
    revoke.RethrowFirst();
}

void StreamBufferPool::DeregisterAll() {
    Teardown steps;
    while (!m_Buffers.empty())
        steps.Run([this] { Deregister(m_Buffers.front()); });
    steps.RethrowFirst();
}

bool StreamBufferPool::IsOrphan(const CZqStreamBuffer* pBuffer) const {
    return std::any_of(
        m_Orphans.begin(), m_Orphans.end(),
        [pBuffer](const std::unique_ptr<CZqStreamBuffer>& orphan) { return orphan.get() == pBuffer; });
}

void StreamBufferPool::DeleteOrphan(CZqStreamBuffer* pBuffer) {
    std::unique_ptr<CZqStreamBuffer> doomed;
    const std::lock_guard<std::shared_mutex> lock(m_Gate);
    const auto position = std::find_if(
        m_Orphans.begin(), m_Orphans.end(),
        [pBuffer](const std::unique_ptr<CZqStreamBuffer>& orphan) { return orphan.get() == pBuffer; });
    if (position == m_Orphans.end())
        return;
    doomed = std::move(*position);
    m_Orphans.erase(position);
}

void StreamBufferPool::OnStreamClosed() {
    for (const Memory& memory : m_HeldMemory)
        Teardown().Run([&] { Deallocate(memory); });
    m_HeldMemory.clear();
}

} // namespace ZqApi
