#include "genapi/src/nodes/NodeBase.h"

#include <GenApi/EnumClasses.h>
#include <GenApi/IValue.h>

#include <algorithm>

namespace GENAPI_NAMESPACE::inside {

using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;

namespace {

gcstring ToText(std::string_view text) {
    return gcstring(text.data(), text.size());
}

std::string VersionText(const uint16_t (&numbers)[3]) {
    return std::to_string(numbers[0]) + "." + std::to_string(numbers[1]) + "." + std::to_string(numbers[2]);
}

void ReplaceAll(std::string& text, const std::string& what, std::string_view with) {
    for (size_t at = text.find(what); at != text.npos; at = text.find(what, at + with.size()))
        text.replace(at, what.size(), with);
}

EInterfaceType InterfaceOf(NodeType type) {
    switch (type) {
    case NodeType::Category:
        return intfICategory;
    case NodeType::Integer:
    case NodeType::IntReg:
    case NodeType::MaskedIntReg:
    case NodeType::IntSwissKnife:
    case NodeType::IntConverter:
    case NodeType::IntKey:
    case NodeType::AdvFeatureLock:
    case NodeType::SmartFeature:
        return intfIInteger;
    case NodeType::Float:
    case NodeType::FloatReg:
    case NodeType::SwissKnife:
    case NodeType::Converter:
        return intfIFloat;
    case NodeType::Boolean:
        return intfIBoolean;
    case NodeType::Command:
        return intfICommand;
    case NodeType::Enumeration:
        return intfIEnumeration;
    case NodeType::EnumEntry:
        return intfIEnumEntry;
    case NodeType::String:
    case NodeType::StringReg:
    case NodeType::TextDesc:
        return intfIString;
    case NodeType::Register:
    case NodeType::ConfRom:
        return intfIRegister;
    case NodeType::Port:
        return intfIPort;
    case NodeType::Plain:
    case NodeType::Other:
        break;
    }
    return intfIBase;
}

} // namespace

EAccessMode NodeBase::GetAccessMode() const {
    const AutoLock lock(m_map.GetLock());
    return m_map.GetEngine().Mode(m_index);
}

gcstring NodeBase::GetName(bool FullQualified) const {
    const gcstring name = ToText(Description().name);
    return FullQualified ? (Description().standard ? "Std::" : "Cust::") + name : name;
}
ENameSpace NodeBase::GetNameSpace() const {
    return Description().standard ? Standard : Custom;
}
EVisibility NodeBase::GetVisibility() const {
    const AutoLock lock(m_map.GetLock());
    return Combine(Description().visibility,
                   static_cast<EVisibility>(m_map.GetEngine().State(m_index).imposedVisibility));
}
void NodeBase::InvalidateNode() {
    m_map.Do([this](Engine& engine) { engine.Invalidate(m_index); });
}
bool NodeBase::IsCachable() const {
    return Description().caching != NoCache;
}
EYesNo NodeBase::IsAccessModeCacheable() const {
    return Description().modeCacheable ? Yes : No;
}
ECachingMode NodeBase::GetCachingMode() const {
    return Description().caching;
}
int64_t NodeBase::GetPollingTime() const {
    return Description().pollingTime;
}
gcstring NodeBase::ElementText(ElementName name) const {
    for (const Element& element : Source().elements)
        if (element.name == name)
            return ToText(element.text);
    return {};
}
gcstring NodeBase::GetToolTip() const {
    return ElementText(ElementName::ToolTip);
}
gcstring NodeBase::GetDescription() const {
    return ElementText(ElementName::Description);
}
gcstring NodeBase::GetDisplayName() const {
    const gcstring given = ElementText(ElementName::DisplayName);
    if (!given.empty())
        return given;
    return Description().entry ? ToText(Description().entry->symbolic) : GetName(false);
}
gcstring NodeBase::GetDeviceName() const {
    return m_map.GetDeviceName();
}

void NodeBase::GetChildren(NodeList_t& Children, ELinkType LinkType) const {
    Children.clear();
    const inside::Description& description = m_map.GetDescription();
    const NodeDescription& node = Description();
    const auto add = [&](NodeIndex child) {
        if (child != kNoNode)
            Children.push_back(m_map.NodeAt(child));
    };
    const auto addClosure = [&](const Adjacency& edges, bool terminalOnly) {
        std::vector<NodeIndex> open{m_index};
        std::vector<bool> seen(description.nodes.size(), false);
        seen[m_index] = true;
        for (size_t next = 0; next < open.size(); ++next)
            for (const NodeIndex child : edges.Of(open[next])) {
                if (seen[child])
                    continue;
                seen[child] = true;
                open.push_back(child);
                if (!terminalOnly || description.nodes[child].reg)
                    add(child);
            }
    };
    switch (LinkType) {
    case ctParentNodes:
        GetParents(Children);
        break;
    case ctReadingChildren:
        for (const NodeIndex child : node.features)
            add(child);
        for (const NodeIndex child : description.reads.Of(m_index))
            add(child);
        break;
    case ctWritingChildren:
        if (node.source) {
            add(node.source->node);
            for (const NodeIndex copy : node.source->copies)
                add(copy);
        }
        if (node.formula)
            add(node.formula->node);
        break;
    case ctInvalidatingChildren:
        for (const NodeIndex child : description.invalidators.Of(m_index))
            add(child);
        break;
    case ctDependingNodes:
        addClosure(description.dependents, false);
        break;
    case ctTerminalNodes:
        addClosure(description.reads, true);
        break;
    }
}

void NodeBase::GetParents(NodeList_t& Parents) const {
    Parents.clear();
    const inside::Description& description = m_map.GetDescription();
    for (NodeIndex i = 0; i < description.nodes.size(); ++i) {
        const auto children = description.reads.Of(i);
        const List<NodeIndex>& features = description.nodes[i].features;
        if (std::binary_search(children.begin(), children.end(), m_index) ||
            std::find(features.begin(), features.end(), m_index) != features.end())
            Parents.push_back(m_map.NodeAt(i));
    }
}

CallbackHandleType NodeBase::RegisterCallback(CNodeCallback* pCallback) {
    return m_map.RegisterCallback(m_index, pCallback);
}
bool NodeBase::DeregisterCallback(CallbackHandleType hCallback) {
    return m_map.DeregisterCallback(m_index, hCallback);
}
INodeMap* NodeBase::GetNodeMap() const {
    return &m_map;
}
gcstring NodeBase::GetEventID() const {
    return ElementText(ElementName::EventID);
}
bool NodeBase::IsStreamable() const {
    return Description().streamable;
}

void NodeBase::GetPropertyNames(gcstring_vector& PropertyNames) const {
    PropertyNames.clear();
    PropertyNames.push_back("Name");
    const Document& document = m_map.GetDescription().document;
    for (const Element& element : Source().elements) {
        const gcstring name = ToText(document.NameOf(element.name));
        if (!PropertyNames.contains(name))
            PropertyNames.push_back(name);
    }
    if (!Description().error.empty())
        PropertyNames.push_back("BuildError");
}

bool NodeBase::GetProperty(const gcstring& PropertyName, gcstring& ValueStr, gcstring& AttributeStr) const {
    ValueStr = AttributeStr = "";
    if (PropertyName == "Name") {
        ValueStr = GetName(false);
        return true;
    }
    if (PropertyName == "BuildError" && !Description().error.empty()) {
        ValueStr = ToText(Description().error);
        return true;
    }
    const std::string_view wanted(PropertyName.c_str(), PropertyName.size());
    bool found = false;
    for (const Element& element : Source().elements) {
        if (m_map.GetDescription().document.NameOf(element.name) != wanted)
            continue;
        if (found) {
            ValueStr += "\t";
            AttributeStr += "\t";
        }
        found = true;
        ValueStr += ToText(element.text);
        AttributeStr += ToText(element.attribute);
    }
    return found;
}

void NodeBase::ImposeAccessMode(EAccessMode ImposedAccessMode) {
    if (ImposedAccessMode > RW)
        throw INVALID_ARGUMENT_EXCEPTION("Access mode %d can't be imposed on '%s'.", int{ImposedAccessMode},
                                         GetName(false).c_str());
    m_map.Do([&](Engine& engine) { engine.ImposeMode(m_index, ImposedAccessMode); });
}
void NodeBase::ImposeVisibility(EVisibility ImposedVisibility) {
    if (ImposedVisibility > Invisible)
        throw INVALID_ARGUMENT_EXCEPTION("Visibility %d can't be imposed on '%s'.", int{ImposedVisibility},
                                         GetName(false).c_str());
    const AutoLock lock(m_map.GetLock());
    m_map.GetEngine().State(m_index).imposedVisibility = static_cast<uint8_t>(ImposedVisibility);
}
INode* NodeBase::GetAlias() const {
    return m_map.NodeOrNull(Description().alias);
}
INode* NodeBase::GetCastAlias() const {
    return m_map.NodeOrNull(Description().castAlias);
}

gcstring NodeBase::GetDocuURL() const {
    const gcstring given = ElementText(ElementName::DocuURL);
    std::string url(given.c_str(), given.size());
    const SourceHeader& header = m_map.GetDescription().document.header;
    const std::string name(Description().name);
    for (const auto& [variable, value] : std::initializer_list<std::pair<const char*, std::string>>{
             {"NodeName", name},
             {"Sys::NodeName", name},
             {"Sys::ModelName", header.modelName.Copy()},
             {"Sys::VendorName", header.vendorName.Copy()},
             {"Sys::StandardNamespace", header.standardNameSpace.Copy()},
             {"Sys::GenApiVersion", "3.0.0"},
             {"Sys::SchemaVersion", VersionText(header.schema)},
             {"Sys::DeviceVersion", VersionText(header.device)}})
        ReplaceAll(url, "$(" + std::string(variable) + ")", value);
    return ToText(url);
}
bool NodeBase::IsDeprecated() const {
    return Description().deprecated;
}
EInterfaceType NodeBase::GetPrincipalInterfaceType() const {
    return InterfaceOf(Description().type);
}
bool NodeBase::IsFeature() const {
    return Description().isFeature;
}

bool NodeBase::IsSelector() const {
    return !Description().selected.empty();
}
void NodeBase::AddFeatures(FeatureList_t& list, const List<NodeIndex>& nodes) const {
    list.clear();
    for (const NodeIndex node : nodes)
        if (auto* value = dynamic_cast<IValue*>(m_map.NodeAt(node)))
            list.push_back(value);
}
void NodeBase::GetSelectedFeatures(FeatureList_t& Selected) const {
    AddFeatures(Selected, Description().selected);
}
void NodeBase::GetSelectingFeatures(FeatureList_t& Selecting) const {
    AddFeatures(Selecting, Description().selecting);
}

} // namespace GENAPI_NAMESPACE::inside
