#include "tools/zq/LumaChroma.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

namespace ZqTool {

namespace {

using namespace ZqApi;

constexpr auto full601 = ColourMatrix::FullBt601;
constexpr auto bt601 = ColourMatrix::Bt601;
constexpr auto bt709 = ColourMatrix::Bt709;

constexpr LumaChroma layouts[] = {
    {ZqPixelFormat_YCbCr8, full601, 1, 3, {0}, 1, 2},
    {ZqPixelFormat_YCbCr8_CbYCr, full601, 1, 3, {1}, 0, 2},
    {ZqPixelFormat_YCbCr601_8_CbYCr, bt601, 1, 3, {1}, 0, 2},
    {ZqPixelFormat_YCbCr709_8_CbYCr, bt709, 1, 3, {1}, 0, 2},
    {ZqPixelFormat_YUV8_UYV, full601, 1, 3, {1}, 0, 2},
    {ZqPixelFormat_YCbCr422_8, full601, 2, 4, {0, 2}, 1, 3},
    {ZqPixelFormat_YCbCr601_422_8, bt601, 2, 4, {0, 2}, 1, 3},
    {ZqPixelFormat_YCbCr709_422_8, bt709, 2, 4, {0, 2}, 1, 3},
    {ZqPixelFormat_YUV422_8, full601, 2, 4, {0, 2}, 1, 3},
    {ZqPixelFormat_YCbCr422_8_CbYCrY, full601, 2, 4, {1, 3}, 0, 2},
    {ZqPixelFormat_YCbCr601_422_8_CbYCrY, bt601, 2, 4, {1, 3}, 0, 2},
    {ZqPixelFormat_YCbCr709_422_8_CbYCrY, bt709, 2, 4, {1, 3}, 0, 2},
    {ZqPixelFormat_YUV422_8_UYVY, full601, 2, 4, {1, 3}, 0, 2},
    {ZqPixelFormat_YCbCr411_8, full601, 4, 6, {0, 1, 3, 4}, 2, 5},
    {ZqPixelFormat_YCbCr411_8_CbYYCrYY, full601, 4, 6, {1, 2, 4, 5}, 0, 3},
    {ZqPixelFormat_YCbCr601_411_8_CbYYCrYY, bt601, 4, 6, {1, 2, 4, 5}, 0, 3},
    {ZqPixelFormat_YCbCr709_411_8_CbYYCrYY, bt709, 4, 6, {1, 2, 4, 5}, 0, 3},
    {ZqPixelFormat_YUV411_8_UYYVYY, full601, 4, 6, {1, 2, 4, 5}, 0, 3},
};

/// What each value of luma and chroma adds to red, green and blue, in 65,536ths.
class Terms {
public:
    Terms(double redWeight, double blueWeight, bool full) {
        const double greenWeight = 1 - redWeight - blueWeight;
        const double lumaScale = full ? 1 : 255.0 / 219;
        const double chromaScale = full ? 1 : 255.0 / 224;
        for (int value = 0; value < 256; ++value) {
            const double chroma = (value - 128) * chromaScale;
            const auto i = static_cast<size_t>(value);
            m_luma[i] = Fixed((value - (full ? 0 : 16)) * lumaScale + 0.5);
            m_redOfRed[i] = Fixed(2 * (1 - redWeight) * chroma);
            m_greenOfRed[i] = Fixed(-2 * redWeight * (1 - redWeight) / greenWeight * chroma);
            m_greenOfBlue[i] = Fixed(-2 * blueWeight * (1 - blueWeight) / greenWeight * chroma);
            m_blueOfBlue[i] = Fixed(2 * (1 - blueWeight) * chroma);
        }
    }

    void Convert(uint8_t luma, uint8_t blueChroma, uint8_t redChroma, uint16_t* rgb) const {
        rgb[0] = Sample(m_luma[luma] + m_redOfRed[redChroma]);
        rgb[1] = Sample(m_luma[luma] + m_greenOfRed[redChroma] + m_greenOfBlue[blueChroma]);
        rgb[2] = Sample(m_luma[luma] + m_blueOfBlue[blueChroma]);
    }

private:
    using Table = std::array<int32_t, 256>;

    static int32_t Fixed(double value) { return static_cast<int32_t>(std::lround(value * 65536)); }
    static uint16_t Sample(int32_t fixed) { return static_cast<uint16_t>(std::clamp(fixed / 65536, 0, 255)); }

    Table m_luma{};
    Table m_redOfRed{};
    Table m_greenOfRed{};
    Table m_greenOfBlue{};
    Table m_blueOfBlue{};
};

const Terms& TermsOf(ColourMatrix matrix) {
    static const Terms terms[] = {{0.299, 0.114, true}, {0.299, 0.114, false}, {0.2126, 0.0722, false}};
    return terms[static_cast<size_t>(matrix)];
}

} // namespace

const LumaChroma* FindLumaChroma(EZqPixelFormatNamingConvention_t format) {
    const auto* found = std::find_if(std::begin(layouts), std::end(layouts),
                                     [format](const LumaChroma& each) { return each.format == format; });
    return found == std::end(layouts) ? nullptr : found;
}

void ConvertToRgb(const Frame& frame, const LumaChroma& layout, Picture& picture) {
    const Terms& terms = TermsOf(layout.matrix);
    uint16_t* out = picture.samples.data();
    for (size_t y = 0; y < frame.height; ++y) {
        const uint8_t* group = frame.bytes.data() + y * frame.linePitch;
        for (size_t x = 0; x < frame.width; x += layout.pixels, group += layout.bytes) {
            const size_t pixels = std::min<size_t>(layout.pixels, frame.width - x);
            for (size_t i = 0; i < pixels; ++i, out += 3)
                terms.Convert(group[layout.luma[i]], group[layout.blueChroma], group[layout.redChroma], out);
        }
    }
}

} // namespace ZqTool
