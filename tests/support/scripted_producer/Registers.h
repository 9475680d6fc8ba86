#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Scripted {

/// The register space of one port: sparse, zero where nothing was written.
class Registers {
public:
    void Write(uint64_t address, const void* bytes, size_t size);
    void Read(uint64_t address, void* bytes, size_t size) const;

private:
    static constexpr uint64_t pageSize = 4096;
    std::map<uint64_t, std::array<uint8_t, pageSize>> m_pages;
};

/// A port: its registers and the URLs of its description files.
struct Port {
    Registers registers;
    std::vector<std::string> urls;
};

/// The ports of all modules, by symbol. A module's port is made from the one of its kind on first use.
class Ports {
public:
    /// The port of a module, or null where its kind has none.
    Port* Find(const std::string& symbol);

    /// Calls action for the port that the symbol names; for a kind for that of every module, now and later.
    template <class Action>
    void ForEach(const std::string& symbol, Action action) {
        if (Find(symbol) == nullptr)
            m_ports[symbol];
        for (auto& [name, port] : m_ports)
            if (name == symbol || KindOf(name) == symbol)
                action(port);
    }

    static std::string KindOf(const std::string& symbol);

private:
    std::map<std::string, Port> m_ports;
};

} // namespace Scripted
