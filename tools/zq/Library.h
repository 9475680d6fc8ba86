#pragma once

#include <ZqApi/ZqApi.h>

#include <memory>

namespace ZqTool {

/// Gives an object back to the library; what that throws is dropped, as the command has its result by then.
struct Releaser {
    template <class T>
    void operator()(T* object) const {
        try {
            object->Release();
        } catch (const GenICam::GenericException&) {
        }
    }
};

template <class T>
using Held = std::unique_ptr<T, Releaser>;

/// Keeps the library initialised.
class Library {
public:
    Library() { ZqApi::ZqApiInitialize(ZqApi::ZqApiBuildVersion); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() { ZqApi::ZqApiTerminate(); }
};

} // namespace ZqTool
