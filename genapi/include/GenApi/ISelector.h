#pragma once

#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE {

/// A node whose value chooses which instance of other features is seen.
struct GENAPI_API ISelector : virtual public IBase {
    virtual bool IsSelector() const = 0;
    virtual void GetSelectedFeatures(FeatureList_t& Selected) const = 0;
    virtual void GetSelectingFeatures(FeatureList_t& Selecting) const = 0;
};

} // namespace GENAPI_NAMESPACE
