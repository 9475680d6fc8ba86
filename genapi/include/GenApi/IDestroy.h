#pragma once

#include <Base/GCTypes.h>

namespace GENAPI_NAMESPACE {

struct GENAPI_API IDestroy {
    /// Ends the object; every pointer into it is dead afterwards.
    virtual void Destroy() = 0;
    virtual ~IDestroy() = 0;
};

} // namespace GENAPI_NAMESPACE
