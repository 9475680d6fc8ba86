#pragma once

#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE {

/// A folder of features.
struct GENAPI_API ICategory : virtual public IValue {
    /// The listed nodes that have a value, categories among them, in document order.
    virtual void GetFeatures(FeatureList_t& Features) const = 0;
};

} // namespace GENAPI_NAMESPACE
