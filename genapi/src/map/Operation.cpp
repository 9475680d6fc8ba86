// Operations and the callbacks that they cause.
#include "genapi/src/map/CallbackRegistry.h"
#include "genapi/src/map/NodeMapImpl.h"
#include "genapi/src/nodes/NodeBase.h"

#include <algorithm>

namespace GENAPI_NAMESPACE::inside {

void NodeMapImpl::Operation::RunCallbacks() {
    if (const std::exception_ptr failure = End())
        std::rethrow_exception(failure);
}

// Copies, because a callback may register and deregister.
NodeMapImpl::Registrations NodeMapImpl::Operation::Changed() const {
    Registrations due;
    if (m_map.m_nesting > 0)
        return due;
    for (const NodeIndex node : m_map.m_engine.TakeChanged()) {
        const auto found = m_map.m_callbacks.find(node);
        if (found != m_map.m_callbacks.end() && !m_map.m_suppress)
            due.insert(due.end(), found->second.begin(), found->second.end());
    }
    return due;
}

std::exception_ptr NodeMapImpl::Operation::End() {
    --m_map.m_nesting;
    std::exception_ptr failure;
    Registrations due;
    try {
        due = Changed();
    } catch (...) {
        failure = std::current_exception();
    }
    const auto run = [&](ECallbackType type) {
        for (const std::shared_ptr<Registration>& each : due) {
            if (!each->active)
                continue;
            try {
                (*each->callback)(type);
            } catch (...) {
                if (!failure)
                    failure = std::current_exception();
            }
        }
    };
    run(cbPostInsideLock);
    m_map.m_lock.Unlock();
    run(cbPostOutsideLock);
    return failure;
}

CallbackHandleType NodeMapImpl::RegisterCallback(NodeIndex node, CNodeCallback* callback) {
    if (!callback)
        throw INVALID_ARGUMENT_EXCEPTION("No callback for node '%s'.", m_engine.Name(node).c_str());
    const auto destroy = [](CNodeCallback* it) { it->Destroy(); };
    std::unique_ptr<CNodeCallback, decltype(destroy)> owned(callback, destroy);
    const AutoLock lock(m_lock);
    const CallbackHandleType handle = NewCallbackHandle(NodeAt(node));
    try {
        auto registration = std::make_shared<Registration>(callback, handle);
        static_cast<void>(owned.release());
        m_callbacks[node].push_back(std::move(registration));
    } catch (...) {
        ForgetCallbackHandle(handle);
        throw;
    }
    m_engine.SetHasCallbacks(node, true);
    return handle;
}

bool NodeMapImpl::DeregisterCallback(NodeIndex node, CallbackHandleType handle) {
    std::shared_ptr<Registration> ended;
    const AutoLock lock(m_lock);
    const auto found = m_callbacks.find(node);
    if (found == m_callbacks.end())
        return false;
    Registrations& all = found->second;
    const auto place =
        std::find_if(all.begin(), all.end(), [handle](const auto& each) { return each->handle == handle; });
    if (place == all.end())
        return false;
    ended = *place;
    ended->active = false;
    all.erase(place);
    ForgetCallbackHandle(handle);
    m_engine.SetHasCallbacks(node, !all.empty());
    return true;
}

} // namespace GENAPI_NAMESPACE::inside
