#pragma once

#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE {

/// A text. Bytes pass through as they are; a register's text ends at its first NUL.
struct GENAPI_API IString : virtual public IValue {
    virtual void SetValue(const GENICAM_NAMESPACE::gcstring& Value, bool Verify = true) = 0;
    virtual IString& operator=(const GENICAM_NAMESPACE::gcstring& Value) = 0;
    virtual GENICAM_NAMESPACE::gcstring GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual GENICAM_NAMESPACE::gcstring operator()() = 0;
    virtual GENICAM_NAMESPACE::gcstring operator*() = 0;
    /// In bytes.
    virtual int64_t GetMaxLength() = 0;
};

} // namespace GENAPI_NAMESPACE
