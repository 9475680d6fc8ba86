#include "ZqSDKCommon/ZqXMLFile.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <new>

#include "ZqSDKCommon/DescriptionURL.h"
#include "ZqSDKCommon/Error.h"
#include "ZqSDKCommon/PortAccess.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqSDKCommon/ZqXMLFile";

// No description is this large; a length beyond it is a damaged URL, refused before anything is allocated.
constexpr uint64_t LARGEST_FILE = 1ULL << 30;

// A description read through a port of this name is never taken from, nor put into, the node-map library's
// cache.
constexpr const char* UNCACHED_PORT = "Device";

} // namespace

CZqXMLFile::CZqXMLFile(CZqGenTLLib* pCZqGenTL, PORT_HANDLE hPort, GenApi::EAccessMode accessMode,
                       const gcstring& deviceName)
    : m_pCZqGenTL(pCZqGenTL), m_hPort(hPort), m_AccessMode(accessMode), m_DeviceName(deviceName) {}

CZqXMLFile::~CZqXMLFile() {
    DeleteBuffer();
}

INodeMap* CZqXMLFile::GetNodeMap() const {
    return m_bCreated ? m_NodeMapRef._Ptr : nullptr;
}

void CZqXMLFile::DeleteBuffer() {
    m_Factory.reset();
    m_Buffer.reset();
    m_BufferSize = 0;
}

void CZqXMLFile::LoadXMLFile(const gcstring& url) {
    const int location = ParseURLLocation(url);
    m_strFilePath = ParseURLFilePath(url);
    if (location != 0)
        throw ReportError<GenICam::InvalidArgumentException>(UNIT, __LINE__,
                                                             "URL location %d is not supported.", location);
    DeleteBuffer();
    const uint64_t address = ParseURLLocalAddress(url);
    const uint64_t length = ParseURLLocalLength(url);
    std::unique_ptr<char[]> buffer = ConvertBadAlloc(UNIT, __LINE__, [length] {
        if (length > LARGEST_FILE)
            throw std::bad_alloc();
        return std::unique_ptr<char[]>(new char[length + 1]());
    });

    size_t size = length;
    const GC_ERROR result = CallReadPort(m_pCZqGenTL, m_hPort, address, buffer.get(), &size);
    if (result != GC_ERR_SUCCESS)
        throw DescriptionReadError(m_pCZqGenTL, UNIT, __LINE__, result, m_hPort, address, buffer.get(),
                                   &size);
    m_BufferSize = std::min<size_t>(size, length);
    m_Buffer = std::move(buffer);
    m_Buffer[m_BufferSize] = '\0';
    m_ContentType = IsZipFileName(m_strFilePath) ? GenApi::ContentType_ZippedXml : GenApi::ContentType_Xml;
}

std::unique_ptr<GenApi::CNodeMapFactory> CZqXMLFile::MakeFactory(const gcstring& portName) const {
    const GenApi::ECacheUsage_t cacheUsage =
        portName == UNCACHED_PORT ? GenApi::CacheUsage_Ignore : GenApi::CacheUsage_Automatic;
    // A plain file ends at its first NUL byte: devices pad the register block behind it.
    const bool zipped = m_ContentType == GenApi::ContentType_ZippedXml;
    const size_t size = zipped ? m_BufferSize : std::strlen(m_Buffer.get());
    return std::make_unique<GenApi::CNodeMapFactory>(m_ContentType, static_cast<const void*>(m_Buffer.get()),
                                                     size, cacheUsage, false);
}

void CZqXMLFile::Connect(GenApi::CNodeMapRef& nodeMapRef) {
    // An empty reference throws the node-map library's AccessException "Feature not present (reference not
    // valid)".
    nodeMapRef._Connect(m_pPort, m_PortName);
}

void CZqXMLFile::CreateNodeMap(const gcstring& url, GenApi::IPort* pPort, const gcstring& portName) {
    if (m_bCreated)
        return;
    LoadXMLFile(url);
    m_Factory = MakeFactory(portName);
    m_NodeMapRef = m_Factory->CreateNodeMap(m_DeviceName, true);
    m_pPort = pPort;
    m_PortName = portName;
    Connect(m_NodeMapRef);
    m_bCreated = true;
}

gcstring CZqXMLFile::GetXMLFileName() const {
    if (!m_Buffer)
        throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "XML File is not loaded.");
    return ParseURLFileName(m_strFilePath);
}

void CZqXMLFile::SaveToFile(const gcstring& fileName) const {
    if (!m_Buffer)
        throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "XML File is not loaded.");
    size_t length = m_BufferSize;
    if (m_ContentType != GenApi::ContentType_ZippedXml)
        while (length > 0 && m_Buffer[length - 1] == '\0')
            --length;

    std::ofstream file(fileName.c_str(), std::ios::binary | std::ios::trunc);
    if (!file)
        throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "File %s could not be opened.",
                                                     fileName.c_str());
    file.write(m_Buffer.get(), static_cast<std::streamsize>(length));
    file.close();
    if (!file)
        throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "File %s is unwritable.",
                                                     fileName.c_str());
}

void CZqXMLFile::CreateSubTreeNodeMap(const gcstring& rootName, GenApi::CNodeMapRef& nodeMapRef,
                                      bool subTreeFlag) {
    if (!m_bCreated)
        return;
    GenApi::CNodeMapFactory subTree = m_Factory->ExtractSubtree(rootName, subTreeFlag);
    nodeMapRef = subTree.CreateNodeMap(m_DeviceName, true);
    Connect(nodeMapRef);
}

void CZqXMLFile::CreateNodeMapFactoryForChunkData(const gcstring& rootName, bool subTreeFlag) {
    if (m_bCreated && m_Factory)
        m_ChunkFactory = m_Factory->ExtractSubtree(rootName, subTreeFlag);
}

void CZqXMLFile::CreateSubTreeNodeMapForChunkData(GenApi::CNodeMapRef& nodeMapRef) {
    if (!m_bCreated || m_ChunkFactory.IsEmpty())
        return;
    GenApi::CNodeMapRef made(m_DeviceName);
    made = m_ChunkFactory.CreateNodeMap(m_DeviceName, true);
    Connect(made);
    GenApi::CIntegerPtr lock = made._GetNode("TLParamsLock");
    if (lock.IsValid() && GenApi::IsWritable(lock))
        lock->SetValue(1);
    // Last, so that what could not be finished is not taken for a node map.
    nodeMapRef = made;
}

gcstring CZqXMLFile::GetURL(CZqGenTLLib* pCZqGenTL, PORT_HANDLE hPort) {
    return ReadLegacyURL(pCZqGenTL, UNIT, __LINE__, hPort);
}

} // namespace ZqApi
