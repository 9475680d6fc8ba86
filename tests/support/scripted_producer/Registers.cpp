#include "tests/support/scripted_producer/Registers.h"

#include <algorithm>
#include <cstring>

namespace Scripted {

void Registers::Write(uint64_t address, const void* bytes, size_t size) {
    const auto* from = static_cast<const uint8_t*>(bytes);
    while (size > 0) {
        const uint64_t offset = address % pageSize;
        const auto count = static_cast<size_t>(std::min<uint64_t>(size, pageSize - offset));
        std::memcpy(m_pages[address / pageSize].data() + offset, from, count);
        from += count;
        address += count;
        size -= count;
    }
}

void Registers::Read(uint64_t address, void* bytes, size_t size) const {
    auto* to = static_cast<uint8_t*>(bytes);
    while (size > 0) {
        const uint64_t offset = address % pageSize;
        const auto count = static_cast<size_t>(std::min<uint64_t>(size, pageSize - offset));
        const auto page = m_pages.find(address / pageSize);
        if (page == m_pages.end())
            std::memset(to, 0, count);
        else
            std::memcpy(to, page->second.data() + offset, count);
        to += count;
        address += count;
        size -= count;
    }
}

std::string Ports::KindOf(const std::string& symbol) {
    return symbol.substr(0, symbol.find_last_not_of("0123456789") + 1);
}

Port* Ports::Find(const std::string& symbol) {
    const auto own = m_ports.find(symbol);
    if (own != m_ports.end())
        return &own->second;
    const auto kind = m_ports.find(KindOf(symbol));
    if (kind == m_ports.end())
        return nullptr;
    return &m_ports.emplace(symbol, kind->second).first->second;
}

} // namespace Scripted
