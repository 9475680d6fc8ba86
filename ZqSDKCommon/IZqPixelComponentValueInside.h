#pragma once

#include <memory>

#include <ZqApi/Image.h>
#include <ZqApi/PixelComponent.h>

namespace ZqApi {

/// What reading a pixel needs to know of an image.
struct ImageMemory {
    IZqImage* image;
    EZqPixelFormatNamingConvention_t format;
    size_t width;
    size_t height;
    const uint8_t* begin;
    size_t linePitch;
    size_t planePitch;
    /// Bytes from `begin` on that may be read.
    size_t readable;
};

/// A pixel's components as the image that owns them sees them.
class IZqPixelComponentValueInside : public IZqPixelComponentValue {
public:
    virtual ~IZqPixelComponentValueInside() = default;

    /// As for the image itself, but without asking it: an image that says all at once is read in a fraction
    /// of the time.
    virtual void SetPixelComponent(const ImageMemory& memory, size_t x, size_t y) = 0;
    using IZqPixelComponentValue::SetPixelComponent;
};

/// Declared here, where images are, and defined beside the readers, because this folder lies below theirs.
/// Throws std::bad_alloc.
std::unique_ptr<IZqPixelComponentValueInside> CreatePixelComponentReader();

} // namespace ZqApi
