#pragma once

#include <GenApi/INodeMap.h>

#include <memory>

namespace GENAPI_NAMESPACE {

/// Turns a description into node maps. Parsing happens once, with the first node map; every further map
/// shares the parsed description and costs only its state. Copies share their data. Any thread may use a
/// factory, as long as nobody assigns to it; the node maps are independent of it and of each other.
///
/// Zipped content is recognised by its bytes, whatever `EContentType_t` says. A description that can't be
/// read gives RuntimeException with the reason; a single bad node is left out (its access mode is NI).
///
/// Not implemented yet: the folder of preprocessed descriptions. CacheUsage_Automatic and _Ignore parse every
/// time, _ForceRead and _ForceWrite throw RuntimeException.
class GENAPI_API CNodeMapFactory {
public:
    /// An empty factory.
    CNodeMapFactory();
    CNodeMapFactory(const CNodeMapFactory& other);
    CNodeMapFactory& operator=(const CNodeMapFactory& other);
    /// Reads a file.
    CNodeMapFactory(EContentType_t contentType, const GENICAM_NAMESPACE::gcstring& fileName,
                    ECacheUsage_t cacheUsage = CacheUsage_Automatic, bool suppressStrings = false);
    /// Copies the bytes.
    CNodeMapFactory(EContentType_t contentType, const void* pData, size_t dataSize,
                    ECacheUsage_t cacheUsage = CacheUsage_Automatic, bool suppressStrings = false);
    explicit CNodeMapFactory(const GENICAM_NAMESPACE::gcstring& xml,
                             ECacheUsage_t cacheUsage = CacheUsage_Automatic, bool suppressStrings = false);
    virtual ~CNodeMapFactory();

    bool IsEmpty() const;
    /// Not implemented: RuntimeException.
    void AddInjectionData(CNodeMapFactory& injectionData);
    /// Not implemented: RuntimeException.
    void LoadAndInject();
    bool IsLoaded() const;
    /// A factory for the node `rootName` and all that it refers to; `renameToRoot` calls it "Root" there.
    /// Works after the text has been released. RuntimeException when there is no such node.
    CNodeMapFactory ExtractSubtree(const GENICAM_NAMESPACE::gcstring& rootName, bool renameToRoot = false);
    /// Parses now instead of with the first node map.
    void Preprocess();
    bool IsPreprocessed() const;
    /// Drops the text of the description; what has been parsed stays.
    void ReleaseCameraDescriptionFileData();
    bool IsCameraDescriptionFileDataReleased() const;
    /// A new node map, to be held by a CNodeMapRef or ended through IDestroy. `releaseDescription` drops the
    /// text afterwards; the factory can make further maps all the same.
    INodeMap* CreateNodeMap(const GENICAM_NAMESPACE::gcstring& deviceName = "Device",
                            bool releaseDescription = true);
    /// Not implemented: RuntimeException.
    static bool ClearCache();
    static void GetSupportedSchemaVersions(GENICAM_NAMESPACE::gcstring_vector& schemaVersions);

private:
    class Data;
    std::shared_ptr<Data> m_data;
};

} // namespace GENAPI_NAMESPACE
