#include "genapi/src/map/NodeMapImpl.h"

#include "genapi/src/map/CallbackRegistry.h"
#include "genapi/src/nodes/NodeBase.h"

#include <GenApi/NodeMapRef.h>

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;

namespace inside {

namespace {

gcstring ToText(std::string_view text) {
    return gcstring(text.data(), text.size());
}

} // namespace

NodeMapImpl::NodeMapImpl(std::shared_ptr<const Description> description, gcstring deviceName)
    : m_description(std::move(description)), m_deviceName(std::move(deviceName)), m_engine(m_description),
      m_nodes(m_description->nodes.size()) {}

NodeMapImpl::~NodeMapImpl() {
    for (const auto& [node, registrations] : m_callbacks)
        for (const std::shared_ptr<Registration>& each : registrations)
            ForgetCallbackHandle(each->handle);
}

void NodeMapImpl::GetNodes(NodeList_t& Nodes) const {
    const AutoLock lock(m_lock);
    Nodes.clear();
    Nodes.reserve(m_nodes.size());
    for (NodeIndex i = 0; i < m_nodes.size(); ++i)
        Nodes.push_back(NodeAt(i));
}

INode* NodeMapImpl::GetNode(const gcstring& Name) const {
    const std::string_view name(Name.c_str(), Name.size());
    if (INode* node = FindNode(name))
        return node;
    for (const std::string_view prefix : {"Std::", "Cust::"})
        if (name.substr(0, prefix.size()) == prefix)
            return FindNode(name.substr(prefix.size()));
    return nullptr;
}

INode* NodeMapImpl::FindNode(std::string_view name) const {
    return NodeOrNull(m_description->Find(name));
}

NodeBase* NodeMapImpl::NodeAt(NodeIndex node) const {
    const AutoLock lock(m_lock);
    std::unique_ptr<NodeBase>& place = m_nodes[node];
    if (!place)
        place = MakeNode(const_cast<NodeMapImpl&>(*this), node);
    return place.get();
}

INode* NodeMapImpl::NodeOrNull(NodeIndex node) const {
    return node == kNoNode ? nullptr : NodeAt(node);
}

void NodeMapImpl::InvalidateNodes() const {
    Do([](Engine& engine) { engine.InvalidateAll(); });
}

NodeIndex NodeMapImpl::FindPort(std::string_view name) const {
    const NodeIndex named = m_description->Find(name);
    if (named != kNoNode && m_description->nodes[named].port)
        return named;
    NodeIndex only = kNoNode;
    for (const NodeIndex port : m_description->ports) {
        if (m_description->nodes[port].hasEvent || m_description->nodes[port].port->isChunk)
            continue;
        if (only != kNoNode)
            return kNoNode;
        only = port;
    }
    return only;
}

bool NodeMapImpl::Connect(IPort* pPort, const gcstring& PortName) const {
    const NodeIndex port = FindPort(std::string_view(PortName.c_str(), PortName.size()));
    if (port == kNoNode)
        return false;
    Do([=](Engine& engine) { engine.Connect(port, pPort); });
    return true;
}

bool NodeMapImpl::Connect(IPort* pPort) const {
    return Connect(pPort, "Device");
}

gcstring NodeMapImpl::GetDeviceName() {
    return m_deviceName;
}

void NodeMapImpl::Poll(int64_t ElapsedTime) {
    Do([=](Engine& engine) { engine.Poll(ElapsedTime); });
}

CLock& NodeMapImpl::GetLock() const {
    return m_lock;
}

uint64_t NodeMapImpl::GetNumNodes() const {
    return m_nodes.size();
}

bool NodeMapImpl::ParseSwissKnifes(gcstring_vector* pErrors) const {
    if (pErrors)
        for (const Text& error : m_description->formulaErrors)
            pErrors->push_back(ToText(error));
    return m_description->formulaErrors.empty();
}

void NodeMapImpl::SetSuppressCallbackMode(bool Suppress) {
    const AutoLock lock(m_lock);
    m_suppress = Suppress;
}

gcstring NodeMapImpl::GetModelName() {
    return ToText(m_description->document.header.modelName);
}
gcstring NodeMapImpl::GetVendorName() {
    return ToText(m_description->document.header.vendorName);
}
gcstring NodeMapImpl::GetToolTip() {
    return ToText(m_description->document.header.toolTip);
}
gcstring NodeMapImpl::GetStandardNameSpace() {
    return ToText(m_description->document.header.standardNameSpace);
}
gcstring NodeMapImpl::GetProductGuid() {
    return ToText(m_description->document.header.productGuid);
}
gcstring NodeMapImpl::GetVersionGuid() {
    return ToText(m_description->document.header.versionGuid);
}

void NodeMapImpl::GetGenApiVersion(Version_t& Version, uint16_t& Build) {
    Version = {3, 0, 0};
    Build = 0;
}
void NodeMapImpl::GetSchemaVersion(Version_t& Version) {
    const auto& numbers = m_description->document.header.schema;
    Version = {numbers[0], numbers[1], numbers[2]};
}
void NodeMapImpl::GetDeviceVersion(Version_t& Version) {
    const auto& numbers = m_description->document.header.device;
    Version = {numbers[0], numbers[1], numbers[2]};
}

void NodeMapImpl::Destroy() {
    delete this;
}
void NodeMapImpl::AddReference() {
    ++m_references;
}
void NodeMapImpl::DropReference() {
    if (--m_references == 0)
        Destroy();
}

void NodeMapImpl::DeliverEvent(const uint8_t* data, size_t size, uint64_t eventId) {
    Do([=](Engine& engine) {
        for (const NodeIndex node : m_description->withEvent) {
            const NodeDescription& description = m_description->nodes[node];
            if (description.eventId != eventId)
                continue;
            if (description.port)
                engine.AttachEvent(node, data, size);
            else
                engine.Invalidate(node);
        }
    });
}

} // namespace inside

void AcquireNodeMap(INodeMap* pNodeMap) {
    if (auto* map = dynamic_cast<inside::NodeMapImpl*>(pNodeMap))
        map->AddReference();
}

void ReleaseNodeMap(INodeMap* pNodeMap) {
    if (auto* map = dynamic_cast<inside::NodeMapImpl*>(pNodeMap))
        map->DropReference();
}

} // namespace GENAPI_NAMESPACE
