#pragma once

#include "genapi/src/description/Description.h"

namespace GENAPI_NAMESPACE::inside {

/// Where one chunk lies in a buffer.
struct ChunkPlace {
    uint64_t id = 0;
    size_t offset = 0;
    size_t length = 0;

    bool operator==(const ChunkPlace& other) const {
        return id == other.id && offset == other.offset && length == other.length;
    }
};

/// Cameras send a few dozen at most; a buffer of nothing but tiny chunks shall cost neither memory nor time.
constexpr size_t kMaxChunks = 65536;
constexpr uint32_t kNoChunk = 0xFFFFFFFF;

/// What one node map knows of chunks: its ports for them, and the buffer that they are read from.
struct ChunkBuffer {
    std::vector<NodeIndex> ports;
    std::vector<NodeIndex> copying; ///< the ports among them that keep what they had
    std::vector<NodeIndex> idNodes; ///< whose texts are the IDs of ports
    std::vector<NodeIndex> watched; ///< nodes behind chunks that have callbacks
    std::vector<ChunkPlace> layout; ///< stays when the buffer goes, for the next one
    std::vector<uint32_t> sorted;   ///< places in the layout, by ID and then by offset
    const uint8_t* base = nullptr;
    bool attached = false;
    bool idsChanged = false;  ///< ports and chunks are to be matched again
    bool idsVolatile = false; ///< nothing tells when an ID changes
    bool matching = false;
    int numAttached = 0; ///< chunks that some port has
    /// Grows with every change of all chunks at once. A kept value or mode behind a chunk is good while its
    /// node has the same number, so that a change costs nothing for nodes that nobody reads.
    uint32_t epoch = 0;
};

} // namespace GENAPI_NAMESPACE::inside
