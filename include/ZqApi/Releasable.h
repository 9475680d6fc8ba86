#pragma once

namespace ZqApi {

/// What the caller owns: objects from factories and `Create...` operations, and retrieved stream buffers.
///
/// `Release` gives the object back; the pointer must not be used afterwards. Never `delete` such an
/// object. Where an object's own comment says so, `Release` refuses by an exception; the object is then not
/// given back.
class IZqReleasable {
public:
    virtual void Release() = 0;

protected:
    ~IZqReleasable() = default;
};

} // namespace ZqApi
