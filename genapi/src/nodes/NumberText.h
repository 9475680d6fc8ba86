#pragma once

#include <GenApi/Types.h>

#include <string>

namespace GENAPI_NAMESPACE::inside {

/// A whole number as its representation has it; hexadecimal of at most `bits` bits.
std::string IntegerText(int64_t value, ERepresentation representation, int bits);
/// Any of the forms that IntegerText writes. InvalidArgumentException naming `node` for other texts.
int64_t IntegerFromText(std::string_view text, const std::string& node);
/// With `precision` significant digits; locale-independent.
std::string FloatText(double value, EDisplayNotation notation, int64_t precision);
double FloatFromText(std::string_view text, const std::string& node);

} // namespace GENAPI_NAMESPACE::inside
