#pragma once

#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE {

/// A floating-point number. The increment is information only: writing does not check it.
struct GENAPI_API IFloat : virtual public IValue {
    virtual void SetValue(double Value, bool Verify = true) = 0;
    virtual IFloat& operator=(double Value) = 0;
    virtual double GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual double operator()() = 0;
    virtual double operator*() = 0;
    virtual double GetMin() = 0;
    virtual double GetMax() = 0;
    virtual bool HasInc() = 0;
    virtual EIncMode GetIncMode() = 0;
    /// RuntimeException when the node has none.
    virtual double GetInc() = 0;
    virtual double_autovector_t GetListOfValidValues(bool bounded = true) = 0;
    virtual ERepresentation GetRepresentation() = 0;
    virtual GENICAM_NAMESPACE::gcstring GetUnit() = 0;
    virtual EDisplayNotation GetDisplayNotation() = 0;
    virtual int64_t GetDisplayPrecision() = 0;
    virtual void ImposeMin(double Value) = 0;
    virtual void ImposeMax(double Value) = 0;
};

} // namespace GENAPI_NAMESPACE
