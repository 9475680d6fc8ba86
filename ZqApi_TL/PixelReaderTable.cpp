#include <algorithm>
#include <array>

#include "ZqApi_TL/PixelFormatTable.h"
#include "ZqApi_TL/PixelReader.h"

namespace ZqApi {
namespace {

// Byte numbers of Y, of Cb or U, and of Cr or V, by the pixel's place in its group of four.
// Kept: groups of 4:4:4 formats take 16 bytes though four pixels are 12, and all their pixels read as the
// first.
constexpr LumaChromaGroup YCYC = {8, {0, 2, 4, 6}, {1, 1, 5, 5}, {3, 3, 7, 7}, true};
constexpr LumaChromaGroup CYCY = {8, {1, 3, 5, 7}, {0, 0, 4, 4}, {2, 2, 6, 6}, true};
// Kept: the last two lumas of YCbCr411_8 are taken from one byte too far on.
constexpr LumaChromaGroup YYCYYC = {6, {0, 1, 5, 6}, {2, 2, 2, 2}, {5, 5, 5, 5}, true};
constexpr LumaChromaGroup CYYCYY = {6, {1, 2, 4, 5}, {0, 0, 0, 0}, {3, 3, 3, 3}, true};
constexpr LumaChromaGroup YCC = {16, {0, 0, 0, 0}, {1, 1, 1, 1}, {2, 2, 2, 2}, true};
constexpr LumaChromaGroup CYC = {16, {1, 1, 1, 1}, {0, 0, 0, 0}, {2, 2, 2, 2}, false};

struct DispatchRow {
    EZqPixelFormatNamingConvention_t format;
    ReadPixel read;
    const LumaChromaGroup* group;
};

constexpr DispatchRow DISPATCH[] = {
    {ZqPixelFormat_Mono1p, SetPixelComponentPacked8, nullptr},
    {ZqPixelFormat_Mono2p, SetPixelComponentPacked8, nullptr},
    {ZqPixelFormat_Mono4p, SetPixelComponentPacked8, nullptr},
    {ZqPixelFormat_Mono8, SetPixelComponentRaw8, nullptr},
    {ZqPixelFormat_Mono10, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_Mono10p, SetPixelComponentPacked16, nullptr},
    {ZqPixelFormat_Mono12, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_Mono12p, SetPixelComponentPacked16, nullptr},
    {ZqPixelFormat_Mono14, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_Mono14p, SetPixelComponentPacked16, nullptr},
    {ZqPixelFormat_Mono16, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_BayerGR4p, SetPixelComponentPacked8, nullptr},
    {ZqPixelFormat_BayerRG4p, SetPixelComponentPacked8, nullptr},
    {ZqPixelFormat_BayerGB4p, SetPixelComponentPacked8, nullptr},
    {ZqPixelFormat_BayerBG4p, SetPixelComponentPacked8, nullptr},
    {ZqPixelFormat_BayerGR8, SetPixelComponentRaw8, nullptr},
    {ZqPixelFormat_BayerGR10, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_BayerGR10p, SetPixelComponentPacked16, nullptr},
    {ZqPixelFormat_BayerGR12, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_BayerGR12p, SetPixelComponentPacked16, nullptr},
    {ZqPixelFormat_BayerGR14, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_BayerGR14p, SetPixelComponentPacked16, nullptr},
    {ZqPixelFormat_BayerGR16, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_BayerRG8, SetPixelComponentRaw8, nullptr},
    {ZqPixelFormat_BayerRG10, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_BayerRG10p, SetPixelComponentPacked16, nullptr},
    {ZqPixelFormat_BayerRG12, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_BayerRG12p, SetPixelComponentPacked16, nullptr},
    {ZqPixelFormat_BayerRG14, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_BayerRG14p, SetPixelComponentPacked16, nullptr},
    {ZqPixelFormat_BayerRG16, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_BayerGB8, SetPixelComponentRaw8, nullptr},
    {ZqPixelFormat_BayerGB10, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_BayerGB10p, SetPixelComponentPacked16, nullptr},
    {ZqPixelFormat_BayerGB12, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_BayerGB12p, SetPixelComponentPacked16, nullptr},
    {ZqPixelFormat_BayerGB14, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_BayerGB14p, SetPixelComponentPacked16, nullptr},
    {ZqPixelFormat_BayerGB16, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_BayerBG8, SetPixelComponentRaw8, nullptr},
    {ZqPixelFormat_BayerBG10, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_BayerBG10p, SetPixelComponentPacked16, nullptr},
    {ZqPixelFormat_BayerBG12, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_BayerBG12p, SetPixelComponentPacked16, nullptr},
    {ZqPixelFormat_BayerBG14, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_BayerBG14p, SetPixelComponentPacked16, nullptr},
    {ZqPixelFormat_BayerBG16, SetPixelComponentRaw16, nullptr},
    {ZqPixelFormat_GVSP_Mono10Packed, SetPixelComponentGEVPacked16, nullptr},
    {ZqPixelFormat_GVSP_Mono12Packed, SetPixelComponentGEVPacked16, nullptr},
    {ZqPixelFormat_GVSP_BayerGR10Packed, SetPixelComponentGEVPacked16, nullptr},
    {ZqPixelFormat_GVSP_BayerGR12Packed, SetPixelComponentGEVPacked16, nullptr},
    {ZqPixelFormat_GVSP_BayerRG10Packed, SetPixelComponentGEVPacked16, nullptr},
    {ZqPixelFormat_GVSP_BayerRG12Packed, SetPixelComponentGEVPacked16, nullptr},
    {ZqPixelFormat_GVSP_BayerGB10Packed, SetPixelComponentGEVPacked16, nullptr},
    {ZqPixelFormat_GVSP_BayerGB12Packed, SetPixelComponentGEVPacked16, nullptr},
    {ZqPixelFormat_GVSP_BayerBG10Packed, SetPixelComponentGEVPacked16, nullptr},
    {ZqPixelFormat_GVSP_BayerBG12Packed, SetPixelComponentGEVPacked16, nullptr},
    {ZqPixelFormat_RGB8, SetPixelComponentBGR8, nullptr},
    {ZqPixelFormat_BGR8, SetPixelComponentBGR8, nullptr},
    {ZqPixelFormat_BGR10, SetPixelComponentBGR16, nullptr},
    {ZqPixelFormat_BGR12, SetPixelComponentBGR16, nullptr},
    {ZqPixelFormat_BGR14, SetPixelComponentBGR16, nullptr},
    {ZqPixelFormat_BGR16, SetPixelComponentBGR16, nullptr},
    {ZqPixelFormat_RGBa8, SetPixelComponentBGR8, nullptr},
    {ZqPixelFormat_BGRa8, SetPixelComponentBGR8, nullptr},
    {ZqPixelFormat_BGRa10, SetPixelComponentBGR16, nullptr},
    {ZqPixelFormat_BGRa12, SetPixelComponentBGR16, nullptr},
    {ZqPixelFormat_BGRa14, SetPixelComponentBGR16, nullptr},
    {ZqPixelFormat_BGRa16, SetPixelComponentBGR16, nullptr},
    {ZqPixelFormat_RGB10p32, SetPixelComponentBGRx10p32, nullptr},
    {ZqPixelFormat_CBGR10p32, SetPixelComponentBGRx10p32, nullptr},
    {ZqPixelFormat_YCbCr8, SetPixelComponentYCbCr8, &YCC},
    {ZqPixelFormat_YCbCr411_8, SetPixelComponentYCbCr8, &YYCYYC},
    {ZqPixelFormat_YCbCr422_8, SetPixelComponentYCbCr8, &YCYC},
    {ZqPixelFormat_YCbCr709_422_8, SetPixelComponentYCbCr8, &YCYC},
    {ZqPixelFormat_RGB8_Planar, SetPixelComponentRGB8_Planar, nullptr},
    {ZqPixelFormat_RGB10_Planar, SetPixelComponentRGB16_Planar, nullptr},
    {ZqPixelFormat_RGB12_Planar, SetPixelComponentRGB16_Planar, nullptr},
    {ZqPixelFormat_RGB16_Planar, SetPixelComponentRGB16_Planar, nullptr},
    {ZqPixelFormat_RGB16, SetPixelComponentBGR16, nullptr},
    {ZqPixelFormat_BGR10p, SetPixelComponentBGRxp, nullptr},
    {ZqPixelFormat_BGR12p, SetPixelComponentBGRxp, nullptr},
    {ZqPixelFormat_RGB10p, SetPixelComponentBGRxp, nullptr},
    {ZqPixelFormat_RGB12p, SetPixelComponentBGRxp, nullptr},
    {ZqPixelFormat_YCbCr601_422_8, SetPixelComponentYCbCr8, &YCYC},
    {ZqPixelFormat_YCbCr411_8_CbYYCrYY, SetPixelComponentYCbCr8, &CYYCYY},
    {ZqPixelFormat_YCbCr601_411_8_CbYYCrYY, SetPixelComponentYCbCr8, &CYYCYY},
    {ZqPixelFormat_YCbCr709_411_8_CbYYCrYY, SetPixelComponentYCbCr8, &CYYCYY},
    {ZqPixelFormat_YCbCr422_8_CbYCrY, SetPixelComponentYCbCr8, &CYCY},
    {ZqPixelFormat_YCbCr601_422_8_CbYCrY, SetPixelComponentYCbCr8, &CYCY},
    {ZqPixelFormat_YCbCr709_422_8_CbYCrY, SetPixelComponentYCbCr8, &CYCY},
    {ZqPixelFormat_YCbCr8_CbYCr, SetPixelComponentYCbCr8, &CYC},
    {ZqPixelFormat_YCbCr601_8_CbYCr, SetPixelComponentYCbCr8, &CYC},
    {ZqPixelFormat_YCbCr709_8_CbYCr, SetPixelComponentYCbCr8, &CYC},
    {ZqPixelFormat_YUV411_8_UYYVYY, SetPixelComponentYUV8, &CYYCYY},
    {ZqPixelFormat_YUV422_8_UYVY, SetPixelComponentYUV8, &CYCY},
    {ZqPixelFormat_YUV8_UYV, SetPixelComponentYUV8, &CYC},
    {ZqPixelFormat_YUV422_8, SetPixelComponentYUV8, &YCYC},
};

// Kinds of components, as their codes have them in the top byte.
enum Kind : uint32_t { MONO = 1, RED, GREEN, BLUE, GREEN_BY_RED, GREEN_BY_BLUE, LUMA, CB, CR, U, V };

constexpr EZqPixelComponent_t ComponentOf(Kind kind, size_t bits) {
    return static_cast<EZqPixelComponent_t>(kind << 24 | static_cast<uint32_t>(bits) << 16);
}

struct Kinds {
    Kind kinds[4];
};

/// What the samples of a pixel are; of a mosaic, of the pixels at its four places.
Kinds KindsOf(const PixelFormatRow& row, const DispatchRow& dispatch) {
    switch (row.filter) {
    case ZqPixelColorFilter_Mono:
        return {{MONO, MONO, MONO, MONO}};
    case ZqPixelColorFilter_BayerRG:
        return {{RED, GREEN_BY_RED, GREEN_BY_BLUE, BLUE}};
    case ZqPixelColorFilter_BayerGR:
        return {{GREEN_BY_RED, RED, BLUE, GREEN_BY_BLUE}};
    case ZqPixelColorFilter_BayerGB:
        return {{GREEN_BY_BLUE, BLUE, RED, GREEN_BY_RED}};
    case ZqPixelColorFilter_BayerBG:
        return {{BLUE, GREEN_BY_BLUE, GREEN_BY_RED, RED}};
    case ZqPixelColorFilter_None:
        break;
    }
    if (dispatch.group == nullptr)
        return row.isBGROrder ? Kinds{{BLUE, GREEN, RED}} : Kinds{{RED, GREEN, BLUE}};
    const bool isYUV = dispatch.read == SetPixelComponentYUV8;
    const Kind chroma1 = isYUV ? U : CB;
    const Kind chroma2 = isYUV ? V : CR;
    return dispatch.group->lumaFirst ? Kinds{{LUMA, chroma1, chroma2}} : Kinds{{chroma1, LUMA, chroma2}};
}

PixelReader ReaderOf(const DispatchRow& dispatch) {
    const PixelFormatRow& row =
        *std::find_if(PixelFormatTable.begin(), PixelFormatTable.end(),
                      [&](const PixelFormatRow& each) { return each.value == dispatch.format; });
    PixelReader reader{dispatch.format,
                       dispatch.read,
                       dispatch.group,
                       row.planes,
                       row.planes < 2 ? row.pixelTotalBits : row.componentTotalBits,
                       row.componentValidBits,
                       row.pixelTotalBits / row.componentTotalBits,
                       {}};
    const Kinds kinds = KindsOf(row, dispatch);
    std::transform(std::begin(kinds.kinds), std::end(kinds.kinds), reader.components,
                   [&](Kind kind) { return ComponentOf(kind, row.componentValidBits); });
    return reader;
}

using Readers = std::array<PixelReader, std::size(DISPATCH)>;

bool IsBefore(const PixelReader& reader, EZqPixelFormatNamingConvention_t format) {
    return reader.format < format;
}

/// In the order of their formats' codes.
const Readers& SortedReaders() {
    static const Readers readers = [] {
        Readers unsorted;
        std::transform(std::begin(DISPATCH), std::end(DISPATCH), unsorted.begin(), ReaderOf);
        std::sort(unsorted.begin(), unsorted.end(), [](const PixelReader& one, const PixelReader& other) {
            return IsBefore(one, other.format);
        });
        return unsorted;
    }();
    return readers;
}

} // namespace

const PixelReader* FindPixelReader(EZqPixelFormatNamingConvention_t format) {
    const Readers& readers = SortedReaders();
    const auto found = std::lower_bound(readers.begin(), readers.end(), format, IsBefore);
    return found != readers.end() && found->format == format ? found : nullptr;
}

} // namespace ZqApi
