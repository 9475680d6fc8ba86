#include <GenApi/NodeMapFactory.h>

#include "genapi/src/cache/DescriptionSource.h"
#include "genapi/src/document/DescriptionText.h"
#include "genapi/src/map/NodeMapImpl.h"
#include "genapi/src/nodes/NodeBase.h"

#include <fstream>

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;

/// What a factory and its copies share.
class CNodeMapFactory::Data final : public inside::DescriptionSource {
public:
    using DescriptionSource::DescriptionSource;
};

namespace {

std::string ReadFile(const gcstring& fileName) {
    std::ifstream file(fileName.c_str(), std::ios::binary);
    if (!file)
        throw RUNTIME_EXCEPTION("The description file '%s' can't be opened.", fileName.c_str());
    std::string bytes;
    char chunk[65536];
    while (file.read(chunk, sizeof chunk) || file.gcount() > 0) {
        bytes.append(chunk, static_cast<size_t>(file.gcount()));
        if (bytes.size() > inside::kMaxDescriptionSize)
            break;
    }
    if (file.bad())
        throw RUNTIME_EXCEPTION("The description file '%s' can't be read.", fileName.c_str());
    return bytes;
}

std::string_view Bytes(const void* data, size_t size) {
    if (!data && size > 0)
        throw INVALID_ARGUMENT_EXCEPTION("The description is a null pointer.");
    return {static_cast<const char*>(data), size};
}

[[noreturn]] void EmptyFactory() {
    throw RUNTIME_EXCEPTION("The node map factory holds no description.");
}

} // namespace

CNodeMapFactory::CNodeMapFactory() = default;
CNodeMapFactory::CNodeMapFactory(const CNodeMapFactory& other) = default;
CNodeMapFactory& CNodeMapFactory::operator=(const CNodeMapFactory& other) = default;
CNodeMapFactory::CNodeMapFactory(EContentType_t, const gcstring& fileName, ECacheUsage_t cacheUsage,
                                 bool suppressStrings)
    : m_data(std::make_shared<Data>(ReadFile(fileName), cacheUsage, suppressStrings)) {}
CNodeMapFactory::CNodeMapFactory(EContentType_t, const void* pData, size_t dataSize, ECacheUsage_t cacheUsage,
                                 bool suppressStrings)
    : m_data(std::make_shared<Data>(Bytes(pData, dataSize), cacheUsage, suppressStrings)) {}
CNodeMapFactory::CNodeMapFactory(const gcstring& xml, ECacheUsage_t cacheUsage, bool suppressStrings)
    : m_data(std::make_shared<Data>(std::string_view(xml.c_str(), xml.size()), cacheUsage, suppressStrings)) {
}
CNodeMapFactory::~CNodeMapFactory() = default;

bool CNodeMapFactory::IsEmpty() const {
    return !m_data;
}
void CNodeMapFactory::AddInjectionData(CNodeMapFactory& injectionData) {
    if (!m_data || !injectionData.m_data)
        EmptyFactory();
    m_data->Inject(*injectionData.m_data);
}
void CNodeMapFactory::LoadAndInject() {
    if (!m_data)
        EmptyFactory();
    m_data->GetDescription();
}
bool CNodeMapFactory::IsLoaded() const {
    return m_data != nullptr;
}

CNodeMapFactory CNodeMapFactory::ExtractSubtree(const gcstring& rootName, bool renameToRoot) {
    if (!m_data)
        EmptyFactory();
    CNodeMapFactory subtree;
    const std::string_view root(rootName.c_str(), rootName.size());
    const auto whole = m_data->GetDescription();
    const inside::DescriptionImage image = inside::BuildImage(0, [&](inside::DocumentWriter& writer) {
        inside::ExtractDocument(whole->document, root, renameToRoot, writer);
    });
    subtree.m_data = std::make_shared<Data>(image.description);
    return subtree;
}

void CNodeMapFactory::Preprocess() {
    if (!m_data)
        EmptyFactory();
    m_data->GetDescription();
}
bool CNodeMapFactory::IsPreprocessed() const {
    return m_data && m_data->IsPreprocessed();
}
void CNodeMapFactory::ReleaseCameraDescriptionFileData() {
    if (m_data)
        m_data->Release();
}
bool CNodeMapFactory::IsCameraDescriptionFileDataReleased() const {
    return !m_data || m_data->IsReleased();
}

INodeMap* CNodeMapFactory::CreateNodeMap(const gcstring& deviceName, bool releaseDescription) {
    if (!m_data)
        EmptyFactory();
    auto map = std::make_unique<inside::NodeMapImpl>(m_data->GetDescription(), deviceName);
    if (releaseDescription)
        m_data->Release();
    return map.release();
}

bool CNodeMapFactory::ClearCache() {
    const auto cache = inside::DescriptionCache::Find();
    return cache && cache->Clear();
}

void CNodeMapFactory::GetSupportedSchemaVersions(gcstring_vector& schemaVersions) {
    schemaVersions.clear();
    schemaVersions.push_back("1.0");
    schemaVersions.push_back("1.1");
}

} // namespace GENAPI_NAMESPACE
