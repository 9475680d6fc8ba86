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
/// Prepared descriptions are kept as files in the folder that the environment variable GENICAM_CACHE_V3_0
/// names, when it exists, and found again by their content. CacheUsage_Automatic reads from there, or
/// prepares and writes; _ForceWrite prepares and writes, RuntimeException when it can't; _ForceRead only
/// reads, RuntimeException when there is none; _Ignore leaves the folder alone. A damaged file, or one of
/// another version, counts as none.
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
    /// Adds a description that is to be merged into this one: all its nodes, and the features of categories
    /// that both have. A node that both have needs a MergePriority in the injected one (in its root element
    /// or in the node): 1 takes that one, -1 keeps this one's.
    void AddInjectionData(CNodeMapFactory& injectionData);
    /// Merges what has been added; so does the next Preprocess or node map. Earlier node maps stay as they
    /// are. RuntimeException when both have a node and no priority decides; this description then stays.
    void LoadAndInject();
    bool IsLoaded() const;
    /// A factory for the node `rootName` and all that it refers to; `renameToRoot` calls it "Root" there.
    /// Works after the text has been released. RuntimeException when there is no such node.
    CNodeMapFactory ExtractSubtree(const GENICAM_NAMESPACE::gcstring& rootName, bool renameToRoot = false);
    /// Parses and merges now instead of with the first node map.
    void Preprocess();
    bool IsPreprocessed() const;
    /// Drops the text of the description; what has been parsed stays.
    void ReleaseCameraDescriptionFileData();
    bool IsCameraDescriptionFileDataReleased() const;
    /// A new node map, to be held by a CNodeMapRef or ended through IDestroy. `releaseDescription` drops the
    /// text afterwards; the factory can make further maps all the same.
    INodeMap* CreateNodeMap(const GENICAM_NAMESPACE::gcstring& deviceName = "Device",
                            bool releaseDescription = true);
    /// Removes all prepared descriptions. False when there is no folder or something could not be removed.
    static bool ClearCache();
    static void GetSupportedSchemaVersions(GENICAM_NAMESPACE::gcstring_vector& schemaVersions);

private:
    class Data;
    std::shared_ptr<Data> m_data;
};

} // namespace GENAPI_NAMESPACE
