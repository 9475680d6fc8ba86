#include <algorithm>
#include <chrono>
#include <thread>

#include "ZqApi_TL/ZqDataStream.h"
#include "ZqGenTLCommon/ZqGenTLError.h"

// The data stream's buffers: allocated for a start, kept from one start to the next, torn down.

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqDataStream";

} // namespace

IZqStreamBufferInside* CZqDataStream::RegisterStreamBuffer(void* pBuffer, size_t size, void* pContext,
                                                           size_t index) {
    return m_Pool.Register(pBuffer, size, pContext, index);
}

void CZqDataStream::DeregisterStreamBuffer(IZqStreamBuffer* pBuffer) {
    auto* const pCZqStreamBuffer = dynamic_cast<CZqStreamBuffer*>(pBuffer);
    ZQ_ASSERT(UNIT, (pCZqStreamBuffer) != NULL);
    m_Pool.Deregister(pCZqStreamBuffer);
}

void CZqDataStream::QueueBuffer(IZqStreamBuffer* pBuffer) {
    if (pBuffer == nullptr)
        return;
    auto* const pIZqStreamBufferInside = dynamic_cast<IZqStreamBufferInside*>(pBuffer);
    ZQ_ASSERT(UNIT, (pIZqStreamBufferInside) != NULL);
    auto* const pCZqStreamBuffer = static_cast<CZqStreamBuffer*>(pIZqStreamBufferInside);
    m_Pool.HandIn(pCZqStreamBuffer, [&] { QueueToProducer(*pCZqStreamBuffer); });
}

void CZqDataStream::QueueToProducer(const CZqStreamBuffer& buffer) {
    const BUFFER_HANDLE hBuffer = buffer.GetBufferHandle();
    const GC_ERROR result = CallProducer(m_pCZqGenTL->DSQueueBuffer, m_hDataStream, hBuffer);
    CheckProducer(m_pCZqGenTL, UNIT, __LINE__, result, "DSQueueBuffer", "%d = DSQueueBuffer(0x%p, 0x%p)",
                  result, m_hDataStream, hBuffer);
}

void CZqDataStream::FlushQueue(ACQ_QUEUE_TYPE mode) {
    const GC_ERROR result = CallProducer(m_pCZqGenTL->DSFlushQueue, m_hDataStream, mode);
    CheckProducer(m_pCZqGenTL, UNIT, __LINE__, result, "DSFlushQueue", "%d = DSFlushQueue(0x%p, %d)", result,
                  m_hDataStream, mode);
}

size_t CZqDataStream::PayloadSizeToAllocate() {
    const size_t payloadSize = m_DataStreamInfo.GetPayloadSize();
    // A producer that leaves the size to the camera may answer 0 instead of an error.
    return payloadSize != 0 ? payloadSize : m_DataStreamInfo.GetPayloadSizeFormNodeMap();
}

bool CZqDataStream::MustReplacePool(size_t payloadSize) {
    if (m_Pool.Size() == 0)
        return false;
    const auto& buffers = m_Pool.Buffers();
    const bool largeEnough =
        std::all_of(buffers.begin(), buffers.end(), [payloadSize](const CZqStreamBuffer* buffer) {
            return buffer->GetInfo().GetBufferSize() >= payloadSize;
        });
    return !largeEnough || m_nStreamBufferCount < m_Pool.Size();
}

size_t CZqDataStream::AllocateBuffers() {
    const size_t count = m_nStreamBufferCount;
    const size_t payloadSize = PayloadSizeToAllocate();
    m_Delivered.Clear();
    if (MustReplacePool(payloadSize)) {
        // The thread may have fetched an event for a buffer that is about to go.
        m_Acquisition.thread->Stop();
        DeallocateBuffers();
        m_Acquisition.thread->Start();
    }
    m_Delivered.Reserve(count);
    m_Pool.Reserve(count);
    const size_t keptCount = m_Pool.Size();
    while (m_Pool.Size() < count)
        m_Pool.Add(payloadSize);
    return keptCount;
}

void CZqDataStream::DeallocateBuffers() {
    m_Delivered.Clear();
    // No new one can begin: the queue is empty and its thread does not run.
    while (m_nHandingOut.load() != 0)
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    m_Pool.DeregisterAll([this] { FlushQueue(ACQ_QUEUE_ALL_DISCARD); });
}

} // namespace ZqApi
