#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zqgentl {

/// Unpacks a zlib stream (RFC 1950 and 1951) that has `size` bytes when it is unpacked. Throws Failure,
/// GC_ERR_INVALID_VALUE, for a stream that is broken or has another size.
[[nodiscard]] std::vector<uint8_t> Inflate(const uint8_t* data, size_t length, size_t size);

} // namespace zqgentl
