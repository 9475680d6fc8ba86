#include "tests/unit/ZqApi_TL/ModuleTree.h"

namespace ZqTest {
namespace {

TEST(PixelComponentInfo, UnknownIsAValidKey) {
    const Library library;
    const IZqPixelComponentInfo* const info = GetIZqPixelComponentInfo(ZqPixelComponent_Unknown);
    EXPECT_STREQ(info->GetName().c_str(), "Unknown");
    EXPECT_EQ(info->GetBitCount(), 0u);
    EXPECT_EQ(info->GetValue(), ZqPixelComponent_Unknown);
}

TEST(PixelComponentInfo, Gr8HasItsValueAndBits) {
    const Library library;
    const IZqPixelComponentInfo* const info = GetIZqPixelComponentInfo(ZqPixelComponent_Gr8);
    EXPECT_EQ(static_cast<uint32_t>(info->GetValue()), 0x05080000u);
    EXPECT_STREQ(info->GetName().c_str(), "Gr8");
    EXPECT_EQ(info->GetBitCount(), 8u);
}

TEST(PixelComponentInfo, ValueWithoutRecordIsRefused) {
    const Library library;
    EXPECT_EQ(Catch<GenICam::InvalidArgumentException>([] {
                  GetIZqPixelComponentInfo(static_cast<EZqPixelComponent_t>(0x02010000));
              }).text,
              "EZqPixelComponet_t 33619968 is not supported.");
}

TEST(PixelComponentInfo, FortyFourValuesHaveRecords) {
    const Library library;
    size_t found = 0;
    for (uint32_t kind = 0; kind < 16; ++kind)
        for (uint32_t bits = 0; bits <= 16; ++bits) {
            const auto value = static_cast<EZqPixelComponent_t>(kind << 24 | bits << 16);
            try {
                EXPECT_EQ(GetIZqPixelComponentInfo(value)->GetBitCount(), bits);
                ++found;
            } catch (const GenICam::InvalidArgumentException&) {
            }
        }
    EXPECT_EQ(found, 44u);
}

} // namespace
} // namespace ZqTest
