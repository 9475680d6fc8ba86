#pragma once

#include <array>
#include <cstddef>

#include <ZqApi/PixelFormat.h>

namespace ZqApi {

/// All that is known of one pixel format; everything else is derived from it.
struct PixelFormatRow {
    EZqPixelFormatNamingConvention_t value;
    const char* name;
    const char* description;
    size_t pixelTotalBits;
    size_t pixelValidBits;
    size_t componentTotalBits;
    size_t componentValidBits;
    size_t planes;
    size_t incrementX;
    size_t linePitchAlignment;
    EZqPixelColorFilter_t filter;
    bool isColor;
    bool isBayer;
    bool isBGROrder;
    bool isGevSp;
};

/// The formats of the catalogue. Oddities are kept as they are: packed Bayer formats are described as another
/// phase, the unpacked 14-bit ones have components of 14 bits where Mono14 has 16, and siblings differ in
/// alignment.
extern const std::array<PixelFormatRow, 98> PixelFormatTable;

} // namespace ZqApi
