#include "ZqApi_TL/PixelComponentList.h"

#include <chrono>
#include <thread>

namespace ZqApi {

// The stores of the entries are releases: whoever has seen one of them also sees that the sequence is odd.
void PixelComponentList::Replace(const PixelComponents& pixel) {
    const uint64_t sequence = BeginReplacing();
    m_Count.store(pixel.count, std::memory_order_release);
    for (size_t i = 0; i < pixel.count; ++i) {
        m_Entries[i].component.store(pixel.entries[i].component, std::memory_order_release);
        m_Entries[i].value.store(pixel.entries[i].value, std::memory_order_release);
    }
    m_Sequence.store(sequence + 2, std::memory_order_release);
}

uint64_t PixelComponentList::BeginReplacing() {
    for (Patience patience;; patience.Wait()) {
        uint64_t sequence = m_Sequence.load(std::memory_order_acquire);
        if (sequence % 2 == 0 &&
            m_Sequence.compare_exchange_weak(sequence, sequence + 1, std::memory_order_acquire))
            return sequence;
    }
}

void PixelComponentList::Patience::Sleep() {
    std::this_thread::sleep_for(std::chrono::microseconds(1));
}

} // namespace ZqApi
