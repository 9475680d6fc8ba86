// Lists of chunks, as a producer may hand them out: four bytes for each entry, which lies in the buffer or
// can't lie anywhere. Three lists in a row share a map, so that layouts are also found again and replaced.
#include "fuzz/ChunkMap.h"

#include <algorithm>
#include <vector>

namespace {

using Chunk = GenApi::SingleChunkData_t;

constexpr size_t kEntrySize = 4;
constexpr uint64_t kNumberId = 0x1001;

uint64_t IdOf(uint8_t number) {
    constexpr uint64_t kIds[] = {1, kNumberId, 0x10, UINT64_MAX, 0};
    return number < std::size(kIds) ? kIds[number] : number;
}

bool IsPossible(const Chunk& chunk) {
    const ptrdiff_t offset = chunk.ChunkOffset;
    return offset >= 0 && size_t{chunk.ChunkLength} <= static_cast<size_t>(PTRDIFF_MAX - offset);
}

/// The last byte of an entry says whether it is impossible, and how.
Chunk EntryOf(const uint8_t* bytes, size_t bufferSize) {
    const size_t offset = bytes[1] % (bufferSize + 1);
    const size_t length = bytes[2] % (bufferSize - offset + 1);
    Chunk chunk = {IdOf(bytes[0]), static_cast<ptrdiff_t>(offset), length};
    if (bytes[3] == 0xFF)
        chunk.ChunkOffset = -1 - chunk.ChunkOffset;
    else if (bytes[3] == 0xFE)
        chunk.ChunkLength = SIZE_MAX - length;
    else if (bytes[3] == 0xFD)
        chunk.ChunkOffset = PTRDIFF_MIN;
    return chunk;
}

/// Of chunks with one ID, the last one in memory counts.
bool CanHaveLength(const std::vector<Chunk>& chunks, int64_t length) {
    ptrdiff_t last = -1;
    bool found = false;
    for (const Chunk& chunk : chunks) {
        if (chunk.ChunkID != kNumberId || chunk.ChunkOffset < last)
            continue;
        found = (found && chunk.ChunkOffset == last) || static_cast<int64_t>(chunk.ChunkLength) == length;
        last = chunk.ChunkOffset;
    }
    return found;
}

void Require(bool holds) {
    if (!holds)
        __builtin_trap();
}

void Attach(GenApi::CChunkAdapterGeneric& adapter, const ChunkMap& map, std::vector<uint8_t>& buffer,
            std::vector<Chunk>& chunks) {
    GenApi::AttachStatistics_t statistics = {};
    bool taken = true;
    try {
        adapter.AttachBuffer(buffer.data(), chunks.data(), static_cast<int64_t>(chunks.size()), &statistics);
    } catch (const GenICam::RuntimeException&) {
        taken = false;
    }
    Require(taken == std::all_of(chunks.begin(), chunks.end(), IsPossible));
    Require(!taken || statistics.NumChunks == static_cast<int>(chunks.size()));
    const GenApi::CIntegerPtr size = map.Get().GetNode("Size");
    const bool numbered = taken && std::any_of(chunks.begin(), chunks.end(),
                                               [](const Chunk& chunk) { return chunk.ChunkID == kNumberId; });
    Require(GenApi::IsReadable(size) == numbered);
    Require(!numbered || CanHaveLength(chunks, size->GetValue()));
    map.ReadAll();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const ChunkMap map;
    if (size < 2)
        return 0;
    // The first two bytes: how many entries there are at most, and how much may be kept of a buffer.
    const size_t count = std::min(data[0] % size_t{32}, (size - 2) / kEntrySize);
    const uint8_t* const entries = data + 2;
    std::vector<uint8_t> buffer;
    buffer.reserve(std::max<size_t>(1, size - 2 - count * kEntrySize));
    buffer.assign(entries + count * kEntrySize, data + size);
    std::vector<Chunk> chunks;
    for (size_t i = 0; i < count; ++i)
        chunks.push_back(EntryOf(entries + i * kEntrySize, buffer.size()));
    std::vector<Chunk> some(chunks.begin(), chunks.begin() + static_cast<std::ptrdiff_t>(count / 2));
    chunks.reserve(1);
    some.reserve(1);
    GenApi::CChunkAdapterGeneric adapter(&map.Get(), data[1]);
    Attach(adapter, map, buffer, some);
    Attach(adapter, map, buffer, chunks);
    std::vector<uint8_t> next = buffer;
    std::reverse(next.begin(), next.end());
    next.reserve(1);
    try {
        adapter.UpdateBuffer(next.data());
        map.ReadAll();
    } catch (const GenICam::LogicalErrorException&) {
        // No list has been taken.
    }
    adapter.DetachBuffer();
    map.ReadAll();
    return 0;
}
