#pragma once

#include "genapi/src/map/NodeMapImpl.h"

#include <GenApi/ISelector.h>

namespace GENAPI_NAMESPACE::inside {

/// What every node object has: its place in a node map. The value, mode and all else lie there.
class NodeBase : virtual public INode, virtual public ISelector {
public:
    NodeBase(NodeMapImpl& map, NodeIndex index) : m_map(map), m_index(index) {}
    NodeBase(const NodeBase&) = delete;
    NodeBase& operator=(const NodeBase&) = delete;

    EAccessMode GetAccessMode() const override;
    GENICAM_NAMESPACE::gcstring GetName(bool FullQualified) const override;
    ENameSpace GetNameSpace() const override;
    EVisibility GetVisibility() const override;
    void InvalidateNode() override;
    bool IsCachable() const override;
    EYesNo IsAccessModeCacheable() const override;
    ECachingMode GetCachingMode() const override;
    int64_t GetPollingTime() const override;
    GENICAM_NAMESPACE::gcstring GetToolTip() const override;
    GENICAM_NAMESPACE::gcstring GetDescription() const override;
    GENICAM_NAMESPACE::gcstring GetDisplayName() const override;
    GENICAM_NAMESPACE::gcstring GetDeviceName() const override;
    void GetChildren(NodeList_t& Children, ELinkType LinkType) const override;
    void GetParents(NodeList_t& Parents) const override;
    CallbackHandleType RegisterCallback(CNodeCallback* pCallback) override;
    bool DeregisterCallback(CallbackHandleType hCallback) override;
    INodeMap* GetNodeMap() const override;
    GENICAM_NAMESPACE::gcstring GetEventID() const override;
    bool IsStreamable() const override;
    void GetPropertyNames(GENICAM_NAMESPACE::gcstring_vector& PropertyNames) const override;
    bool GetProperty(const GENICAM_NAMESPACE::gcstring& PropertyName, GENICAM_NAMESPACE::gcstring& ValueStr,
                     GENICAM_NAMESPACE::gcstring& AttributeStr) const override;
    void ImposeAccessMode(EAccessMode ImposedAccessMode) override;
    void ImposeVisibility(EVisibility ImposedVisibility) override;
    INode* GetAlias() const override;
    INode* GetCastAlias() const override;
    GENICAM_NAMESPACE::gcstring GetDocuURL() const override;
    bool IsDeprecated() const override;
    EInterfaceType GetPrincipalInterfaceType() const override;
    bool IsFeature() const override;

    /// As every kind of numeric node has it from another one: with all checks.
    void WriteNumber(Number value) {
        WriteChecked(true, [&](Engine& engine) { engine.WriteNumber(m_index, value, true); });
    }

    bool IsSelector() const override;
    void GetSelectedFeatures(FeatureList_t& Selected) const override;
    void GetSelectingFeatures(FeatureList_t& Selecting) const override;

protected:
    const NodeDescription& Description() const { return m_map.GetDescription().nodes[m_index]; }
    const SourceNode& Source() const { return m_map.GetDescription().document.nodes[m_index]; }
    GENICAM_NAMESPACE::gcstring ElementText(ElementName name) const;
    void AddFeatures(FeatureList_t& list, const List<NodeIndex>& nodes) const;

    /// NodeMapImpl::Do, refusing a node that could not be built.
    template <class Work>
    auto Do(Work&& work) const {
        return m_map.Do([&](Engine& engine) {
            if (!Description().error.empty())
                engine.RequireReadable(m_index);
            return work(engine);
        });
    }
    /// Reads with the usual checks: `read(engine)` behind access and cache use, `check(engine, value)` if
    /// verified.
    template <class Read, class Check>
    auto ReadChecked(bool verify, bool ignoreCache, Read&& read, Check&& check) const {
        return Do([&](Engine& engine) { return ReadNow(engine, verify, ignoreCache, read, check); });
    }
    /// The same for a number. No more than a few loads while value and mode are kept and the node can be
    /// read: then `kept(state)`.
    template <class Kept, class Read, class Check>
    auto ReadNumberChecked(bool verify, bool ignoreCache, Kept&& kept, Read&& read, Check&& check) const {
        return m_map.Do([&](Engine& engine) {
            const NodeState& state = engine.State(m_index);
            const bool isReady = state.valueKept && state.modeKept &&
                                 (state.mode == RO || state.mode == RW) && !Description().addressVolatile;
            if (isReady && !verify && !ignoreCache)
                return kept(state);
            return ReadNow(engine, verify, ignoreCache, read, check);
        });
    }
    template <class Write>
    void WriteChecked(bool verify, Write&& write) {
        Do([&](Engine& engine) {
            if (verify)
                engine.RequireWritable(m_index);
            write(engine);
        });
    }
    NodeMapImpl& m_map;
    const NodeIndex m_index;

private:
    template <class Read, class Check>
    auto ReadNow(Engine& engine, bool verify, bool ignoreCache, Read&& read, Check&& check) const {
        engine.RequireReadable(m_index);
        const Engine::CacheUse use(engine, ignoreCache);
        auto value = read(engine);
        if (verify)
            check(engine, value);
        return value;
    }
};

/// The object for a node, by its type.
std::unique_ptr<NodeBase> MakeNode(NodeMapImpl& map, NodeIndex index);

} // namespace GENAPI_NAMESPACE::inside
