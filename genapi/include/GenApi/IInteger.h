#pragma once

#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE {

/// A whole number. An unsigned 64-bit register gives its bit pattern.
struct GENAPI_API IInteger : virtual public IValue {
    virtual void SetValue(int64_t Value, bool Verify = true) = 0;
    virtual IInteger& operator=(int64_t Value) = 0;
    virtual int64_t GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual int64_t operator()() = 0;
    virtual int64_t operator*() = 0;
    virtual int64_t GetMin() = 0;
    virtual int64_t GetMax() = 0;
    virtual EIncMode GetIncMode() = 0;
    virtual int64_t GetInc() = 0;
    /// Empty unless GetIncMode is listIncrement; `bounded` keeps only members within the limits.
    virtual int64_autovector_t GetListOfValidValues(bool bounded = true) = 0;
    virtual ERepresentation GetRepresentation() = 0;
    virtual GENICAM_NAMESPACE::gcstring GetUnit() = 0;
    /// Narrows the limits on this side only; they never widen.
    virtual void ImposeMin(int64_t Value) = 0;
    virtual void ImposeMax(int64_t Value) = 0;
};

} // namespace GENAPI_NAMESPACE
