#include "ZqSDKCommon/ImageSize.h"

namespace ZqApi {
namespace {

/// Whether IZqPixelFormatInfo::GetRequiredLinePitch stays within 64 bits. An alignment above the line's bytes
/// replaces them, a lower one adds less than they are.
bool HasLinePitch(const IZqPixelFormatInfo& info, size_t width) {
    size_t rounded = 0;
    return !__builtin_mul_overflow(LineBitsOf(info), width, &rounded) &&
           !__builtin_add_overflow(rounded, 7, &rounded);
}

} // namespace

size_t LineBitsOf(const IZqPixelFormatInfo& info) {
    return info.GetPlaneCount() < 2 ? info.GetEachPixelTotalBitCount() : info.GetEachComponentTotalBitCount();
}

ImageSize ImageSizeOf(const IZqPixelFormatInfo& info, size_t width, size_t height,
                      size_t linePitchAlignment) {
    const size_t alignment = linePitchAlignment != 0 ? linePitchAlignment : info.GetLinePitchAlignment();
    if (!HasLinePitch(info, width))
        return {0, 0};
    ImageSize size{info.GetRequiredLinePitch(width, alignment), 0};
    if (__builtin_mul_overflow(size.linePitch, info.GetPlaneCount(), &size.bytes) ||
        __builtin_mul_overflow(size.bytes, height, &size.bytes))
        return {0, 0};
    return size;
}

} // namespace ZqApi
