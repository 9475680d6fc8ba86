#pragma once

#include "producer/gentl/BufferModule.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <list>
#include <memory>
#include <set>
#include <vector>

namespace zqgentl {

/// The announced buffers of a stream and the four places they can be in, each a queue. Moving a buffer
/// between places allocates nothing. Not locked: the engine calls it under its own lock.
class BufferPool {
public:
    void Announce(std::shared_ptr<BufferModule> buffer);
    /// Returns the buffer so that it outlives the call; it must be idle.
    std::shared_ptr<BufferModule> Revoke(BufferModule& buffer);
    [[nodiscard]] bool Contains(const BufferModule& buffer) const noexcept { return buffer.m_pool == this; }
    [[nodiscard]] const std::vector<std::shared_ptr<BufferModule>>& Announced() const noexcept {
        return m_announced;
    }

    /// Appends the buffer to the queue of a place.
    void Move(BufferModule& buffer, Place to);
    void MoveToFront(BufferModule& buffer, Place to);
    void MoveAll(Place from, Place to);
    /// The oldest buffer at a place, or null.
    [[nodiscard]] BufferModule* First(Place place) const;
    /// May be asked without the lock, as a hint.
    [[nodiscard]] size_t Count(Place place) const noexcept { return m_counts[static_cast<size_t>(place)]; }

private:
    using List = std::list<BufferModule*>;
    [[nodiscard]] List& At(Place place) { return m_places[static_cast<size_t>(place)]; }
    [[nodiscard]] const List& At(Place place) const { return m_places[static_cast<size_t>(place)]; }

    void Splice(BufferModule& buffer, Place to, List::iterator before);
    void Grow(Place place, int by) noexcept;

    std::array<List, 4> m_places;
    std::array<std::atomic<size_t>, 4> m_counts{};
    std::vector<std::shared_ptr<BufferModule>> m_announced;
    std::set<const void*> m_bases;
};

} // namespace zqgentl
