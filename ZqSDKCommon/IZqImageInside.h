#pragma once

#include <ZqApi/Image.h>

namespace ZqApi {

/// Marks the library's own images: what one of them is copied from must be one.
class IZqImageInside : public IZqImage {
public:
    /// The bytes from the image's first pixel on that belong to its memory, whatever size the image claims.
    virtual size_t GetReadableSize() = 0;

protected:
    ~IZqImageInside() = default;
};

} // namespace ZqApi
