#pragma once

// A small language for node-map tests: XML snippets, a fake register space that counts, short access to
// nodes.

#include <GenApi/GenApi.h>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

/// Memory of any size that starts as zeros, and knows how it was used.
class FakePort final : virtual public GenApi::IPort {
public:
    void Read(void* buffer, int64_t address, int64_t length) override {
        ++reads;
        if (failure)
            throw NoAnswer();
        for (int64_t i = 0; i < length; ++i)
            static_cast<uint8_t*>(buffer)[i] = memory[address + i];
    }
    void Write(const void* buffer, int64_t address, int64_t length) override {
        ++writes;
        if (mode != GenApi::RW && mode != GenApi::WO)
            throw RUNTIME_EXCEPTION("Port is not writable.");
        if (failure)
            throw NoAnswer();
        const auto* bytes = static_cast<const uint8_t*>(buffer);
        for (int64_t i = 0; i < length; ++i)
            memory[address + i] = bytes[i];
        if (onWrite)
            onWrite();
        log.emplace_back(address, std::vector<uint8_t>(bytes, bytes + length));
    }
    GenApi::EAccessMode GetAccessMode() const override { return mode; }

    void Put(int64_t address, std::initializer_list<int> bytes) {
        for (const int byte : bytes)
            memory[address++] = static_cast<uint8_t>(byte);
    }
    std::vector<int> Bytes(int64_t address, int64_t length) {
        std::vector<int> bytes;
        for (int64_t i = 0; i < length; ++i)
            bytes.push_back(memory[address + i]);
        return bytes;
    }
    /// Accesses since the last call.
    int TakeReads() { return std::exchange(reads, 0); }
    int TakeWrites() { return std::exchange(writes, 0); }

    std::map<int64_t, uint8_t> memory;
    std::vector<std::pair<int64_t, std::vector<uint8_t>>> log;
    int reads = 0;
    int writes = 0;
    bool failure = false;
    std::function<void()> onWrite;
    GenApi::EAccessMode mode = GenApi::RW;

private:
    static GenICam::TimeoutException NoAnswer() { return TIMEOUT_EXCEPTION("no answer"); }
};

/// A whole description around some nodes; the port "Device" is there already.
inline std::string Describe(const std::string& nodes) {
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
           "<RegisterDescription ModelName=\"Model\" VendorName=\"Vendor\" StandardNameSpace=\"None\" "
           "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"2\" "
           "MinorVersion=\"3\" SubMinorVersion=\"4\" ProductGuid=\"p\" VersionGuid=\"v\" "
           "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">" +
           nodes + "<Port Name=\"Device\"/></RegisterDescription>";
}

/// A register node of some type: Register("IntReg", "Width", 0x100, 4, "<Sign>Signed</Sign>").
inline std::string Register(const std::string& type, const std::string& name, int64_t address, int length,
                            const std::string& more = "") {
    return "<" + type + " Name=\"" + name + "\">" + more + "<Address>" + std::to_string(address) +
           "</Address><Length>" + std::to_string(length) + "</Length>" +
           (more.find("<AccessMode>") == more.npos ? "<AccessMode>RW</AccessMode>" : "") +
           "<pPort>Device</pPort></" + type + ">";
}
inline std::string IntReg(const std::string& name, int64_t address, int length = 4,
                          const std::string& more = "") {
    return Register("IntReg", name, address, length, more);
}
inline std::string Node(const std::string& type, const std::string& name, const std::string& inside) {
    return "<" + type + " Name=\"" + name + "\">" + inside + "</" + type + ">";
}

/// A node map over a fake port.
class Camera {
public:
    explicit Camera(const std::string& nodes, bool connect = true) : factory(Describe(nodes).c_str()) {
        map = factory.CreateNodeMap("Camera");
        if (connect)
            map._Connect(&port);
    }

    GenApi::INode* Node(const std::string& name) { return map._GetNode(name.c_str()); }
    GenApi::CIntegerPtr Int(const std::string& name) { return Node(name); }
    GenApi::CFloatPtr Float(const std::string& name) { return Node(name); }
    GenApi::CEnumerationPtr Enum(const std::string& name) { return Node(name); }
    GenApi::CBooleanPtr Bool(const std::string& name) { return Node(name); }
    GenApi::CCommandPtr Command(const std::string& name) { return Node(name); }
    GenApi::CStringPtr String(const std::string& name) { return Node(name); }
    GenApi::CRegisterPtr Reg(const std::string& name) { return Node(name); }
    GenApi::CValuePtr Value(const std::string& name) { return Node(name); }
    GenApi::EAccessMode Mode(const std::string& name) { return Node(name)->GetAccessMode(); }
    /// Counts the callbacks of a node.
    int* Watch(const std::string& name, GenApi::ECallbackType type = GenApi::cbPostInsideLock) {
        counts.push_back(std::make_unique<int>(0));
        int* const count = counts.back().get();
        GenApi::Register(
            Node(name), [count](GenApi::INode*) { ++*count; }, type);
        return count;
    }
    /// Whether another thread could use the map now.
    bool IsFree() const {
        GenApi::CLock& lock = map._Ptr->GetLock();
        bool free = false;
        std::thread([&] {
            free = lock.TryLock();
            if (free)
                lock.Unlock();
        }).join();
        return free;
    }

    FakePort port;
    GenApi::CNodeMapFactory factory;
    GenApi::CNodeMapRef map;
    std::vector<std::unique_ptr<int>> counts;
};

/// The message of the exception of class E that `work` throws; another or none fails the test.
template <class E>
std::string Failure(const std::function<void()>& work) {
    try {
        work();
    } catch (const E& failure) {
        return failure.GetDescription();
    } catch (const std::exception& failure) {
        ADD_FAILURE() << "another exception: " << failure.what();
        return {};
    }
    ADD_FAILURE() << "no exception";
    return {};
}

/// The value of a node's property; "(none)" where it has none.
inline GenICam::gcstring Property(Camera& camera, const std::string& node, const char* name) {
    GenICam::gcstring value;
    GenICam::gcstring attribute;
    return camera.Node(node)->GetProperty(name, value, attribute) ? value : GenICam::gcstring("(none)");
}
