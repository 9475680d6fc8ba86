#include <GenApi/NodeMapFactory.h>

#include "genapi/src/document/DescriptionText.h"
#include "genapi/src/map/NodeMapImpl.h"
#include "genapi/src/nodes/NodeBase.h"

#include <fstream>
#include <mutex>

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;

/// What a factory and its copies share.
class CNodeMapFactory::Data {
public:
    Data(std::string bytes, ECacheUsage_t cacheUsage, bool suppressStrings)
        : m_bytes(std::move(bytes)), m_keepTexts(!suppressStrings) {
        if (cacheUsage == CacheUsage_ForceRead || cacheUsage == CacheUsage_ForceWrite)
            throw RUNTIME_EXCEPTION("The folder of preprocessed descriptions is not implemented");
    }
    explicit Data(inside::Document document)
        : m_document(std::make_shared<const inside::Document>(std::move(document))), m_released(true) {}

    std::shared_ptr<const inside::Document> GetDocument() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return Parsed();
    }
    std::shared_ptr<const inside::Description> GetDescription() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_description)
            m_description = inside::LinkDescription(Parsed());
        return m_description;
    }
    bool IsPreprocessed() const {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_description != nullptr;
    }
    void Release() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        Parsed();
        m_bytes = std::string();
        m_released = true;
    }
    bool IsReleased() const {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_released;
    }

private:
    std::shared_ptr<const inside::Document> Parsed() {
        if (!m_document) {
            const std::string text = inside::CleanDescription(inside::UnpackDescription(m_bytes));
            m_document = std::make_shared<const inside::Document>(inside::ParseDocument(text, m_keepTexts));
        }
        return m_document;
    }

    mutable std::mutex m_mutex;
    std::string m_bytes;
    bool m_keepTexts = true;
    std::shared_ptr<const inside::Document> m_document;
    std::shared_ptr<const inside::Description> m_description;
    bool m_released = false;
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

std::string CopyBytes(const void* data, size_t size) {
    if (!data && size > 0)
        throw INVALID_ARGUMENT_EXCEPTION("The description is a null pointer.");
    return data ? std::string(static_cast<const char*>(data), size) : std::string();
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
    : m_data(std::make_shared<Data>(CopyBytes(pData, dataSize), cacheUsage, suppressStrings)) {}
CNodeMapFactory::CNodeMapFactory(const gcstring& xml, ECacheUsage_t cacheUsage, bool suppressStrings)
    : m_data(std::make_shared<Data>(std::string(xml.c_str(), xml.size()), cacheUsage, suppressStrings)) {}
CNodeMapFactory::~CNodeMapFactory() = default;

bool CNodeMapFactory::IsEmpty() const {
    return !m_data;
}
void CNodeMapFactory::AddInjectionData(CNodeMapFactory&) {
    throw RUNTIME_EXCEPTION("CNodeMapFactory::AddInjectionData is not implemented");
}
void CNodeMapFactory::LoadAndInject() {
    throw RUNTIME_EXCEPTION("CNodeMapFactory::LoadAndInject is not implemented");
}
bool CNodeMapFactory::IsLoaded() const {
    return m_data != nullptr;
}

CNodeMapFactory CNodeMapFactory::ExtractSubtree(const gcstring& rootName, bool renameToRoot) {
    if (!m_data)
        EmptyFactory();
    CNodeMapFactory subtree;
    const std::string_view root(rootName.c_str(), rootName.size());
    subtree.m_data =
        std::make_shared<Data>(inside::ExtractDocument(*m_data->GetDocument(), root, renameToRoot));
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
    throw RUNTIME_EXCEPTION("CNodeMapFactory::ClearCache is not implemented");
}

void CNodeMapFactory::GetSupportedSchemaVersions(gcstring_vector& schemaVersions) {
    schemaVersions.clear();
    schemaVersions.push_back("1.0");
    schemaVersions.push_back("1.1");
}

} // namespace GENAPI_NAMESPACE
