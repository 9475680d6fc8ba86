#pragma once

#include "gentl/GenTL.h"
#include "producer/sim/Failure.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>

namespace zqgentl {

/// Null and all ones are the two pointers that are known to be wrong without touching them.
[[nodiscard]] inline bool IsBadPointer(const void* pointer) noexcept {
    return pointer == nullptr || reinterpret_cast<uintptr_t>(pointer) == UINTPTR_MAX;
}

/// The argument behind a pointer; a bad one is GC_ERR_INVALID_PARAMETER.
template <class T>
T& Required(T* pointer, const char* name) {
    if (IsBadPointer(pointer))
        throw Failure(GenTL::GC_ERR_INVALID_PARAMETER, std::string(name) + " is not a valid pointer");
    return *pointer;
}

/// The same for an argument that may be null, which means that nobody wants the answer.
template <class T>
void CheckOptional(T* pointer, const char* name) {
    if (pointer != nullptr)
        static_cast<void>(Required(pointer, name));
}

/// Writes an answer of `size` bytes: without a buffer only the size that it needs, and into a buffer that is
/// too small nothing at all.
void ReplyBytes(const void* answer, size_t size, void* buffer, size_t* bufferSize);

/// Writes text and its terminating zero.
void ReplyText(const std::string& text, void* buffer, size_t* bufferSize);

/// The value of an information command: a number (pointers and flags too), a text or bytes.
struct InfoValue {
    InfoValue(uint64_t number) : value(number) {}
    InfoValue(bool flag) : value(uint64_t{flag}) {}
    InfoValue(int32_t number) : value(static_cast<uint64_t>(number)) {}
    InfoValue(uint32_t number) : value(uint64_t{number}) {}
    InfoValue(const void* pointer) : value(reinterpret_cast<uintptr_t>(pointer)) {}
    InfoValue(const char* text) : value(std::string(text)) {}
    InfoValue(std::string text) : value(std::move(text)) {}

    std::variant<uint64_t, std::string> value;
};

/// One information command of Owner. The getter throws Failure where the command has no value now.
template <class Owner>
struct InfoRow {
    int32_t command;
    GenTL::INFO_DATATYPE type;
    InfoValue (*get)(const Owner&);
};

/// Where an information command's answer goes.
struct InfoTarget {
    GenTL::INFO_DATATYPE* type;
    void* buffer;
    size_t* size;
};

void ReplyInfo(GenTL::INFO_DATATYPE type, const InfoValue& value, const InfoTarget& target);
[[noreturn]] void RefuseCommand(int32_t command);

/// Answers a command from the owner's table; one that the table lacks is GC_ERR_NOT_IMPLEMENTED.
template <class Owner, size_t N>
void AnswerInfo(const InfoRow<Owner> (&table)[N], const Owner& owner, int32_t command,
                const InfoTarget& target) {
    for (const InfoRow<Owner>& row : table) {
        if (row.command == command) {
            ReplyInfo(row.type, row.get(owner), target);
            return;
        }
    }
    RefuseCommand(command);
}

} // namespace zqgentl
