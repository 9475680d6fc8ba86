#include "genapi/src/document/Lexical.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace GENAPI_NAMESPACE::inside {

namespace {

bool IsSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}
char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool HasHexMark(std::string_view text) {
    return text.size() > 2 && text[0] == '0' && Lower(text[1]) == 'x';
}

std::optional<uint64_t> ParseUnsigned(std::string_view digits, int base) {
    uint64_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
    if (error != std::errc() || end != digits.data() + digits.size() || digits.empty())
        return std::nullopt;
    return value;
}

} // namespace

int64_t Truncate(double value) {
    constexpr double kLimit = 9223372036854775808.0;
    if (std::isnan(value))
        return 0;
    if (value >= kLimit)
        return std::numeric_limits<int64_t>::max();
    if (value < -kLimit)
        return std::numeric_limits<int64_t>::min();
    return static_cast<int64_t>(value);
}

int64_t Round(double value) {
    return Truncate(std::round(value));
}

std::string_view Trim(std::string_view text) {
    while (!text.empty() && IsSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

bool EqualIgnoringCase(std::string_view left, std::string_view right) {
    return left.size() == right.size() && std::equal(left.begin(), left.end(), right.begin(),
                                                     [](char a, char b) { return Lower(a) == Lower(b); });
}

std::optional<int64_t> ParseInteger(std::string_view text) {
    text = Trim(text);
    if (HasHexMark(text)) {
        const auto pattern = ParseUnsigned(text.substr(2), 16);
        return pattern ? std::optional<int64_t>(static_cast<int64_t>(*pattern)) : std::nullopt;
    }
    const bool negative = !text.empty() && text[0] == '-';
    if (negative || (!text.empty() && text[0] == '+'))
        text.remove_prefix(1);
    const auto magnitude = ParseUnsigned(text, 10);
    if (!magnitude)
        return std::nullopt;
    if (negative && *magnitude > uint64_t{1} << 63)
        return std::nullopt;
    return static_cast<int64_t>(negative ? ~*magnitude + 1 : *magnitude);
}

std::optional<double> ParseFloat(std::string_view text) {
    text = Trim(text);
    const bool negative = !text.empty() && text[0] == '-';
    if (negative || (!text.empty() && text[0] == '+'))
        text.remove_prefix(1);
    if (EqualIgnoringCase(text, "INF"))
        return negative ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
    if (EqualIgnoringCase(text, "NaN"))
        return std::numeric_limits<double>::quiet_NaN();
    if (text.empty() || !((text[0] >= '0' && text[0] <= '9') || text[0] == '.'))
        return std::nullopt;
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end != text.data() + text.size() || error == std::errc::invalid_argument)
        return std::nullopt;
    // from_chars leaves the value alone when it is out of range; which side decides the exponent's sign.
    if (error == std::errc::result_out_of_range)
        value = text.find("e-") != text.npos || text.find("E-") != text.npos
                    ? 0.0
                    : std::numeric_limits<double>::infinity();
    return negative ? -value : value;
}

std::optional<Number> ParseNumber(std::string_view text) {
    if (const auto integer = ParseInteger(text))
        return Number::Of(*integer);
    if (const auto real = ParseFloat(text))
        return Number::Of(*real);
    return std::nullopt;
}

std::optional<uint64_t> ParseHexDigits(std::string_view text) {
    text = Trim(text);
    if (HasHexMark(text))
        text.remove_prefix(2);
    return ParseUnsigned(text, 16);
}

std::string ShortestText(double value) {
    if (std::isnan(value))
        return "NaN";
    if (std::isinf(value))
        return value < 0 ? "-INF" : "INF";
    char text[32];
    const auto [end, error] = std::to_chars(text, text + sizeof text, value);
    return error == std::errc() ? std::string(text, end) : std::string();
}

} // namespace GENAPI_NAMESPACE::inside
