#pragma once

#include <ZqApi/Image.h>

namespace ZqApi {

/// Marks the library's own images: what one of them is copied from must be one.
class IZqImageInside : public IZqImage {
protected:
    ~IZqImageInside() = default;
};

} // namespace ZqApi
