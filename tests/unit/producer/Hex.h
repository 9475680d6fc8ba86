#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

/// Bytes as hexadecimal text, and back; blanks in the text are skipped.
inline std::string ToHex(const void* data, size_t size) {
    std::string hex;
    char digits[3];
    for (size_t i = 0; i < size; ++i) {
        std::snprintf(digits, sizeof digits, "%02x", static_cast<const uint8_t*>(data)[i]);
        hex += digits;
    }
    return hex;
}

inline std::vector<uint8_t> FromHex(const std::string& hex) {
    std::vector<uint8_t> bytes;
    std::string digits;
    for (const char digit : hex) {
        if (digit == ' ')
            continue;
        digits += digit;
        if (digits.size() == 2) {
            bytes.push_back(static_cast<uint8_t>(std::stoul(digits, nullptr, 16)));
            digits.clear();
        }
    }
    return bytes;
}
