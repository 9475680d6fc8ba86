#include "genapi/src/map/RegisterCode.h"

#include <Base/GCException.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace GENAPI_NAMESPACE::inside {

namespace {

uint64_t MaskOf(int width) {
    return width >= 64 ? ~uint64_t{0} : (uint64_t{1} << width) - 1;
}

} // namespace

Field FieldOf(const RegisterPart& reg, int64_t length) {
    const int width = static_cast<int>(8 * length);
    if (!reg.masked)
        return {0, width};
    if (reg.lsb < 0 || reg.msb < 0 || reg.lsb >= width || reg.msb >= width)
        throw OUT_OF_RANGE_EXCEPTION("Bits %lld to %lld lie outside a register of %d.",
                                     static_cast<long long>(reg.lsb), static_cast<long long>(reg.msb), width);
    // Some files give the two ends the other way round.
    const int low = static_cast<int>(std::min(reg.lsb, reg.msb));
    const int high = static_cast<int>(std::max(reg.lsb, reg.msb));
    return {reg.littleEndian ? low : width - 1 - high, high - low + 1};
}

uint64_t LoadBits(const uint8_t* bytes, int64_t length, bool littleEndian) {
    uint64_t bits = 0;
    for (int64_t i = 0; i < length; ++i)
        bits = bits << 8 | bytes[littleEndian ? length - 1 - i : i];
    return bits;
}

void StoreBits(uint8_t* bytes, int64_t length, bool littleEndian, uint64_t bits) {
    for (int64_t i = 0; i < length; ++i, bits >>= 8)
        bytes[littleEndian ? i : length - 1 - i] = static_cast<uint8_t>(bits);
}

std::pair<int64_t, int64_t> FieldRange(Field field, bool isSigned) {
    if (isSigned) {
        const auto highest = static_cast<int64_t>(MaskOf(field.width - 1));
        return {-highest - 1, highest};
    }
    return {0, field.width >= 64 ? std::numeric_limits<int64_t>::max()
                                 : static_cast<int64_t>(MaskOf(field.width))};
}

bool Fits(Field field, bool isSigned, int64_t value) {
    if (field.width >= 64)
        return true;
    const auto [min, max] = FieldRange(field, isSigned);
    return value >= min && value <= max;
}

int64_t ExtractField(uint64_t bits, Field field, bool isSigned) {
    const uint64_t mask = MaskOf(field.width);
    const uint64_t value = (bits >> field.shift) & mask;
    const bool negative = isSigned && (value >> (field.width - 1)) != 0;
    return static_cast<int64_t>(negative ? value | ~mask : value);
}

uint64_t InsertField(uint64_t bits, Field field, int64_t value) {
    const uint64_t mask = MaskOf(field.width) << field.shift;
    return (bits & ~mask) | ((static_cast<uint64_t>(value) << field.shift) & mask);
}

int64_t DecodeInteger(const RegisterPart& reg, const uint8_t* bytes, int64_t length) {
    return ExtractField(LoadBits(bytes, length, reg.littleEndian), FieldOf(reg, length), reg.isSigned);
}

double DecodeFloat(const RegisterPart& reg, const uint8_t* bytes, int64_t length) {
    const uint64_t bits = LoadBits(bytes, length, reg.littleEndian);
    if (length == 4) {
        const auto half = static_cast<uint32_t>(bits);
        float value = 0;
        std::memcpy(&value, &half, sizeof value);
        return value;
    }
    if (length != 8)
        throw RUNTIME_EXCEPTION("A float of %lld bytes is impossible.", static_cast<long long>(length));
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

void EncodeFloat(const RegisterPart& reg, double value, uint8_t* bytes, int64_t length) {
    uint64_t bits = 0;
    if (length == 4) {
        if (value > std::numeric_limits<float>::max() || value < std::numeric_limits<float>::lowest())
            throw OUT_OF_RANGE_EXCEPTION("Value %g does not fit into a float of 4 bytes.", value);
        const auto half = static_cast<float>(value);
        uint32_t pattern = 0;
        std::memcpy(&pattern, &half, sizeof pattern);
        bits = pattern;
    } else if (length == 8) {
        std::memcpy(&bits, &value, sizeof bits);
    } else {
        throw RUNTIME_EXCEPTION("A float of %lld bytes is impossible.", static_cast<long long>(length));
    }
    StoreBits(bytes, length, reg.littleEndian, bits);
}

void SwapWords(uint8_t* bytes, int64_t length) {
    for (int64_t i = 0; i + 4 <= length; i += 4)
        std::reverse(bytes + i, bytes + i + 4);
}

} // namespace GENAPI_NAMESPACE::inside
