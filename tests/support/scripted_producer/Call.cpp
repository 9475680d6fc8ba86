#include "tests/support/scripted_producer/Call.h"

#include <cstring>

namespace Scripted {

using namespace GenTL;

GC_ERROR Out::Write(INFO_DATATYPE dataType, const void* bytes, size_t count) const {
    if (size == nullptr)
        return GC_ERR_INVALID_PARAMETER;
    if (data != nullptr) {
        if (*size < count / unit)
            return GC_ERR_BUFFER_TOO_SMALL;
        if (count > 0)
            std::memcpy(data, bytes, count);
    }
    *size = count / unit;
    if (type != nullptr)
        *type = dataType;
    return GC_ERR_SUCCESS;
}

GC_ERROR Out::WriteText(const std::string& text) const {
    return Write(INFO_DATATYPE_STRING, text.c_str(), text.size() + 1);
}

Call& Call::Id(const char* text) {
    id = text;
    return Add({Argument::Kind::Text, text, 0});
}

Call& Call::Command(int32_t value) {
    command = value;
    return Add({Argument::Kind::Number, nullptr, static_cast<uint64_t>(static_cast<int64_t>(value)), true});
}

Call& Call::Event(int32_t value) {
    event = value;
    return Add({Argument::Kind::Number, nullptr, static_cast<uint64_t>(static_cast<int64_t>(value)), true});
}

Call& Call::Index(uint32_t value) {
    index = value;
    return Add({Argument::Kind::Number, nullptr, value});
}

Call& Call::Address(uint64_t value) {
    address = value;
    return Add({Argument::Kind::Hex, nullptr, value});
}

Call& Call::Into(int32_t* type, void* buffer, size_t* size, size_t unit) {
    out.data = buffer;
    out.size = size;
    out.type = type;
    out.unit = unit;
    if (buffer == nullptr || size == nullptr)
        return Add({Argument::Kind::Handle, nullptr, 0});
    return Number(*size);
}

} // namespace Scripted
