#pragma once

#include <cstddef>

#include <ZqApi/PixelFormat.h>

namespace ZqApi {

/// What a pixel takes of its line: of formats in planes, one component.
size_t LineBitsOf(const IZqPixelFormatInfo& info);

/// What an image of some size takes in memory.
struct ImageSize {
    size_t linePitch;
    size_t bytes;
};

/// An alignment of 0 takes the format's own. Both numbers are 0 when one of them is beyond 64 bits.
ImageSize ImageSizeOf(const IZqPixelFormatInfo& info, size_t width, size_t height, size_t linePitchAlignment);

} // namespace ZqApi
