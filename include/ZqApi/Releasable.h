#pragma once

namespace ZqApi {

/// What the caller owns: objects from factories and `Create...` operations, and retrieved stream buffers.
///
/// `Release` gives the object back; the pointer must not be used afterwards. Never `delete` such an object.
class IZqReleasable {
public:
    virtual void Release() = 0;

protected:
    ~IZqReleasable() = default;
};

} // namespace ZqApi
