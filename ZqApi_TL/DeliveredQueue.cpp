#include "ZqApi_TL/DeliveredQueue.h"

#include <algorithm>

namespace ZqApi {

void DeliveredQueue::Reserve(size_t count) {
    const GenApi::AutoLock lock(m_Lock);
    if (count <= m_Ring.size())
        return;
    std::vector<CZqStreamBuffer*> larger(count, nullptr);
    for (size_t i = 0; i < m_Count; ++i)
        larger[i] = m_Ring[(m_Front + i) % m_Ring.size()];
    m_Ring.swap(larger);
    m_Front = 0;
}

void DeliveredQueue::Append(CZqStreamBuffer* pBuffer) {
    const GenApi::AutoLock lock(m_Lock);
    // Only a producer that delivers one buffer twice gets beyond the reserved room.
    if (m_Count == m_Ring.size())
        Reserve(std::max<size_t>(8, 2 * m_Count));
    m_Ring[(m_Front + m_Count) % m_Ring.size()] = pBuffer;
    ++m_Count;
    m_FilledEvent.SetEvent();
}

CZqStreamBuffer* DeliveredQueue::TakeFront() {
    const GenApi::AutoLock lock(m_Lock);
    if (m_Count == 0)
        return nullptr;
    CZqStreamBuffer* const pBuffer = m_Ring[m_Front];
    m_Front = (m_Front + 1) % m_Ring.size();
    if (--m_Count == 0)
        m_FilledEvent.ResetEvent();
    return pBuffer;
}

bool DeliveredQueue::Contains(const CZqStreamBuffer* pBuffer) {
    const GenApi::AutoLock lock(m_Lock);
    for (size_t i = 0; i < m_Count; ++i)
        if (m_Ring[(m_Front + i) % m_Ring.size()] == pBuffer)
            return true;
    return false;
}

void DeliveredQueue::Clear() {
    const GenApi::AutoLock lock(m_Lock);
    m_Front = 0;
    m_Count = 0;
    m_FilledEvent.ResetEvent();
}

size_t DeliveredQueue::Size() {
    const GenApi::AutoLock lock(m_Lock);
    return m_Count;
}

} // namespace ZqApi
