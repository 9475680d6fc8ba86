#pragma once

#include <cstddef>
#include <vector>

#include <GenApi/Synch.h>

#include "ZqSDKCommon/EventObject.h"

namespace ZqApi {

class CZqStreamBuffer;

/// The buffers that the producer has filled and nobody has retrieved yet, oldest first, and the event that is
/// set while there are any.
///
/// Queue and event change together under the queue's lock, so every operation takes it for itself; the lock
/// is recursive. A ring that has grown to the pool's size allocates no more.
class DeliveredQueue {
public:
    GenApi::CLock& GetLock() { return m_Lock; }
    CEventObject& GetFilledEvent() { return m_FilledEvent; }

    /// Makes room for `count` buffers. Throws std::bad_alloc.
    void Reserve(size_t count);
    void Append(CZqStreamBuffer* pBuffer);
    /// The oldest buffer, taken out; null when there is none.
    CZqStreamBuffer* TakeFront();
    bool Contains(const CZqStreamBuffer* pBuffer);
    void Clear();
    size_t Size();

private:
    GenApi::CLock m_Lock;
    std::vector<CZqStreamBuffer*> m_Ring;
    size_t m_Front = 0;
    size_t m_Count = 0;
    CEventObject m_FilledEvent{nullptr, true, false, nullptr};
};

} // namespace ZqApi
