#pragma once

#include "ProducerTest.h"

#include <pugixml.hpp>
#include <set>
#include <zip.h>

struct Url {
    std::string file;
    uint64_t address = 0;
    size_t size = 0;
};

/// local:<file>;<hex address>;<hex size>
inline Url Parse(const std::string& text) {
    EXPECT_EQ(text.substr(0, 6), "local:");
    const size_t first = text.find(';');
    const size_t second = text.find(';', first + 1);
    return {text.substr(6, first - 6), std::stoull(text.substr(first + 1), nullptr, 16),
            std::stoull(text.substr(second + 1), nullptr, 16)};
}

inline std::string Unzip(const std::string& bytes) {
    zip_source_t* source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, nullptr);
    zip_t* archive = zip_open_from_source(source, ZIP_RDONLY, nullptr);
    if (archive == nullptr)
        return "";
    EXPECT_EQ(zip_get_num_entries(archive, 0), 1);
    zip_stat_t stat;
    zip_stat_index(archive, 0, 0, &stat);
    std::string text(stat.size, '\0');
    zip_file_t* file = zip_fopen_index(archive, 0, 0);
    EXPECT_EQ(zip_fread(file, text.data(), text.size()), static_cast<zip_int64_t>(text.size()));
    zip_fclose(file);
    zip_close(archive);
    return text;
}

/// The description files of all ports, with what they say compared with what is there.
class Descriptions : public CameraTest {
protected:
    std::string PortText(void* port, PORT_INFO_CMD command) {
        char text[256] = "";
        size_t size = sizeof text;
        INFO_DATATYPE type = 0;
        EXPECT_EQ(gentl.GCGetPortInfo(port, command, &type, text, &size), GC_ERR_SUCCESS);
        return text;
    }

    bool PortFlag(void* port, PORT_INFO_CMD command) {
        bool8_t flag = false;
        size_t size = sizeof flag;
        INFO_DATATYPE type = 0;
        EXPECT_EQ(gentl.GCGetPortInfo(port, command, &type, &flag, &size), GC_ERR_SUCCESS);
        EXPECT_EQ(type, INFO_DATATYPE_BOOL8);
        return flag;
    }

    std::string ReadUrl(void* port) {
        uint32_t count = 0;
        EXPECT_EQ(gentl.GCGetNumPortURLs(port, &count), GC_ERR_SUCCESS);
        EXPECT_EQ(count, 1U);
        char url[256] = "";
        size_t size = sizeof url;
        INFO_DATATYPE type = 0;
        EXPECT_EQ(gentl.GCGetPortURLInfo(port, 0, URL_INFO_URL, &type, url, &size), GC_ERR_SUCCESS);
        EXPECT_EQ(gentl.GCGetPortURLInfo(port, 1, URL_INFO_URL, &type, url, &size), GC_ERR_INVALID_INDEX);
        return url;
    }

    void Load(void* port, pugi::xml_document& document) {
        const Url url = Parse(ReadUrl(port));
        std::string bytes(url.size, '\0');
        size_t size = bytes.size();
        ASSERT_EQ(gentl.GCReadPort(port, url.address, bytes.data(), &size), GC_ERR_SUCCESS);
        ASSERT_EQ(size, url.size);
        if (url.file.substr(url.file.size() - 4) == ".zip")
            bytes = Unzip(bytes);
        const pugi::xml_parse_result result = document.load_buffer(bytes.data(), bytes.size());
        ASSERT_TRUE(result) << url.file << ": " << result.description() << " at " << result.offset;
    }

    /// Every register behind the port's own Port node is where the description says, with the access it says.
    void ExpectRegisters(void* port, const pugi::xml_node& root, const std::string& portName) {
        size_t registers = 0;
        for (const pugi::xml_node node : root.children()) {
            if (node.child_value("pPort") != portName || !node.child("Length"))
                continue;
            ++registers;
            const uint64_t address = std::stoull(node.child_value("Address"), nullptr, 0);
            std::vector<uint8_t> bytes(std::stoul(node.child_value("Length")));
            size_t size = bytes.size();
            const bool readable = std::string(node.child_value("AccessMode")) != "WO";
            EXPECT_EQ(gentl.GCReadPort(port, address, bytes.data(), &size),
                      readable ? GC_ERR_SUCCESS : GC_ERR_ACCESS_DENIED)
                << node.attribute("Name").value();
        }
        EXPECT_GT(registers, 5U);
    }

    /// Every element that names a node names one that is there.
    void ExpectLinks(const pugi::xml_node& root) {
        std::set<std::string> names;
        for (const pugi::xml_node node : root.children())
            EXPECT_TRUE(names.insert(node.attribute("Name").value()).second)
                << node.attribute("Name").value();
        for (const pugi::xml_node node : root.children()) {
            for (const pugi::xml_node child : node.children()) {
                if (child.name()[0] == 'p') {
                    EXPECT_EQ(names.count(child.child_value()), 1U)
                        << child.name() << " " << child.child_value();
                }
            }
        }
    }

    void ExpectModule(void* port, const char* module, const char* portName,
                      const std::vector<const char*>& features) {
        SCOPED_TRACE(module);
        EXPECT_EQ(PortText(port, PORT_INFO_MODULE), module);
        EXPECT_EQ(PortText(port, PORT_INFO_PORTNAME), portName);
        EXPECT_NE(PortFlag(port, PORT_INFO_LITTLE_ENDIAN), PortFlag(port, PORT_INFO_BIG_ENDIAN));
        pugi::xml_document document;
        ASSERT_NO_FATAL_FAILURE(Load(port, document));
        const pugi::xml_node root = document.child("RegisterDescription");
        EXPECT_TRUE(root.find_child_by_attribute("Port", "Name", portName));
        EXPECT_TRUE(root.find_child_by_attribute("Category", "Name", "Root"));
        for (const char* feature : features)
            EXPECT_TRUE(root.find_child_by_attribute("Name", feature)) << feature;
        ExpectLinks(root);
        ExpectRegisters(port, root, portName);
    }
};
