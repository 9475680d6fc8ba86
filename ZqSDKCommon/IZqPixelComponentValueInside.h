#pragma once

#include <memory>

#include <ZqApi/PixelComponent.h>

namespace ZqApi {

/// A pixel's components as the image that owns them sees them.
class IZqPixelComponentValueInside : public IZqPixelComponentValue {
public:
    virtual ~IZqPixelComponentValueInside() = default;
};

/// Declared here, where images are, and defined beside the readers, because this folder lies below theirs.
/// Throws std::bad_alloc.
std::unique_ptr<IZqPixelComponentValueInside> CreatePixelComponentReader();

} // namespace ZqApi
