#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <Base/GCTypes.h>

namespace GENAPI_NAMESPACE::inside {

/// Towards zero; what doesn't fit sticks to the ends of the range, NaN is 0.
int64_t Truncate(double value);
/// To the nearest, halves away from zero; saturating like Truncate.
int64_t Round(double value);

/// A number that knows whether it is whole. Small enough to travel in two registers.
struct Number {
    bool isInteger = true;
    union {
        int64_t integer = 0;
        double real;
    };

    static constexpr Number Of(int64_t value) {
        Number number;
        number.integer = value;
        return number;
    }
    static constexpr Number Of(double value) { return Number(value); }
    constexpr Number() {}
    double AsDouble() const { return isInteger ? static_cast<double>(integer) : real; }
    int64_t AsInteger() const { return isInteger ? integer : Truncate(real); }
    bool IsTrue() const { return isInteger ? integer != 0 : real != 0; }

private:
    explicit constexpr Number(double value) : isInteger(false), real(value) {}
};

static_assert(sizeof(Number) <= 16, "passed and returned in two registers");

/// Without the white space at both ends.
std::string_view Trim(std::string_view text);
bool EqualIgnoringCase(std::string_view left, std::string_view right);

/// "0x" hexadecimal of up to 64 bits, or decimal with an optional sign; a leading zero is no octal mark. The
/// whole text must be the number.
std::optional<int64_t> ParseInteger(std::string_view text);
/// Decimal point and exponent whatever the locale; INF, -INF and NaN.
std::optional<double> ParseFloat(std::string_view text);
/// A whole number where the text is one, else a float.
std::optional<Number> ParseNumber(std::string_view text);
/// Hexadecimal digits with or without 0x.
std::optional<uint64_t> ParseHexDigits(std::string_view text);

/// The shortest text that reads back as the same value.
std::string ShortestText(double value);

} // namespace GENAPI_NAMESPACE::inside
