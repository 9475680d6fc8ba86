#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/ScriptedProducer.h"

/// Chunk features for the scripted camera, and the bytes that they are read from.
namespace ZqTest {

/// One chunk as it lies in the buffer, data and identifier.
struct Chunk {
    uint32_t id;
    std::string data;
};

inline std::string Number(uint64_t value, size_t size) {
    return std::string(reinterpret_cast<const char*>(&value), size);
}

inline std::string Reversed(const std::string& bytes) {
    return std::string(bytes.rbegin(), bytes.rend());
}

/// USB3 Vision's layout: each chunk's data, then its identifier and length, little-endian.
inline std::string LittleEndianChunks(const std::vector<Chunk>& chunks) {
    std::string bytes;
    for (const Chunk& chunk : chunks)
        bytes += chunk.data + Number(chunk.id, 4) + Number(chunk.data.size(), 4);
    return bytes;
}

/// GigE Vision's layout: the same, tags big-endian.
inline std::string BigEndianChunks(const std::vector<Chunk>& chunks) {
    std::string bytes;
    for (const Chunk& chunk : chunks)
        bytes += chunk.data + Reversed(Number(chunk.id, 4)) + Reversed(Number(chunk.data.size(), 4));
    return bytes;
}

inline std::string ChunkRegister(const std::string& name, int address, int length, const std::string& port) {
    return "<IntReg Name=\"" + name + "\"><Address>" + std::to_string(address) + "</Address><Length>" +
           std::to_string(length) + "</Length><AccessMode>RO</AccessMode><pPort>" + port +
           "</pPort><Cachable>WriteThrough</Cachable><Sign>Unsigned</Sign>"
           "<Endianess>LittleEndian</Endianess></IntReg>";
}

inline std::string ChunkFeature(const std::string& name, int address, int length, const std::string& port) {
    return "<Integer Name=\"" + name + "\"><pValue>" + name + "Reg</pValue></Integer>" +
           ChunkRegister(name + "Reg", address, length, port);
}

inline std::string ChunkPort(const std::string& name, const std::string& id) {
    return "<Port Name=\"" + name + "\"><ChunkID>" + id + "</ChunkID></Port>";
}

inline std::string ChunkNodes(const std::string& root) {
    return "<Category Name=\"" + root +
           "\"><pFeature>ChunkTimestamp</pFeature><pFeature>ChunkWidth</pFeature>"
           "<pFeature>ChunkHeight</pFeature><pFeature>ChunkPixelFormat</pFeature>"
           "<pFeature>TLParamsLock</pFeature></Category>" +
           ChunkFeature("ChunkTimestamp", 0, 8, "TimestampPort") +
           ChunkFeature("ChunkWidth", 0, 4, "SizePort") + ChunkFeature("ChunkHeight", 4, 4, "SizePort") +
           "<Enumeration Name=\"ChunkPixelFormat\"><EnumEntry Name=\"Mono8\"><Value>17301505</Value>"
           "</EnumEntry><EnumEntry Name=\"Mono16\"><Value>17825799</Value></EnumEntry>"
           "<pValue>ChunkPixelFormatReg</pValue></Enumeration>" +
           ChunkRegister("ChunkPixelFormatReg", 0, 4, "FormatPort") + ChunkPort("TimestampPort", "00001001") +
           ChunkPort("SizePort", "00001002") + ChunkPort("FormatPort", "00001003") +
           "<Integer Name=\"TLParamsLock\"><Value>0</Value></Integer>";
}

/// Gives the scripted camera the chunk features ChunkTimestamp (id 1001), ChunkWidth and ChunkHeight (1002)
/// and ChunkPixelFormat (1003), little-endian registers, under a root of that name.
inline void DescribeChunks(const ScriptedProducer& producer, const std::string& root) {
    std::string text(20000, '\0');
    producer.ReadRegister("REMOTE1", 0x10000, text.data(), text.size());
    text = text.c_str();
    text.insert(text.find("<Port Name"), ChunkNodes(root));
    producer.SetDescription("REMOTE", "camera.xml", text);
}

} // namespace ZqTest
