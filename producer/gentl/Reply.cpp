#include "producer/gentl/Reply.h"

#include <cstring>

namespace zqgentl {

namespace {

template <class T>
void ReplyNumber(uint64_t number, const InfoTarget& target) {
    const T value = static_cast<T>(number);
    ReplyBytes(&value, sizeof value, target.buffer, target.size);
}

void ReplyNumberAs(GenTL::INFO_DATATYPE type, uint64_t number, const InfoTarget& target) {
    switch (type) {
    case GenTL::INFO_DATATYPE_INT32:
        return ReplyNumber<int32_t>(number, target);
    case GenTL::INFO_DATATYPE_UINT32:
        return ReplyNumber<uint32_t>(number, target);
    case GenTL::INFO_DATATYPE_UINT64:
        return ReplyNumber<uint64_t>(number, target);
    case GenTL::INFO_DATATYPE_SIZET:
        return ReplyNumber<size_t>(number, target);
    case GenTL::INFO_DATATYPE_PTR:
        return ReplyNumber<uintptr_t>(number, target);
    case GenTL::INFO_DATATYPE_BOOL8:
        return ReplyNumber<uint8_t>(number, target);
    default:
        throw Failure(GenTL::GC_ERR_ERROR, "no number has data type " + std::to_string(type));
    }
}

} // namespace

void ReplyBytes(const void* answer, size_t size, void* buffer, size_t* bufferSize) {
    size_t& capacity = Required(bufferSize, "the size");
    if (buffer != nullptr) {
        Required(static_cast<uint8_t*>(buffer), "the buffer");
        if (capacity < size)
            throw Failure(GenTL::GC_ERR_BUFFER_TOO_SMALL, "the buffer has " + std::to_string(capacity) +
                                                              " bytes, the answer " + std::to_string(size));
        if (size > 0)
            std::memcpy(buffer, answer, size);
    }
    capacity = size;
}

void ReplyText(const std::string& text, void* buffer, size_t* bufferSize) {
    ReplyBytes(text.c_str(), text.size() + 1, buffer, bufferSize);
}

void ReplyInfo(GenTL::INFO_DATATYPE type, const InfoValue& value, const InfoTarget& target) {
    GenTL::INFO_DATATYPE& typeOut = Required(target.type, "the data type");
    if (const auto* number = std::get_if<uint64_t>(&value.value))
        ReplyNumberAs(type, *number, target);
    else if (type == GenTL::INFO_DATATYPE_STRING)
        ReplyText(std::get<std::string>(value.value), target.buffer, target.size);
    else
        ReplyBytes(std::get<std::string>(value.value).data(), std::get<std::string>(value.value).size(),
                   target.buffer, target.size);
    typeOut = type;
}

void RefuseCommand(int32_t command) {
    throw Failure(GenTL::GC_ERR_NOT_IMPLEMENTED,
                  "information command " + std::to_string(command) + " is unknown here");
}

} // namespace zqgentl
