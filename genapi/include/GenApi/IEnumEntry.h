#pragma once

#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE {

/// One named value of an enumeration.
struct GENAPI_API IEnumEntry : virtual public IValue {
    virtual int64_t GetValue() = 0;
    virtual GENICAM_NAMESPACE::gcstring GetSymbolic() const = 0;
    /// The number that stands for the entry where the enumeration is used as a float.
    virtual double GetNumericValue() = 0;
    virtual bool IsSelfClearing() = 0;
};

} // namespace GENAPI_NAMESPACE
