#pragma once

#include <GenApi/Container.h>
#include <GenApi/IBase.h>

namespace GENAPI_NAMESPACE {

class CNodeCallback;
struct INodeMap;

/// One element of a description: its texts, its neighbours and its state.
struct GENAPI_API INode : virtual public IBase {
    /// "Name", or "Std::Name" / "Cust::Name" when asked for the full name.
    virtual GENICAM_NAMESPACE::gcstring GetName(bool FullQualified = false) const = 0;
    virtual ENameSpace GetNameSpace() const = 0;
    virtual EVisibility GetVisibility() const = 0;
    /// Drops the cached value and mode of this node, of what depends on it and of the registers it reads; its
    /// next read goes to the device. Callbacks of the dropped nodes run before this returns.
    virtual void InvalidateNode() = 0;
    virtual bool IsCachable() const = 0;
    virtual EYesNo IsAccessModeCacheable() const = 0;
    virtual ECachingMode GetCachingMode() const = 0;
    /// In milliseconds; -1 when the node is not polled.
    virtual int64_t GetPollingTime() const = 0;
    virtual GENICAM_NAMESPACE::gcstring GetToolTip() const = 0;
    virtual GENICAM_NAMESPACE::gcstring GetDescription() const = 0;
    virtual GENICAM_NAMESPACE::gcstring GetDisplayName() const = 0;
    /// The name that the node map was created with.
    virtual GENICAM_NAMESPACE::gcstring GetDeviceName() const = 0;
    virtual void GetChildren(NodeList_t& Children, ELinkType LinkType = ctReadingChildren) const = 0;
    virtual void GetParents(NodeList_t& Parents) const = 0;
    /// Takes ownership of the callback, which is destroyed through its Destroy. InvalidArgumentException for
    /// null.
    virtual CallbackHandleType RegisterCallback(CNodeCallback* pCallback) = 0;
    /// False when the handle is not registered here. A callback that is running is destroyed after it has
    /// returned.
    virtual bool DeregisterCallback(CallbackHandleType hCallback) = 0;
    virtual INodeMap* GetNodeMap() const = 0;
    /// Hexadecimal digits; empty when the node belongs to no event.
    virtual GENICAM_NAMESPACE::gcstring GetEventID() const = 0;
    virtual bool IsStreamable() const = 0;
    /// The names of the elements that the description gives this node, each once, in document order.
    virtual void GetPropertyNames(GENICAM_NAMESPACE::gcstring_vector& PropertyNames) const = 0;
    /// The texts of the elements of that name, and their attributes, joined by tabs. False when there is
    /// none.
    virtual bool GetProperty(const GENICAM_NAMESPACE::gcstring& PropertyName,
                             GENICAM_NAMESPACE::gcstring& ValueStr,
                             GENICAM_NAMESPACE::gcstring& AttributeStr) const = 0;
    /// Narrows the computed mode until called again; RW lifts the restriction.
    virtual void ImposeAccessMode(EAccessMode ImposedAccessMode) = 0;
    /// Narrows the audience until called again; Beginner lifts the restriction.
    virtual void ImposeVisibility(EVisibility ImposedVisibility) = 0;
    virtual INode* GetAlias() const = 0;
    virtual INode* GetCastAlias() const = 0;
    virtual GENICAM_NAMESPACE::gcstring GetDocuURL() const = 0;
    virtual bool IsDeprecated() const = 0;
    virtual EInterfaceType GetPrincipalInterfaceType() const = 0;
    /// True when a category lists the node.
    virtual bool IsFeature() const = 0;
};

inline bool IsVisible(EVisibility visibility, EVisibility maxVisibility) {
    return visibility <= maxVisibility;
}
inline bool IsVisible(const IBase* p, EVisibility maxVisibility) {
    const INode* node = dynamic_cast<const INode*>(p);
    return node && IsVisible(node->GetVisibility(), maxVisibility);
}
inline bool IsVisible(const IBase& r, EVisibility maxVisibility) {
    return IsVisible(&r, maxVisibility);
}

inline bool IsCacheable(ECachingMode mode) {
    return mode != NoCache;
}
inline bool IsCacheable(const IBase* p) {
    const INode* node = dynamic_cast<const INode*>(p);
    return node && IsCacheable(node->GetCachingMode());
}
inline bool IsCacheable(const IBase& r) {
    return IsCacheable(&r);
}

} // namespace GENAPI_NAMESPACE
