#pragma once

#include <GenApi/NodeMapFactory.h>
#include <GenApi/Pointer.h>

namespace GENAPI_NAMESPACE {

/// One more, or one less, handle on a node map that a CNodeMapFactory made; the last one ends it. Null is
/// ignored.
GENAPI_API void AcquireNodeMap(INodeMap* pNodeMap);
GENAPI_API void ReleaseNodeMap(INodeMap* pNodeMap);

/// The features that a generated class would add; none.
class CGenericNodeMapParams {
protected:
    void _Initialize(INodeMap*) {}
};

/// A reference-counted handle on a node map. Using an empty one throws AccessException "Feature not present
/// (reference not valid)". One thread at a time per handle; the map itself may be used from any thread.
template <class TCameraParams>
class CNodeMapRefT : public TCameraParams {
public:
    explicit CNodeMapRefT(const GENICAM_NAMESPACE::gcstring& DeviceName = "Device")
        : _Ptr(nullptr), m_deviceName(DeviceName) {}
    CNodeMapRefT(INodeMap* pNodeMap, const GENICAM_NAMESPACE::gcstring& DeviceName = "Device") // NOLINT
        : _Ptr(nullptr), m_deviceName(DeviceName) {
        Assign(pNodeMap);
    }
    CNodeMapRefT(const CNodeMapRefT& other)
        : TCameraParams(), _Ptr(nullptr), m_deviceName(other.m_deviceName) {
        Assign(other._Ptr);
    }
    CNodeMapRefT& operator=(const CNodeMapRefT& other) {
        if (this != &other) {
            m_deviceName = other.m_deviceName;
            Assign(other._Ptr);
        }
        return *this;
    }
    CNodeMapRefT& operator=(INodeMap* pNodeMap) {
        Assign(pNodeMap);
        return *this;
    }
    virtual ~CNodeMapRefT() { ReleaseNodeMap(_Ptr); }

    /// Lets go of the map.
    void _Destroy() { Assign(nullptr); }

    void _LoadXMLFromFile(const GENICAM_NAMESPACE::gcstring& FileName) {
        Load(CNodeMapFactory(ContentType_Xml, FileName));
    }
    void _LoadXMLFromZIPFile(const GENICAM_NAMESPACE::gcstring& ZipFileName) {
        Load(CNodeMapFactory(ContentType_ZippedXml, ZipFileName));
    }
    void _LoadXMLFromZIPData(const void* pData, size_t DataSize) {
        Load(CNodeMapFactory(ContentType_ZippedXml, pData, DataSize));
    }
    void _LoadXMLFromString(const GENICAM_NAMESPACE::gcstring& XMLData) { Load(CNodeMapFactory(XMLData)); }

    /// The map's name, or the one given at construction while there is no map.
    GENICAM_NAMESPACE::gcstring _GetDeviceName() const { return _Ptr ? _Ptr->GetDeviceName() : m_deviceName; }
    void _Poll(int64_t ElapsedTime) { Checked()->Poll(ElapsedTime); }
    void _GetNodes(NodeList_t& Nodes) const { Checked()->GetNodes(Nodes); }
    INode* _GetNode(const GENICAM_NAMESPACE::gcstring& Name) const { return Checked()->GetNode(Name); }
    void _InvalidateNodes() const { Checked()->InvalidateNodes(); }
    bool _Connect(IPort* pPort, const GENICAM_NAMESPACE::gcstring& PortName) const {
        return Checked()->Connect(pPort, PortName);
    }
    bool _Connect(IPort* pPort) const { return Checked()->Connect(pPort); }
    void _GetSupportedSchemaVersions(GENICAM_NAMESPACE::gcstring_vector& SchemaVersions) const {
        CNodeMapFactory::GetSupportedSchemaVersions(SchemaVersions);
    }

    INodeMap* _Ptr;

private:
    INodeMap* Checked() const {
        if (!_Ptr)
            throw ACCESS_EXCEPTION("Feature not present (reference not valid)");
        return _Ptr;
    }
    void Assign(INodeMap* pNodeMap) {
        AcquireNodeMap(pNodeMap);
        INodeMap* const old = _Ptr;
        _Ptr = pNodeMap;
        ReleaseNodeMap(old);
        if (_Ptr)
            TCameraParams::_Initialize(_Ptr);
    }
    void Load(CNodeMapFactory factory) { Assign(factory.CreateNodeMap(m_deviceName)); }

    GENICAM_NAMESPACE::gcstring m_deviceName;
};

typedef CNodeMapRefT<CGenericNodeMapParams> CNodeMapRef;

} // namespace GENAPI_NAMESPACE
