#pragma once

#include "Context.h"

namespace contract {

/// A device of the library, by the interface that it is on.
struct FoundDevice {
    std::string interfaceId;
    std::string id;
};

/// The devices of all interfaces, with all of them closed again.
std::vector<FoundDevice> FindDevices(Context& context, TL_HANDLE system);

} // namespace contract
