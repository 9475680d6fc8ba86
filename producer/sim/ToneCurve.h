#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace zqgentl {

/// What happens to every value on its way from the sensor, in one table with an entry for each of 16 bits;
/// none at all leaves values as they are.
using ToneCurve = std::shared_ptr<const std::vector<uint16_t>>;

constexpr size_t lutSize = 256;
using LookUpTable = std::array<uint8_t, lutSize>;

constexpr LookUpTable StraightLookUpTable() {
    LookUpTable table{};
    for (size_t i = 0; i < lutSize; ++i)
        table[i] = static_cast<uint8_t>(i);
    return table;
}

/// The settings that a tone curve follows from: gain, then black level in levels of 8 bits, gamma, and last
/// the look-up table.
struct ToneSettings {
    double gainDb = 0.0;
    double blackLevel = 0.0;
    double gamma = 1.0;
    int64_t lutEnable = 0;
    LookUpTable lut = StraightLookUpTable();

    [[nodiscard]] bool operator==(const ToneSettings& other) const noexcept {
        return gainDb == other.gainDb && blackLevel == other.blackLevel && gamma == other.gamma &&
               lutEnable == other.lutEnable && lut == other.lut;
    }
};

[[nodiscard]] ToneCurve MakeToneCurve(const ToneSettings& settings);

} // namespace zqgentl
