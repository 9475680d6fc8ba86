#include "genapi/src/map/CallbackRegistry.h"

#include <GenApi/NodeCallback.h>

#include <mutex>
#include <unordered_map>

namespace GENAPI_NAMESPACE {

namespace inside {

namespace {

struct Registry {
    std::mutex mutex;
    CallbackHandleType last = 0;
    std::unordered_map<CallbackHandleType, INode*> nodes;
};

// Never destroyed: node maps in static storage may end after this unit's statics.
Registry& TheRegistry() {
    static Registry* const registry = new Registry;
    return *registry;
}

} // namespace

CallbackHandleType NewCallbackHandle(INode* node) {
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    registry.nodes.emplace(++registry.last, node);
    return registry.last;
}

void ForgetCallbackHandle(CallbackHandleType handle) {
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    registry.nodes.erase(handle);
}

INode* NodeOfCallback(CallbackHandleType handle) {
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    const auto found = registry.nodes.find(handle);
    return found == registry.nodes.end() ? nullptr : found->second;
}

} // namespace inside

CNodeCallback::CNodeCallback(INode* pNode, ECallbackType CallbackType)
    : m_pNode(pNode), m_CallbackType(CallbackType) {}
CNodeCallback::~CNodeCallback() = default;
INode* CNodeCallback::GetNode() {
    return m_pNode;
}
ECallbackType CNodeCallback::GetCallbackType() const {
    return m_CallbackType;
}

void Deregister(CallbackHandleType hCallback) {
    if (INode* node = inside::NodeOfCallback(hCallback))
        node->DeregisterCallback(hCallback);
}

} // namespace GENAPI_NAMESPACE
