#pragma once

#include <cstddef>
#include <cstdint>

namespace zqgentl {

enum class ByteOrder { Little, Big };

/// Stores the low `size` bytes of a number.
inline void StoreBytes(uint8_t* target, uint64_t bits, size_t size, ByteOrder order) {
    for (size_t i = 0; i < size; ++i)
        target[order == ByteOrder::Little ? i : size - 1 - i] = static_cast<uint8_t>(bits >> (8 * i));
}

inline uint64_t LoadBytes(const uint8_t* source, size_t size, ByteOrder order) {
    uint64_t bits = 0;
    for (size_t i = 0; i < size; ++i)
        bits |= uint64_t{source[order == ByteOrder::Little ? i : size - 1 - i]} << (8 * i);
    return bits;
}

} // namespace zqgentl
