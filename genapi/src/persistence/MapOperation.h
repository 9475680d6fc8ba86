#pragma once

#include "genapi/src/map/NodeMapImpl.h"

namespace GENAPI_NAMESPACE::inside {

/// Runs `work()` as one operation of the map: under its lock, with the callbacks of all changes at its end.
template <class Work>
void AsOneOperation(INodeMap& map, Work&& work) {
    if (auto* const ours = dynamic_cast<NodeMapImpl*>(&map)) {
        ours->Do([&](Engine&) { work(); });
        return;
    }
    const AutoLock lock(map.GetLock());
    work();
}

} // namespace GENAPI_NAMESPACE::inside
