#pragma once

#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE {

/// The bytes behind a node, as they come from the port.
struct GENAPI_API IRegister : virtual public IValue {
    /// `Length` must be the register's length.
    virtual void Set(const uint8_t* pBuffer, int64_t Length, bool Verify = true) = 0;
    /// `Length` must be the register's length.
    virtual void Get(uint8_t* pBuffer, int64_t Length, bool Verify = false, bool IgnoreCache = false) = 0;
    virtual int64_t GetLength(bool Verify = false) = 0;
    virtual int64_t GetAddress(bool Verify = false) = 0;
};

} // namespace GENAPI_NAMESPACE
