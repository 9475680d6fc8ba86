#pragma once

#include "tools/zq/Picture.h"

namespace ZqTool {

/// How luma and chroma are made of red, green and blue. Plain YCbCr and YUV use all 256 values; the formats
/// that name a standard use 16 to 235 for luma and 16 to 240 for chroma.
enum class ColourMatrix { FullBt601, Bt601, Bt709 };

/// Where luma and chroma lie: groups of pixels that share their chroma.
struct LumaChroma {
    ZqApi::EZqPixelFormatNamingConvention_t format;
    ColourMatrix matrix;
    uint8_t pixels;     ///< of a group
    uint8_t bytes;      ///< of a group
    uint8_t luma[4];    ///< the byte of each pixel
    uint8_t blueChroma; ///< the byte of Cb or U
    uint8_t redChroma;  ///< the byte of Cr or V
};

/// Null for the formats without luma and chroma.
const LumaChroma* FindLumaChroma(ZqApi::EZqPixelFormatNamingConvention_t format);

/// Fills the picture's samples, three of 8 bits a pixel.
void ConvertToRgb(const Frame& frame, const LumaChroma& layout, Picture& picture);

} // namespace ZqTool
