#include "producer/sim/RegisterMap.h"

#include "producer/sim/Failure.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace zqgentl {

namespace {

using Bytes = std::vector<uint8_t>;

std::string AddressText(uint64_t address) {
    char text[32];
    std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(address));
    return text;
}

Bytes Encode(const RegisterValue& value, RegisterKind kind, size_t length, ByteOrder order) {
    Bytes bytes(length, 0);
    if (kind == RegisterKind::Text || kind == RegisterKind::Bytes) {
        const std::string& text = std::get<std::string>(value);
        std::memcpy(bytes.data(), text.data(), std::min(text.size(), length));
    } else if (kind == RegisterKind::Float) {
        uint64_t bits = 0;
        std::memcpy(&bits, &std::get<double>(value), sizeof bits);
        StoreBytes(bytes.data(), bits, bytes.size(), order);
    } else {
        StoreBytes(bytes.data(), static_cast<uint64_t>(std::get<int64_t>(value)), bytes.size(), order);
    }
    return bytes;
}

RegisterValue Decode(const Bytes& bytes, RegisterKind kind, ByteOrder order) {
    if (kind == RegisterKind::Text)
        return std::string(bytes.begin(), std::find(bytes.begin(), bytes.end(), uint8_t{0}));
    if (kind == RegisterKind::Bytes)
        return std::string(bytes.begin(), bytes.end());
    const uint64_t bits = LoadBytes(bytes.data(), bytes.size(), order);
    if (kind == RegisterKind::Float) {
        double number = 0;
        std::memcpy(&number, &bits, sizeof number);
        return number;
    }
    return static_cast<int64_t>(bits);
}

} // namespace

void RegisterMap::AddMemory(uint64_t address, const uint8_t* data, size_t size) {
    Register target;
    target.length = size;
    target.memory = data;
    Add(address, std::move(target));
}

void RegisterMap::Add(uint64_t address, Register target) {
    if (!m_registers.emplace(address, std::move(target)).second)
        throw Failure(GenTL::GC_ERR_ERROR, "two registers at " + AddressText(address));
}

std::vector<RegisterMap::Piece> RegisterMap::Split(uint64_t address, size_t size) const {
    std::vector<Piece> pieces;
    while (size > 0) {
        auto next = m_registers.upper_bound(address);
        if (next == m_registers.begin())
            throw Failure(GenTL::GC_ERR_INVALID_ADDRESS, "no register at " + AddressText(address));
        const auto& [start, target] = *std::prev(next);
        const uint64_t offset = address - start;
        if (offset >= target.length)
            throw Failure(GenTL::GC_ERR_INVALID_ADDRESS, "no register at " + AddressText(address));
        const size_t piece = std::min<uint64_t>(size, target.length - offset);
        pieces.push_back({start, &target, static_cast<size_t>(offset), piece});
        address += piece;
        size -= piece;
    }
    return pieces;
}

void RegisterMap::Read(uint64_t address, void* data, size_t size) const {
    const std::vector<Piece> pieces = Split(address, size);
    for (const Piece& piece : pieces) {
        if (piece.target->memory == nullptr && !piece.target->read)
            throw Failure(GenTL::GC_ERR_ACCESS_DENIED,
                          "the register at " + AddressText(piece.address) + " can only be written");
    }
    auto* bytes = static_cast<uint8_t*>(data);
    for (const Piece& piece : pieces) {
        ReadPiece(piece, bytes);
        bytes += piece.size;
    }
}

void RegisterMap::ReadPiece(const Piece& piece, uint8_t* data) const {
    const Register& target = *piece.target;
    if (target.memory != nullptr) {
        std::memcpy(data, target.memory + piece.offset, piece.size);
        return;
    }
    const Bytes bytes = Encode(target.read(), target.kind, target.length, m_order);
    std::memcpy(data, bytes.data() + piece.offset, piece.size);
}

void RegisterMap::Write(uint64_t address, const void* data, size_t size) const {
    const std::vector<Piece> pieces = Split(address, size);
    for (const Piece& piece : pieces) {
        if (!piece.target->write)
            throw Failure(GenTL::GC_ERR_ACCESS_DENIED,
                          "the register at " + AddressText(piece.address) + " can only be read");
    }
    const auto* bytes = static_cast<const uint8_t*>(data);
    for (const Piece& piece : pieces) {
        WritePiece(piece, bytes);
        bytes += piece.size;
    }
}

void RegisterMap::WritePiece(const Piece& piece, const uint8_t* data) const {
    const Register& target = *piece.target;
    Bytes bytes(target.length, 0);
    if (piece.size != target.length && target.read)
        bytes = Encode(target.read(), target.kind, target.length, m_order);
    std::memcpy(bytes.data() + piece.offset, data, piece.size);
    target.write(Decode(bytes, target.kind, m_order));
}

} // namespace zqgentl
