#pragma once

#include "genapi/src/map/ChunkBuffer.h"

#include <string>

namespace GENAPI_NAMESPACE::inside {

/// Goes through a buffer of chunks from its end to its start: behind the data of each chunk stand its ID and
/// its length, 4 bytes each.
class ChunkTags {
public:
    ChunkTags(const uint8_t* buffer, size_t size, bool bigEndian)
        : m_buffer(buffer), m_end(size), m_bigEndian(bigEndian) {}

    /// False when there are no more chunks, or when the buffer is malformed.
    bool Next(ChunkPlace& chunk);
    /// What is malformed; empty when nothing is.
    const std::string& Fault() const { return m_fault; }

private:
    uint32_t Load(size_t offset) const;
    bool Refuse(const char* format, size_t first, size_t second);

    const uint8_t* m_buffer;
    size_t m_end;
    size_t m_chunks = 0;
    bool m_bigEndian;
    std::string m_fault;
};

} // namespace GENAPI_NAMESPACE::inside
