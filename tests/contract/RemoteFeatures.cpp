#include "RemoteFeatures.h"

#include <cstdlib>
#include <pugixml.hpp>
#include <zip.h>

namespace contract {

namespace {

std::string Unzip(const std::string& bytes) {
    zip_source_t* source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, nullptr);
    zip_t* archive = source == nullptr ? nullptr : zip_open_from_source(source, ZIP_RDONLY, nullptr);
    if (archive == nullptr) {
        zip_source_free(source);
        return "";
    }
    zip_stat_t stat;
    std::string text;
    zip_file_t* file = zip_fopen_index(archive, 0, 0);
    if (file != nullptr && zip_stat_index(archive, 0, 0, &stat) == 0) {
        text.resize(stat.size);
        if (zip_fread(file, text.data(), text.size()) != static_cast<zip_int64_t>(text.size()))
            text.clear();
    }
    if (file != nullptr)
        zip_fclose(file);
    zip_close(archive);
    return text;
}

std::string ReadDescription(const Functions& gentl, PORT_HANDLE port) {
    INFO_DATATYPE type = 0;
    uint64_t address = 0;
    uint64_t length = 0;
    size_t size = sizeof address;
    if (gentl.GCGetPortURLInfo(port, 0, URL_INFO_FILE_REGISTER_ADDRESS, &type, &address, &size) !=
        GC_ERR_SUCCESS)
        return "";
    size = sizeof length;
    if (gentl.GCGetPortURLInfo(port, 0, URL_INFO_FILE_SIZE, &type, &length, &size) != GC_ERR_SUCCESS)
        return "";
    std::string bytes(length, '\0');
    size = bytes.size();
    if (gentl.GCReadPort(port, address, bytes.data(), &size) != GC_ERR_SUCCESS)
        return "";
    return bytes.compare(0, 2, "PK") == 0 ? Unzip(bytes) : bytes;
}

} // namespace

struct RemoteFeatures::Document {
    pugi::xml_document xml;
};

struct RemoteFeatures::Register {
    uint64_t address = 0;
    size_t length = 0;
    bool big = false;
};

RemoteFeatures::RemoteFeatures(const Functions& gentl, PORT_HANDLE port)
    : m_gentl(gentl), m_port(port), m_document(std::make_unique<Document>()) {
    m_document->xml.load_string(ReadDescription(gentl, port).c_str());
}

RemoteFeatures::~RemoteFeatures() = default;

bool RemoteFeatures::Find(const char* feature, Register& found) const {
    const pugi::xml_node root = m_document->xml.document_element();
    pugi::xml_node node = root.find_child_by_attribute("Name", feature);
    for (int depth = 0; node && !node.child("Address") && depth < 8; ++depth)
        node = root.find_child_by_attribute("Name", node.child_value("pValue"));
    if (!node || node.child("pAddress") || !node.child("Length"))
        return false;
    found.address = std::strtoull(node.child_value("Address"), nullptr, 0);
    found.length = std::strtoull(node.child_value("Length"), nullptr, 0);
    found.big = std::string(node.child_value("Endianess")) == "BigEndian";
    return found.length > 0 && found.length <= 8;
}

bool RemoteFeatures::Write(const char* feature, uint32_t value) const {
    Register target;
    if (!Find(feature, target))
        return false;
    uint8_t bytes[8] = {};
    for (size_t i = 0; i < target.length && i < 4; ++i)
        bytes[target.big ? target.length - 1 - i : i] = static_cast<uint8_t>(value >> (8 * i));
    size_t size = target.length;
    return m_gentl.GCWritePort(m_port, target.address, bytes, &size) == GC_ERR_SUCCESS;
}

bool RemoteFeatures::Read(const char* feature, uint64_t& value) const {
    Register source;
    uint8_t bytes[8] = {};
    if (!Find(feature, source))
        return false;
    size_t size = source.length;
    if (m_gentl.GCReadPort(m_port, source.address, bytes, &size) != GC_ERR_SUCCESS)
        return false;
    value = 0;
    for (size_t i = 0; i < source.length; ++i)
        value |= uint64_t{bytes[source.big ? source.length - 1 - i : i]} << (8 * i);
    return true;
}

} // namespace contract
