// Buffers of chunks, as a device may send them. The first byte chooses the adapter; two buffers in a row
// share a map, so that layouts are also found again and replaced.
#include "fuzz/ChunkMap.h"

#include <memory>
#include <vector>

namespace {

void Attach(GenApi::CChunkAdapter& adapter, const ChunkMap& map, std::vector<uint8_t>& buffer) {
    const auto size = static_cast<int64_t>(buffer.size());
    buffer.reserve(1);
    bool taken = true;
    try {
        adapter.AttachBuffer(buffer.data(), size);
    } catch (const GenICam::RuntimeException&) {
        taken = false;
    }
    if (taken != adapter.CheckBufferLayout(buffer.data(), size))
        __builtin_trap();
    map.ReadAll();
    adapter.DetachBuffer();
    map.ReadAll();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const ChunkMap map;
    if (size == 0)
        return 0;
    std::unique_ptr<GenApi::CChunkAdapter> adapter;
    if (data[0] % 2 == 0)
        adapter = std::make_unique<GenApi::CChunkAdapterGEV>(&map.Get(), 64);
    else
        adapter = std::make_unique<GenApi::CChunkAdapterU3V>(&map.Get());
    std::vector<uint8_t> whole(data + 1, data + size);
    std::vector<uint8_t> start(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(data[0] % size));
    Attach(*adapter, map, start);
    Attach(*adapter, map, whole);
    Attach(*adapter, map, whole);
    return 0;
}
