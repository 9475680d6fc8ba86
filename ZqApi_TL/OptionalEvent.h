#pragma once

#include <cstring>
#include <memory>
#include <utility>

#include <Base/GCException.h>
#include <ZqApi/Error.h>

namespace ZqApi {

/// Makes an event thread, or null when the producer does not implement the event: no event type is mandatory,
/// so its module works without it. Every other failure leaves.
template <class Event, class... Args>
std::unique_ptr<Event> MakeEventIfImplemented(Args&&... args) {
    try {
        return std::make_unique<Event>(std::forward<Args>(args)...);
    } catch (const CZqGenTLErrorException& error) {
        const bool absent = error.GetError() == GenTL::GC_ERR_NOT_IMPLEMENTED &&
                            std::strcmp(error.GetFunctionName().c_str(), "GCRegisterEvent") == 0;
        if (!absent)
            throw;
        return nullptr;
    }
}

/// As above for an event that needs its port's node map: without a node map there is nobody to tell, and the
/// event counts as absent. Only a failed allocation leaves.
template <class Event, class... Args>
std::unique_ptr<Event> MakeEventIfPossible(Args&&... args) {
    try {
        return std::make_unique<Event>(std::forward<Args>(args)...);
    } catch (const GenICam::BadAllocException&) {
        throw;
    } catch (const GenICam::GenericException&) {
        return nullptr;
    }
}

} // namespace ZqApi
