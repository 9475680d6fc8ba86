#pragma once

#include "genapi/src/image/Flat.h"

#include <Base/GCTypes.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

#include <sys/mman.h>

namespace GENAPI_NAMESPACE::inside {

struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};
using Memory = std::unique_ptr<char, FreeMemory>;

/// What an image grew out of: it needs more memory than it was given.
struct ArenaFull {};

/// Memory that an image is laid out in, from its beginning on. Stays where it is until it is taken. What is
/// made in it is never destroyed.
///
/// A large one asks for huge pages: to be given a thousand small ones took a fifth of the time for loading a
/// megabyte of text. What is left of the last one is given back; small ones do without.
class Arena {
public:
    explicit Arena(size_t capacity) : m_capacity(capacity), m_large(capacity >= kLeastLarge) {
        if (m_large)
            m_capacity = (capacity + kHugePage - 1) / kHugePage * kHugePage;
        m_memory.reset(static_cast<char*>(m_large ? std::aligned_alloc(kHugePage, m_capacity)
                                                  : std::malloc(m_capacity)));
        if (!m_memory)
            throw std::bad_alloc();
        if (m_large)
            madvise(m_memory.get(), m_capacity, MADV_HUGEPAGE); // where there are none, small ones do as well
    }

    /// Zeroed.
    void* Allocate(size_t size, size_t alignment) {
        char* const place = Reserve(size, alignment);
        std::memset(m_memory.get() + m_cleared, 0, m_used - m_cleared);
        m_cleared = m_used;
        return place;
    }
    template <class T>
    T* New() {
        static_assert(std::is_trivially_destructible_v<T>);
        return new (Allocate(sizeof(T), alignof(T))) T();
    }
    template <class T>
    T* NewArray(size_t count) {
        static_assert(std::is_trivially_destructible_v<T>);
        if (count > kMaxImageSize / sizeof(T))
            throw ArenaFull();
        T* const first = static_cast<T*>(Allocate(count * sizeof(T), alignof(T)));
        for (size_t i = 0; i < count; ++i)
            new (first + i) T();
        return first;
    }
    template <class T>
    void NewList(List<T>& list, size_t count) {
        list.Point(NewArray<T>(count), count);
    }
    template <class T>
    void KeepList(List<T>& list, const std::vector<T>& values) {
        if (values.empty())
            return list.Point(nullptr, 0);
        NewList(list, values.size());
        std::copy(values.begin(), values.end(), list.begin());
    }
    /// The text itself where it lies in here already, else a copy.
    std::string_view Keep(std::string_view text) {
        if (text.empty() || Contains(text.data()))
            return text;
        char* const copy = Reserve(text.size(), 1);
        std::memcpy(copy, text.data(), text.size());
        m_cleared = m_used;
        return {copy, text.size()};
    }
    void KeepText(Text& place, std::string_view text) { place.Point(Keep(text)); }

    size_t Used() const { return m_used; }
    /// The memory, cut to what is used.
    Memory Take() {
        if (m_large) {
            const size_t used = (m_used + kSmallPage - 1) / kSmallPage * kSmallPage;
            madvise(m_memory.get() + used, m_capacity - used, MADV_DONTNEED);
            return std::move(m_memory);
        }
        void* const shorter = std::realloc(m_memory.get(), m_used);
        if (shorter) {
            static_cast<void>(m_memory.release());
            m_memory.reset(static_cast<char*>(shorter));
        }
        return std::move(m_memory);
    }

private:
    static constexpr size_t kHugePage = size_t{2} * 1024 * 1024;
    static constexpr size_t kSmallPage = size_t{64} * 1024; ///< the largest that a processor of ours has
    static constexpr size_t kLeastLarge = kHugePage / 2;

    char* Reserve(size_t size, size_t alignment) {
        const size_t begin = (m_used + alignment - 1) / alignment * alignment;
        if (begin > m_capacity || size > m_capacity - begin)
            throw ArenaFull();
        // The gap that alignment leaves belongs to the image as well.
        std::memset(m_memory.get() + m_cleared, 0, begin - m_cleared);
        m_cleared = begin;
        m_used = begin + size;
        return m_memory.get() + begin;
    }
    bool Contains(const char* place) const {
        return std::less_equal<>()(m_memory.get(), place) && std::less<>()(place, m_memory.get() + m_used);
    }

    Memory m_memory;
    size_t m_capacity;
    bool m_large;
    size_t m_used = 0;
    size_t m_cleared = 0;
};

} // namespace GENAPI_NAMESPACE::inside
