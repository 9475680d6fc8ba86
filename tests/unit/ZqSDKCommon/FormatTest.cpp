#include "ZqSDKCommon/Format.h"

#include <gtest/gtest.h>

#include <cstdio>

using ZqApi::Format;

namespace {

std::string Printed(const void* pointer) {
    char text[64];
    std::snprintf(text, sizeof text, "%p", pointer);
    return text;
}

} // namespace

TEST(Format, LengthPrefixI64Is64Bits) {
    EXPECT_EQ(Format("%I64u", uint64_t{250}), "250");
    EXPECT_EQ(Format("%I64u", UINT64_MAX), "18446744073709551615");
    EXPECT_EQ(Format("%I64d", int64_t{-5000000000}), "-5000000000");
}

TEST(Format, PointersPrintAsTheCLibraryPrintsThem) {
    int object = 0;
    EXPECT_EQ(Format("0x%p", &object), "0x" + Printed(&object));
    EXPECT_EQ(Format("0x%p", static_cast<void*>(nullptr)), "0x(nil)");
    EXPECT_EQ(Format("0x%p", nullptr), "0x(nil)");
    EXPECT_EQ(Format("0x%p", "text").substr(0, 4), "0x0x");
}

TEST(Format, BlankFlagIsDroppedAndItsBlankOnceKept) {
    int object = 0;
    EXPECT_EQ(Format("0x % p, 0x % p) Length:%I64d != %I64d", &object, nullptr, int64_t{4}, int64_t{2}),
              "0x " + Printed(&object) + ", 0x (nil)) Length:4 != 2");
}

TEST(Format, ConversionWithoutLengthTakesTheArgumentsOwnWidth) {
    EXPECT_EQ(Format("%u", size_t{6000000000}), "6000000000");
    EXPECT_EQ(Format("%u", int32_t{-1}), "4294967295");
    EXPECT_EQ(Format("%d", uint32_t{0xFFFFFFFF}), "-1");
    EXPECT_EQ(Format("%d", int32_t{-1003}), "-1003");
    EXPECT_EQ(Format("0x%X", uint32_t{0xFFFFFFFF}), "0xFFFFFFFF");
    EXPECT_EQ(Format("0x%08x", int32_t{2}), "0x00000002");
}

TEST(Format, LongConversionWidensByTheArgumentsSignedness) {
    EXPECT_EQ(Format("%lld", uint32_t{4294967295}), "4294967295");
    EXPECT_EQ(Format("%lld", int32_t{-2}), "-2");
    EXPECT_EQ(Format("%I64u", int32_t{-1}), "18446744073709551615");
}

TEST(Format, TextsOfEveryKind) {
    EXPECT_EQ(Format("%s|%s|%s|%-4s|", "a", std::string("b"), GenICam::gcstring("c"), "d"), "a|b|c|d   |");
    EXPECT_EQ(Format("%s", static_cast<const char*>(nullptr)), "(null)");
}

TEST(Format, TextInArgumentIsNotReadAsFormat) {
    EXPECT_EQ(Format("%s", "100%s%n"), "100%s%n");
}

TEST(Format, PercentSignsAndUnknownConversions) {
    EXPECT_EQ(Format("100%%"), "100%");
    EXPECT_EQ(Format("a%"), "a");
    EXPECT_EQ(Format("%n%d", 1, 2), "2");
    EXPECT_EQ(Format("%*d", 4, 7), "   7");
}

TEST(Format, SurplusPlaceholdersPrintZero) {
    EXPECT_EQ(Format("%d %u %s", 5), "5 0 (null)");
    EXPECT_EQ(Format("0x%p"), "0x(nil)");
}

TEST(Format, WrongKindsPrintSomethingAndCrashNothing) {
    EXPECT_EQ(Format("%s", 42), "42");
    EXPECT_EQ(Format("%d", 2.0), "2");
    EXPECT_EQ(Format("%.1f", 3), "3.0");
    EXPECT_EQ(Format("%c%c", 'o', 'k'), "ok");
}

TEST(Format, EveryConversion) {
    EXPECT_EQ(Format("%i", 5), "5");
    EXPECT_EQ(Format("%o", 8), "10");
    EXPECT_EQ(Format("%X", 255), "FF");
    EXPECT_EQ(Format("%.1e|%.1E|%.1f|%.1F", 1.5, 1.5, 1.5, 1.5), "1.5e+00|1.5E+00|1.5|1.5");
    EXPECT_EQ(Format("%g|%G", 0.5, 1e-10), "0.5|1E-10");
}

TEST(Format, EveryKindServesEveryConversion) {
    int object = 0;
    EXPECT_EQ(Format("0x%I64x", static_cast<void*>(&object)), Printed(&object));
    EXPECT_EQ(Format("%.1f", uint8_t{200}), "200.0");
    EXPECT_EQ(Format("%.1f", int8_t{-100}), "-100.0");
    EXPECT_EQ(Format("%.2f", 2.25), "2.25");
    EXPECT_EQ(Format("%u", 2.6), "3");
    EXPECT_EQ(Format("0x%p", uint32_t{16}), "0x0x10");
}

TEST(Format, ResultMayBeLong) {
    EXPECT_EQ(Format("%s!", std::string(5000, 'x')), std::string(5000, 'x') + "!");
}
