#pragma once

#include <GenApi/GenApi.h>

/// A map with every way of reading a chunk: by number and by a name that is read itself, from its end and
/// before its beginning, at a place and of a length that other chunks give.
class ChunkMap {
public:
    ChunkMap() : m_map(CNodeMapFactory(GenICam::gcstring(kDescription)).CreateNodeMap()) {}

    GenApi::INodeMap& Get() const { return *m_map._Ptr; }
    void ReadAll() const {
        for (const char* const name : {"Id", "Value", "Before", "Size", "There", "Text"}) {
            const GenApi::CValuePtr value = m_map._GetNode(name);
            if (GenApi::IsReadable(value))
                value->ToString();
        }
    }

private:
    using CNodeMapFactory = GenApi::CNodeMapFactory;

    static constexpr const char* kDescription =
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

    GenApi::CNodeMapRef m_map;
};
