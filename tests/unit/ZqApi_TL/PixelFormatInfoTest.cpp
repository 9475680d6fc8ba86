#include "ZqApi_TL/ZqPixelFormatInfo.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include <Base/GCException.h>

#include "tests/support/AllocationFailure.h"

using namespace ZqApi;

namespace {

class PixelFormatInfo : public testing::Test {
protected:
    const IZqPixelFormatInfo& Of(EZqPixelFormatNamingConvention_t value) const {
        return *catalogue.GetIZqPixelFormatInfoInside(value);
    }
    /// The format that has this name; Unknown when there is none.
    static EZqPixelFormatNamingConvention_t Named(const std::string& name) {
        for (const PixelFormatRow& row : PixelFormatTable)
            if (name == row.name)
                return row.value;
        return ZqPixelFormat_Unknown;
    }
    std::string ErrorOf(uint32_t value) const {
        try {
            Of(static_cast<EZqPixelFormatNamingConvention_t>(value));
        } catch (const GenICam::RuntimeException& error) {
            EXPECT_STREQ(error.GetSourceFileName(), "ZqApi_TL/ZqPixelFormatInfo");
            return error.GetDescription();
        }
        return "found";
    }

    const CZqPixelFormatInfo catalogue;
};

/// "BayerRG12p" -> "RG"; empty for formats that are no mosaic.
std::string PhaseIn(const std::string& name) {
    const size_t at = name.find("Bayer");
    return at == std::string::npos ? "" : name.substr(at + 5, 2);
}

std::string WithPhase(std::string name, const std::string& phase) {
    return name.replace(name.find("Bayer") + 5, 2, phase);
}

/// The phase that begins one column, one line further on.
std::string ShiftedPhase(std::string phase, bool oddColumn, bool oddLine) {
    const std::string mosaic[2][2] = {{"RG", "GR"}, {"GB", "BG"}};
    for (int line = 0; line < 2; ++line)
        for (int column = 0; column < 2; ++column)
            if (mosaic[line][column] == phase)
                return mosaic[line ^ (oddLine ? 1 : 0)][column ^ (oddColumn ? 1 : 0)];
    return "";
}

} // namespace

TEST_F(PixelFormatInfo, HasEveryFormatOnceByValueAndName) {
    std::set<uint32_t> values;
    std::set<std::string> names;
    for (const PixelFormatRow& row : PixelFormatTable) {
        values.insert(row.value);
        names.insert(row.name);
        EXPECT_EQ(Of(row.value).GetValue(), row.value) << row.name;
        EXPECT_STREQ(Of(row.value).GetName().c_str(), row.name);
        EXPECT_STREQ(Of(row.value).GetDescription().c_str(), row.description);
    }
    EXPECT_EQ(values.size(), 98u);
    EXPECT_EQ(names.size(), 98u);
}

// What the naming convention says of the codes and the names of the formats, against the columns.
TEST_F(PixelFormatInfo, RowsAgreeWithTheirCodesAndNames) {
    for (const PixelFormatRow& row : PixelFormatTable) {
        const IZqPixelFormatInfo& info = Of(row.value);
        const std::string name = row.name;
        EXPECT_EQ(info.GetEachPixelTotalBitCount(), (row.value >> 16) & 0xFF) << name;
        EXPECT_EQ((row.value >> 24) & 0x7F, info.IsColor() && !info.IsBayer() ? 2u : 1u) << name;
        EXPECT_EQ(info.IsBayer(), name.find("Bayer") != std::string::npos) << name;
        EXPECT_EQ(info.IsMono(), name.find("Mono") != std::string::npos) << name;
        EXPECT_EQ(info.IsMono(), !info.IsColor()) << name;
        EXPECT_EQ(info.IsGevSp(), name.rfind("GVSP_", 0) == 0) << name;
        EXPECT_EQ(info.GetPlaneCount(), name.find("_Planar") != std::string::npos ? 3u : 1u) << name;
        EXPECT_EQ(info.IsBGROrder(), name.rfind("RGB", 0) != 0) << name;
        EXPECT_EQ(info.GetEachPixelValidBitCount() % info.GetEachComponentValidBitCount(),
                  name.find("411") == std::string::npos ? 0u : 4u)
            << name;
        EXPECT_LE(info.GetEachPixelValidBitCount(), info.GetEachPixelTotalBitCount()) << name;
        EXPECT_LE(info.GetEachComponentValidBitCount(), info.GetEachComponentTotalBitCount()) << name;
        EXPECT_EQ(info.GetPixelIncrementX() * info.GetEachPixelTotalBitCount() % 8, 0u) << name;
        EXPECT_EQ(info.GetPixelIncrementY(), 1u) << name;
        EXPECT_FALSE(info.IsCompressed()) << name;
    }
}

TEST_F(PixelFormatInfo, KeptOddities) {
    EXPECT_STREQ(Of(ZqPixelFormat_BayerGR10p).GetDescription().c_str(), "Bayer Blue-Green 10-bit packed");
    EXPECT_STREQ(Of(ZqPixelFormat_BayerRG10p).GetDescription().c_str(), "Bayer Green-Blue 10-bit packed");
    EXPECT_STREQ(Of(ZqPixelFormat_BayerGB12p).GetDescription().c_str(), "Bayer Green-Red 12-bit packed");
    EXPECT_STREQ(Of(ZqPixelFormat_BayerBG14p).GetDescription().c_str(), "Bayer Red-Green 14-bit packed");
    EXPECT_EQ(Of(ZqPixelFormat_BayerGR14).GetEachComponentTotalBitCount(), 14u);
    EXPECT_EQ(Of(ZqPixelFormat_Mono14).GetEachComponentTotalBitCount(), 16u);
    EXPECT_EQ(Of(ZqPixelFormat_BayerBG14p).GetPixelIncrementX(), 8u);
    EXPECT_EQ(Of(ZqPixelFormat_Mono14p).GetPixelIncrementX(), 4u);
    EXPECT_EQ(Of(ZqPixelFormat_YCbCr422_8).GetLinePitchAlignment(), 3u);
    EXPECT_EQ(Of(ZqPixelFormat_YCbCr601_422_8).GetLinePitchAlignment(), 4u);
    EXPECT_EQ(Of(ZqPixelFormat_YUV411_8_UYYVYY).GetLinePitchAlignment(), 6u);
    EXPECT_EQ(static_cast<uint32_t>(ZqPixelFormat_CBGR10p32), 0x82200001u);
}

TEST_F(PixelFormatInfo, ColorFilterFollowsTheLowestBits) {
    const IZqPixelFormatInfo& bayer = Of(ZqPixelFormat_BayerRG8);
    EXPECT_EQ(bayer.GetPixelColorFilter(0, 0), ZqPixelColorFilter_BayerRG);
    EXPECT_EQ(bayer.GetPixelColorFilter(1, 0), ZqPixelColorFilter_BayerGR);
    EXPECT_EQ(bayer.GetPixelColorFilter(0, 1), ZqPixelColorFilter_BayerGB);
    EXPECT_EQ(bayer.GetPixelColorFilter(3, 5), ZqPixelColorFilter_BayerBG);
    EXPECT_EQ(bayer.GetPixelColorFilter(SIZE_MAX, SIZE_MAX - 1), ZqPixelColorFilter_BayerGR);
    EXPECT_EQ(Of(ZqPixelFormat_Mono8).GetPixelColorFilter(1, 1), ZqPixelColorFilter_Mono);
    EXPECT_EQ(Of(ZqPixelFormat_RGB8).GetPixelColorFilter(1, 1), ZqPixelColorFilter_None);
}

TEST_F(PixelFormatInfo, ColorFilterOfEveryMosaicIsItsPhaseShifted) {
    const auto filterOf = [](const std::string& phase) {
        return phase == "RG"   ? ZqPixelColorFilter_BayerRG
               : phase == "GR" ? ZqPixelColorFilter_BayerGR
               : phase == "GB" ? ZqPixelColorFilter_BayerGB
                               : ZqPixelColorFilter_BayerBG;
    };
    for (const PixelFormatRow& row : PixelFormatTable)
        for (size_t position = 0; position < 4 && row.isBayer; ++position) {
            const size_t x = position % 2;
            const size_t y = position / 2;
            EXPECT_EQ(Of(row.value).GetPixelColorFilter(x, y),
                      filterOf(ShiftedPhase(PhaseIn(row.name), x != 0, y != 0)))
                << row.name << " " << x << "," << y;
        }
}

TEST_F(PixelFormatInfo, OffsetOfAPackedMosaicExistsAtEvenColumnsOnly) {
    const IZqPixelFormatInfo& packed = Of(ZqPixelFormat_BayerRG12p);
    EXPECT_EQ(static_cast<uint32_t>(packed.GetOffsettedPixelFormat(1, 0)), 0xFFFFFFFFu);
    EXPECT_EQ(packed.GetOffsettedPixelFormat(1, 1), ZqPixelFormat_Unknown);
    EXPECT_EQ(packed.GetOffsettedPixelFormat(0, 1), ZqPixelFormat_BayerGB12p);
    EXPECT_EQ(packed.GetOffsettedPixelFormat(2, 2), ZqPixelFormat_BayerRG12p);
    EXPECT_EQ(Of(ZqPixelFormat_GVSP_BayerGR12Packed).GetOffsettedPixelFormat(0, 1),
              ZqPixelFormat_GVSP_BayerBG12Packed);
    EXPECT_EQ(Of(ZqPixelFormat_BayerGR8).GetOffsettedPixelFormat(1, 0), ZqPixelFormat_BayerRG8);
    EXPECT_EQ(Of(ZqPixelFormat_BayerGR4p).GetOffsettedPixelFormat(1, 1), ZqPixelFormat_BayerGB4p);
    EXPECT_EQ(Of(ZqPixelFormat_Mono8).GetOffsettedPixelFormat(1, 1), ZqPixelFormat_Mono8);
}

// By name: the family is what the name says beside the phase, and names with "10p", "12p", "14p" or "Packed"
// are packed across bytes.
TEST_F(PixelFormatInfo, OffsetOfEveryFormatKeepsItsFamily) {
    for (const PixelFormatRow& row : PixelFormatTable)
        for (size_t position = 0; position < 4; ++position) {
            const size_t x = position % 2;
            const size_t y = position / 2;
            const std::string name = row.name;
            EZqPixelFormatNamingConvention_t expected = row.value;
            if (row.isBayer && position != 0)
                expected = Named(WithPhase(name, ShiftedPhase(PhaseIn(name), x != 0, y != 0)));
            for (const char* const packed : {"10p", "12p", "14p", "Packed"})
                if (row.isBayer && x != 0 && name.find(packed) != std::string::npos)
                    expected = ZqPixelFormat_Unknown;
            EXPECT_EQ(Of(row.value).GetOffsettedPixelFormat(x + 2, y + 4), expected)
                << name << " " << x << "," << y;
        }
}

TEST_F(PixelFormatInfo, RequiredLinePitch) {
    EXPECT_EQ(Of(ZqPixelFormat_Mono12p).GetRequiredLinePitch(5, 4), 8u);
    EXPECT_EQ(Of(ZqPixelFormat_Mono10p).GetRequiredLinePitch(5, 0), 7u);
    EXPECT_EQ(Of(ZqPixelFormat_RGB8).GetRequiredLinePitch(3, 4), 12u);
    EXPECT_EQ(Of(ZqPixelFormat_RGB8).GetRequiredLinePitch(3, 8), 16u);
    EXPECT_EQ(Of(ZqPixelFormat_RGB8).GetRequiredLinePitch(3, 1), 9u);
    EXPECT_EQ(Of(ZqPixelFormat_RGB8_Planar).GetRequiredLinePitch(10, 1), 10u);
    EXPECT_EQ(Of(ZqPixelFormat_RGB10_Planar).GetRequiredLinePitch(10, 1), 20u);
    EXPECT_EQ(Of(ZqPixelFormat_YCbCr422_8).GetRequiredLinePitch(2, 3), 6u);
    EXPECT_EQ(Of(ZqPixelFormat_Mono8).GetRequiredLinePitch(0, 4), 0u);
}

TEST_F(PixelFormatInfo, ComponentCounts) {
    EXPECT_EQ(Of(ZqPixelFormat_YCbCr411_8).GetEachPixelTotalComponentCount(), 1u);
    EXPECT_EQ(Of(ZqPixelFormat_RGBa8).GetEachPixelTotalComponentCount(), 4u);
    EXPECT_EQ(Of(ZqPixelFormat_RGBa8).GetEachPixelValidComponentCount(), 3u);
    EXPECT_EQ(Of(ZqPixelFormat_BGR10).GetEachPixelTotalComponentCount(), 3u);
    EXPECT_EQ(Of(ZqPixelFormat_BGR10).GetEachPixelValidComponentCount(), 3u);
    EXPECT_EQ(Of(ZqPixelFormat_RGB10p32).GetEachPixelTotalComponentCount(), 3u);
}

TEST_F(PixelFormatInfo, UnknownValuesAreRefused) {
    EXPECT_EQ(ErrorOf(0), "Unknown pixelformat 0x0");
    EXPECT_EQ(ErrorOf(0xFFFFFFFF), "Unknown pixelformat 0xFFFFFFFF");
    EXPECT_EQ(ErrorOf(0x0108abcd), "Unknown pixelformat 0x108ABCD");
    EXPECT_EQ(ErrorOf(Of(ZqPixelFormat_BayerRG12p).GetOffsettedPixelFormat(1, 0)),
              "Unknown pixelformat 0xFFFFFFFF");
    EXPECT_EQ(ErrorOf(ZqPixelFormat_Mono8), "found");
}

TEST_F(PixelFormatInfo, LookUpAllocatesNothing) {
    const uint64_t before = ZqTest::AllocationCountOfThisThread();
    size_t sum = 0;
    for (const PixelFormatRow& row : PixelFormatTable)
        sum += Of(row.value).GetRequiredLinePitch(1, 1) + Of(row.value).GetOffsettedPixelFormat(1, 1);
    EXPECT_NE(sum, 0u);
    EXPECT_EQ(ZqTest::AllocationCountOfThisThread(), before);
}

TEST(PixelFormatInfoConstruction, FailedAllocationLeavesAndLeaksNothing) {
    for (const uint64_t failing : {1, 2, 3, 100, 196}) {
        const ZqTest::FailingAllocation failure(failing);
        EXPECT_THROW(CZqPixelFormatInfo(), std::bad_alloc);
    }
}
