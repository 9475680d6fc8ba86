#pragma once

// Bytes as figures, and what a careless or hostile device makes of them.

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

using ByteRow = std::vector<uint8_t>;

inline ByteRow FromHex(const std::string& digits) {
    ByteRow bytes;
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

inline std::string ToHex(const ByteRow& bytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string digits;
    for (const uint8_t byte : bytes) {
        digits += kDigits[byte >> 4];
        digits += kDigits[byte & 15];
    }
    return digits;
}

/// A few bytes changed, the end cut off or something put behind it. The same for the same generator state.
inline ByteRow Mutated(ByteRow bytes, std::mt19937& random) {
    for (unsigned changes = random() % 4; changes > 0 && !bytes.empty(); --changes) {
        uint8_t& byte = bytes[random() % bytes.size()];
        byte =
            random() % 2 ? static_cast<uint8_t>(random()) : static_cast<uint8_t>(byte ^ 1U << random() % 8);
    }
    if (random() % 4 == 0)
        bytes.resize(random() % (bytes.size() + 1));
    if (random() % 8 == 0)
        bytes.resize(bytes.size() + random() % 32);
    bytes.shrink_to_fit(); // so that a sanitizer sees a read behind the end
    return bytes;
}
