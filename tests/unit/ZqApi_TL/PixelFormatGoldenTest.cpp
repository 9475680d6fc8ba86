#include <map>
#include <string>

#include "ZqApi_TL/PixelFormatTable.h"
#include "tests/unit/ZqApi_TL/ModuleTree.h"

namespace ZqTest {
namespace {

std::string Line(const IZqPixelFormatInfo& info) {
    char code[16];
    std::snprintf(code, sizeof code, "%08X", static_cast<uint32_t>(info.GetValue()));
    const auto pair = [](size_t first, size_t second) {
        return std::to_string(first) + "/" + std::to_string(second);
    };
    const auto flag = [](bool set) { return set ? "1" : "0"; };
    return std::string(info.GetName().c_str()) + "|" + code + "|" + info.GetDescription().c_str() + "|" +
           pair(info.GetEachPixelTotalBitCount(), info.GetEachPixelValidBitCount()) + "|" +
           pair(info.GetEachComponentTotalBitCount(), info.GetEachComponentValidBitCount()) + "|" +
           std::to_string(info.GetPlaneCount()) + "|" +
           pair(info.GetPixelIncrementX(), info.GetPixelIncrementY()) + "|" +
           std::to_string(info.GetLinePitchAlignment()) + "|" +
           std::to_string(static_cast<uint32_t>(info.GetPixelColorFilter(0, 0))) + "|" +
           flag(info.IsColor()) + flag(info.IsBayer()) + flag(info.IsBGROrder()) + flag(info.IsGevSp()) +
           "\n";
}

/// FNV-1a, 64 bits.
uint64_t Hash(const std::string& text) {
    uint64_t hash = 0xcbf29ce484222325;
    for (const char c : text)
        hash = (hash ^ static_cast<uint8_t>(c)) * 0x100000001b3;
    return hash;
}

// The figure was worked out from the catalogue's description by another program, not from this table.
TEST(PixelFormatCatalogue, EveryValueOfEveryRecordIsAsPublished) {
    const Library library;
    std::map<uint32_t, std::string> lines;
    for (const PixelFormatRow& row : PixelFormatTable)
        lines[row.value] = Line(*GetIZqPixelFormatInfo(row.value));
    ASSERT_EQ(lines.size(), 98u);
    std::string all;
    for (const auto& [value, line] : lines)
        all += line;
    EXPECT_EQ(Hash(all), 0x16a37cf8b63096cbu) << all;
}

} // namespace
} // namespace ZqTest
