#include "genapi/src/adapters/ChunkTags.h"

#include <cstdio>

namespace GENAPI_NAMESPACE::inside {

namespace {

constexpr size_t kTag = 8;

} // namespace

uint32_t ChunkTags::Load(size_t offset) const {
    const uint8_t* const bytes = m_buffer + offset;
    const auto join = [](uint32_t high, uint32_t upper, uint32_t lower, uint32_t low) {
        return high << 24 | upper << 16 | lower << 8 | low;
    };
    return m_bigEndian ? join(bytes[0], bytes[1], bytes[2], bytes[3])
                       : join(bytes[3], bytes[2], bytes[1], bytes[0]);
}

bool ChunkTags::Refuse(const char* format, size_t first, size_t second) {
    char text[120];
    std::snprintf(text, sizeof text, format, first, second);
    m_fault = text;
    return false;
}

// An empty chunk is refused, because that is what zeros behind the last chunk look like.
bool ChunkTags::Next(ChunkPlace& chunk) {
    if (m_end == 0 && m_chunks > 0)
        return false;
    if (m_end < kTag)
        return Refuse("%zu bytes are too few for a chunk", m_end, 0);
    if (++m_chunks > kMaxChunks)
        return Refuse("there are more than %zu chunks", kMaxChunks, 0);
    const size_t dataEnd = m_end - kTag;
    const size_t length = Load(dataEnd + 4);
    if (length == 0)
        return Refuse("the chunk that ends at %zu is empty", m_end, 0);
    if (length > dataEnd)
        return Refuse("a chunk of %zu bytes can't end at %zu", length, dataEnd);
    m_end = dataEnd - length;
    chunk = {Load(dataEnd), m_end, length};
    return true;
}

} // namespace GENAPI_NAMESPACE::inside
