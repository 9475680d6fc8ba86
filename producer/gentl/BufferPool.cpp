#include "producer/gentl/BufferPool.h"

#include <algorithm>

namespace zqgentl {

void BufferPool::Announce(std::shared_ptr<BufferModule> buffer) {
    if (!m_bases.insert(buffer->Base()).second)
        throw Failure(GenTL::GC_ERR_RESOURCE_IN_USE, "this memory is announced already");
    List& idle = At(Place::Idle);
    idle.push_back(buffer.get());
    buffer->m_position = std::prev(idle.end());
    Grow(Place::Idle, 1);
    buffer->m_pool = this;
    m_announced.push_back(std::move(buffer));
}

std::shared_ptr<BufferModule> BufferPool::Revoke(BufferModule& buffer) {
    const auto found = std::find_if(m_announced.begin(), m_announced.end(),
                                    [&](const auto& announced) { return announced.get() == &buffer; });
    std::shared_ptr<BufferModule> revoked = *found;
    m_announced.erase(found);
    m_bases.erase(buffer.Base());
    buffer.m_pool = nullptr;
    At(buffer.m_place).erase(buffer.m_position);
    Grow(buffer.m_place, -1);
    return revoked;
}

void BufferPool::Grow(Place place, int by) noexcept {
    std::atomic<size_t>& count = m_counts[static_cast<size_t>(place)];
    // One writer at a time, under the engine's lock: no read-modify-write is needed.
    count.store(count.load(std::memory_order_acquire) + static_cast<size_t>(by), std::memory_order_release);
}

void BufferPool::Splice(BufferModule& buffer, Place to, List::iterator before) {
    Grow(buffer.m_place, -1);
    Grow(to, 1);
    At(to).splice(before, At(buffer.m_place), buffer.m_position);
    buffer.m_place = to;
}

void BufferPool::Move(BufferModule& buffer, Place to) {
    Splice(buffer, to, At(to).end());
}

void BufferPool::MoveToFront(BufferModule& buffer, Place to) {
    Splice(buffer, to, At(to).begin());
}

void BufferPool::MoveAll(Place from, Place to) {
    while (BufferModule* buffer = First(from))
        Move(*buffer, to);
}

BufferModule* BufferPool::First(Place place) const {
    return At(place).empty() ? nullptr : At(place).front();
}

} // namespace zqgentl
