// Buffers of chunks, as a device may send them. The first byte chooses the adapter; two buffers in a row
// share a map, so that layouts are also found again and replaced.
#include <GenApi/GenApi.h>

#include <memory>
#include <vector>

namespace {

const char* const kDescription =
    "<RegisterDescription ModelName='M' VendorName='V' SchemaMajorVersion='1' SchemaMinorVersion='1'>"
    "<Port Name='Picture'><ChunkID>00000001</ChunkID><CacheChunkData>Yes</CacheChunkData></Port>"
    "<Port Name='Number'><ChunkID>1001</ChunkID></Port>"
    "<Port Name='Named'><pChunkID>Id</pChunkID></Port>"
    "<StringReg Name='Id'><Address>0</Address><Length>4</Length><pPort>Picture</pPort></StringReg>"
    "<IntReg Name='Value'><Address>0</Address><Length>8</Length><pPort>Number</pPort></IntReg>"
    "<IntReg Name='Before'><Address>-4</Address><Length>4</Length><pPort>Number</pPort></IntReg>"
    "<IntReg "
    "Name='Size'><Address>0x7ffffffffffffff0</Address><Length>8</Length><pPort>Number</pPort></IntReg>"
    "<IntReg Name='There'><pAddress>Value</pAddress><Length>2</Length><pPort>Picture</pPort></IntReg>"
    "<StringReg Name='Text'><Address>1</Address><pLength>Before</pLength><pPort>Named</pPort></StringReg>"
    "<Port Name='Device'/></RegisterDescription>";

void ReadAll(GenApi::INodeMap& map) {
    for (const char* const name : {"Id", "Value", "Before", "Size", "There", "Text"}) {
        const GenApi::CValuePtr value = map.GetNode(name);
        if (GenApi::IsReadable(value))
            value->ToString();
    }
}

void Attach(GenApi::CChunkAdapter& adapter, GenApi::INodeMap& map, std::vector<uint8_t>& buffer) {
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
    ReadAll(map);
    adapter.DetachBuffer();
    ReadAll(map);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static GenApi::CNodeMapFactory factory{GenICam::gcstring(kDescription)};
    static GenApi::CNodeMapRef map(factory.CreateNodeMap());
    if (size == 0)
        return 0;
    std::unique_ptr<GenApi::CChunkAdapter> adapter;
    if (data[0] % 2 == 0)
        adapter = std::make_unique<GenApi::CChunkAdapterGEV>(map._Ptr, 64);
    else
        adapter = std::make_unique<GenApi::CChunkAdapterU3V>(map._Ptr);
    std::vector<uint8_t> whole(data + 1, data + size);
    std::vector<uint8_t> start(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(data[0] % size));
    Attach(*adapter, *map._Ptr, start);
    Attach(*adapter, *map._Ptr, whole);
    Attach(*adapter, *map._Ptr, whole);
    return 0;
}
