#pragma once

#include "gentl/GenTL.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Scripted {

/// Where a function writes its answer. Behaviours and rules write through it, so that a rule can keep an
/// output from the caller.
struct Out {
    void* data = nullptr;
    size_t fixedSize = 0;    ///< bytes of an output without a size parameter, else 0
    size_t* size = nullptr;  ///< in: capacity; out: what was written; both in units
    size_t unit = 1;         ///< bytes that *size counts as one
    int32_t* type = nullptr; ///< data type, or the code of GCGetLastError

    GenTL::GC_ERROR Write(GenTL::INFO_DATATYPE dataType, const void* bytes, size_t count) const;
    GenTL::GC_ERROR WriteText(const std::string& text) const;

    template <class T>
    GenTL::GC_ERROR WriteNumber(GenTL::INFO_DATATYPE dataType, T value) const {
        return Write(dataType, &value, sizeof value);
    }

    /// Writes an output without a size parameter.
    template <class T>
    GenTL::GC_ERROR Set(T value) const {
        if (data == nullptr)
            return GenTL::GC_ERR_INVALID_PARAMETER;
        *static_cast<T*>(data) = value;
        return GenTL::GC_ERR_SUCCESS;
    }
};

/// One call of a GenTL function: what rules match on, what the log shows and where the answer goes.
class Call {
public:
    struct Argument {
        enum class Kind { Handle, Number, Hex, Text, Bytes } kind;
        const void* pointer;
        uint64_t number;
        bool isSigned = false;
    };

    explicit Call(const char* name) : function(name) {}

    Call& Handle(const void* handle) { return Add({Argument::Kind::Handle, handle, 0}); }
    Call& Id(const char* text);
    Call& Command(int32_t value);
    Call& Event(int32_t value);
    Call& Index(uint32_t value);
    Call& Address(uint64_t value);
    Call& Number(uint64_t value) { return Add({Argument::Kind::Number, nullptr, value}); }
    Call& Bytes(const void* bytes, size_t count) { return Add({Argument::Kind::Bytes, bytes, count}); }

    /// An output without a size parameter.
    template <class T>
    Call& Into(T* output) {
        out.data = output;
        out.fixedSize = sizeof(T);
        return *this;
    }

    /// A sized output; the log shows its capacity, or "null" for the query of the size.
    Call& Into(int32_t* type, void* buffer, size_t* size, size_t unit = 1);

    const char* function;
    const char* id = nullptr;
    std::optional<int64_t> command;
    std::optional<int64_t> event;
    std::optional<uint64_t> index;
    std::optional<uint64_t> address;
    std::vector<Argument> arguments;
    Out out;

private:
    Call& Add(Argument argument) {
        arguments.push_back(argument);
        return *this;
    }
};

} // namespace Scripted
