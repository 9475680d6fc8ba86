#pragma once

#include <ZqApi/PixelFormat.h>

namespace ZqApi {

/// A record as the library itself uses it: what an image is laid out by must be one of the catalogue's own.
class IZqPixelFormatInfoInside : public IZqPixelFormatInfo {
protected:
    ~IZqPixelFormatInfoInside() = default;
};

} // namespace ZqApi
