#include "genapi/src/nodes/NumberText.h"

#include "genapi/src/document/Lexical.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

namespace GENAPI_NAMESPACE::inside {

namespace {

std::string Format(const char* format, unsigned long long a, unsigned long long b, unsigned long long c,
                   unsigned long long d, unsigned long long e = 0, unsigned long long f = 0) {
    char text[32];
    std::snprintf(text, sizeof text, format, a, b, c, d, e, f);
    return text;
}

/// Parts between separators, each a number of that base up to 255; nothing when the shape differs.
std::optional<int64_t> FromParts(std::string_view text, char separator, int base, int count) {
    uint64_t value = 0;
    for (int i = 0; i < count; ++i) {
        const size_t end = i + 1 < count ? text.find(separator) : text.size();
        if (end == text.npos || end == 0 || end > 3)
            return std::nullopt;
        unsigned part = 0;
        const auto [stop, error] = std::from_chars(text.data(), text.data() + end, part, base);
        if (error != std::errc() || stop != text.data() + end || part > 255)
            return std::nullopt;
        value = value << 8 | part;
        text.remove_prefix(i + 1 < count ? end + 1 : end);
    }
    return static_cast<int64_t>(value);
}

} // namespace

std::string IntegerText(int64_t value, ERepresentation representation, int bits) {
    auto pattern = static_cast<uint64_t>(value);
    const auto byte = [pattern](int index) {
        return static_cast<unsigned long long>(pattern >> (8 * index) & 0xFF);
    };
    switch (representation) {
    case HexNumber: {
        if (bits < 64)
            pattern &= (uint64_t{1} << bits) - 1;
        char text[32];
        std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(pattern));
        return text;
    }
    case IPV4Address:
        return Format("%llu.%llu.%llu.%llu", byte(3), byte(2), byte(1), byte(0));
    case MACAddress:
        return Format("%02llX:%02llX:%02llX:%02llX:%02llX:%02llX", byte(5), byte(4), byte(3), byte(2),
                      byte(1), byte(0));
    default:
        return std::to_string(value);
    }
}

int64_t IntegerFromText(std::string_view text, const std::string& node) {
    const std::string_view trimmed = Trim(text);
    if (const auto value = ParseInteger(trimmed))
        return *value;
    if (const auto value = FromParts(trimmed, '.', 10, 4))
        return *value;
    if (const auto value = FromParts(trimmed, ':', 16, 6))
        return *value;
    throw INVALID_ARGUMENT_EXCEPTION("'%s' is no value of '%s': a whole number is needed.",
                                     std::string(text).c_str(), node.c_str());
}

std::string FloatText(double value, EDisplayNotation notation, int64_t precision) {
    if (!std::isfinite(value))
        return ShortestText(value);
    const int digits = static_cast<int>(std::clamp<int64_t>(precision, 1, 17));
    char text[400];
    std::to_chars_result result{};
    if (notation == fnFixed) {
        // The precision counts the digits on both sides of the point.
        const int before =
            std::fabs(value) >= 1 ? static_cast<int>(std::floor(std::log10(std::fabs(value)))) + 1 : 1;
        result = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed,
                               std::max(0, digits - before));
    } else if (notation == fnScientific) {
        result = std::to_chars(text, text + sizeof text, value, std::chars_format::scientific, digits - 1);
    } else {
        result = std::to_chars(text, text + sizeof text, value, std::chars_format::general, digits);
    }
    return result.ec == std::errc() ? std::string(text, result.ptr) : ShortestText(value);
}

double FloatFromText(std::string_view text, const std::string& node) {
    if (const auto value = ParseFloat(text))
        return *value;
    throw INVALID_ARGUMENT_EXCEPTION("'%s' is no value of '%s': a number is needed.",
                                     std::string(text).c_str(), node.c_str());
}

} // namespace GENAPI_NAMESPACE::inside
