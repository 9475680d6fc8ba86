#pragma once

#include <GenApi/IPort.h>

namespace GENAPI_NAMESPACE {

/// The side of a port node that takes the implementation.
struct GENAPI_API IPortConstruct : virtual public IPort {
    /// Connects the port node; null disconnects. The implementation is not owned.
    virtual void SetPortImpl(IPort* pPort) = 0;
    virtual EYesNo GetSwapEndianess() = 0;
};

} // namespace GENAPI_NAMESPACE
