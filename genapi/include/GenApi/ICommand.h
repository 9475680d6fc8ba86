#pragma once

#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE {

/// Something that the device can be told to do.
struct GENAPI_API ICommand : virtual public IValue {
    virtual void Execute(bool Verify = true) = 0;
    virtual void operator()() = 0;
    /// Asks the device, past the cache, whether the command's register has left the command value; true at
    /// once when that register can't be read.
    virtual bool IsDone(bool Verify = true) = 0;
};

} // namespace GENAPI_NAMESPACE
