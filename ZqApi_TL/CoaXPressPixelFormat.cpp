#include "ZqApi_TL/ZqStreamBufferImage.h"

namespace ZqApi {
namespace {

// A CoaXPress pixel-format code: bits 8 to 11 the kind, 4 to 7 the pattern, 0 to 3 the depth (1 to 5: 8, 10,
// 12, 14, 16).
constexpr EZqPixelFormatNamingConvention_t NONE = ZqPixelFormat_Unknown;

constexpr EZqPixelFormatNamingConvention_t MONO[] = {NONE,
                                                     ZqPixelFormat_Mono8,
                                                     ZqPixelFormat_Mono10,
                                                     ZqPixelFormat_Mono12,
                                                     ZqPixelFormat_Mono14,
                                                     ZqPixelFormat_Mono16};

// By pattern and depth; 14-bit Bayer has no translation.
constexpr EZqPixelFormatNamingConvention_t BAYER[][6] = {
    {NONE, NONE, NONE, NONE, NONE, NONE},
    {NONE, ZqPixelFormat_BayerGR8, ZqPixelFormat_BayerGR10, ZqPixelFormat_BayerGR12, NONE,
     ZqPixelFormat_BayerGR16},
    {NONE, ZqPixelFormat_BayerRG8, ZqPixelFormat_BayerRG10, ZqPixelFormat_BayerRG12, NONE,
     ZqPixelFormat_BayerRG16},
    {NONE, ZqPixelFormat_BayerGB8, ZqPixelFormat_BayerGB10, ZqPixelFormat_BayerGB12, NONE,
     ZqPixelFormat_BayerGB16},
    {NONE, ZqPixelFormat_BayerBG8, ZqPixelFormat_BayerBG10, ZqPixelFormat_BayerBG12, NONE,
     ZqPixelFormat_BayerBG16},
};

constexpr struct {
    uint32_t code;
    EZqPixelFormatNamingConvention_t format;
} COLOUR[] = {{0x401, ZqPixelFormat_RGB8},
              {0x501, ZqPixelFormat_RGBa8},
              {0x721, ZqPixelFormat_YCbCr601_422_8},
              {0x821, ZqPixelFormat_YCbCr709_422_8}};

constexpr uint32_t MONO_KIND = 1;
constexpr uint32_t BAYER_KIND = 3;

} // namespace

EZqPixelFormatNamingConvention_t FromCoaXPressPixelFormat(uint64_t code) {
    const uint32_t kind = code >> 8 & 0xF;
    const uint32_t pattern = code >> 4 & 0xF;
    const uint32_t depth = code & 0xF;
    if (kind == MONO_KIND)
        return depth <= 5 ? MONO[depth] : NONE;
    if (kind == BAYER_KIND)
        return pattern <= 4 && depth <= 5 ? BAYER[pattern][depth] : NONE;
    for (const auto& row : COLOUR)
        if (row.code == (code & 0xFFF))
            return row.format;
    return NONE;
}

} // namespace ZqApi
