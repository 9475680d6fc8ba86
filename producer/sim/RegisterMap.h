#pragma once

#include "producer/sim/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <variant>
#include <vector>

namespace zqgentl {

/// How the bytes of a register are to be read: a two's complement integer of 1 to 8 bytes, an IEEE 754 number
/// of 8 bytes, text padded with zeros, or bytes as they are.
enum class RegisterKind { Integer, Float, Text, Bytes };

using RegisterValue = std::variant<int64_t, double, std::string>;

/// One register of Owner as a row of a table. A null reader makes it write only, a null writer read only.
template <class Owner>
struct RegisterRow {
    uint64_t address;
    uint32_t length;
    RegisterKind kind;
    RegisterValue (*read)(const Owner&);
    void (*write)(Owner&, const RegisterValue&);
};

/// A register space that is accessed by byte, in pieces of any size and alignment. Built once, then safe to
/// use from any thread as far as the readers and writers of its registers are. Reads and writes throw
/// Failure: GC_ERR_INVALID_ADDRESS where no register is, GC_ERR_ACCESS_DENIED where its access forbids, and
/// what the register's own writer throws. Nothing is written unless every byte of the range may be.
class RegisterMap {
public:
    explicit RegisterMap(ByteOrder order) : m_order(order) {}

    /// Adds the rows of a table; the owner must outlive the map.
    template <class Owner, size_t N>
    void Bind(Owner& owner, const RegisterRow<Owner> (&rows)[N]);

    /// Adds a read-only range; the bytes must outlive the map.
    void AddMemory(uint64_t address, const uint8_t* data, size_t size);

    void Read(uint64_t address, void* data, size_t size) const;
    void Write(uint64_t address, const void* data, size_t size) const;

    [[nodiscard]] ByteOrder Order() const noexcept { return m_order; }

private:
    struct Register {
        uint64_t length = 0;
        RegisterKind kind = RegisterKind::Integer;
        std::function<RegisterValue()> read;
        std::function<void(const RegisterValue&)> write;
        const uint8_t* memory = nullptr;
    };
    /// The part of one register that an access touches.
    struct Piece {
        uint64_t address;
        const Register* target;
        size_t offset;
        size_t size;
    };

    void Add(uint64_t address, Register target);
    [[nodiscard]] std::vector<Piece> Split(uint64_t address, size_t size) const;
    void ReadPiece(const Piece& piece, uint8_t* data) const;
    void WritePiece(const Piece& piece, const uint8_t* data) const;

    ByteOrder m_order;
    std::map<uint64_t, Register> m_registers;
};

template <class Owner, size_t N>
void RegisterMap::Bind(Owner& owner, const RegisterRow<Owner> (&rows)[N]) {
    for (const RegisterRow<Owner>& row : rows) {
        Register target;
        target.length = row.length;
        target.kind = row.kind;
        if (row.read != nullptr)
            target.read = [&owner, read = row.read] { return read(owner); };
        if (row.write != nullptr)
            target.write = [&owner, write = row.write](const RegisterValue& value) { write(owner, value); };
        Add(row.address, std::move(target));
    }
}

} // namespace zqgentl
