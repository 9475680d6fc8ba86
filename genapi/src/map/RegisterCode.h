#pragma once

#include "genapi/src/description/Description.h"

namespace GENAPI_NAMESPACE::inside {

/// The bits of a register that make up its value.
struct Field {
    int shift = 0;
    int width = 0;
};

/// What the file's bit numbers mean: in big-endian registers bit 0 is the most significant one of the
/// register. OutOfRangeException when they lie outside a register of that length.
Field FieldOf(const RegisterPart& reg, int64_t length);

uint64_t LoadBits(const uint8_t* bytes, int64_t length, bool littleEndian);
void StoreBits(uint8_t* bytes, int64_t length, bool littleEndian, uint64_t bits);
bool Fits(Field field, bool isSigned, int64_t value);
int64_t ExtractField(uint64_t bits, Field field, bool isSigned);
uint64_t InsertField(uint64_t bits, Field field, int64_t value);
/// The smallest and the largest value of a field; an unsigned 64-bit one ends at INT64_MAX.
std::pair<int64_t, int64_t> FieldRange(Field field, bool isSigned);

int64_t DecodeInteger(const RegisterPart& reg, const uint8_t* bytes, int64_t length);
double DecodeFloat(const RegisterPart& reg, const uint8_t* bytes, int64_t length);
void EncodeFloat(const RegisterPart& reg, double value, uint8_t* bytes, int64_t length);

/// Turns the bytes of every 4-byte word around; an incomplete last word stays.
void SwapWords(uint8_t* bytes, int64_t length);

} // namespace GENAPI_NAMESPACE::inside
