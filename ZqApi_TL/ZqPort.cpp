#include "ZqApi_TL/ZqPort.h"

#include "ZqApi_TL/TransportAdapters.h"
#include "ZqGenTLCommon/ZqGenTLError.h"
#include "ZqGenTLCommon/ZqGenTLLib.h"
#include "ZqSDKCommon/Error.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqPort";

} // namespace

CZqPort::CZqPort(CZqGenTLLib* pCZqGenTL, PORT_HANDLE hPort, GenApi::EAccessMode accessMode,
                 const gcstring& deviceName)
    : m_pCZqGenTL(pCZqGenTL), m_hPort(hPort), m_URLInfo(pCZqGenTL, hPort), m_PortInfo(pCZqGenTL, hPort),
      m_AccessMode(accessMode), m_XMLFile(pCZqGenTL, hPort, accessMode, deviceName) {
    ZQ_ASSERT(UNIT, m_pCZqGenTL != NULL);
    ZQ_ASSERT(UNIT, m_hPort != NULL);
}

CZqPort::~CZqPort() = default;

uint32_t CZqPort::GetPortURLCount() const {
    if (m_pCZqGenTL->GCGetNumPortURLs != nullptr) {
        uint32_t count = 0;
        const GC_ERROR result = CallProducer(m_pCZqGenTL->GCGetNumPortURLs, m_hPort, &count);
        if (result != GC_ERR_SUCCESS)
            throw ProducerError(m_pCZqGenTL, UNIT, __LINE__, result, "GCGetNumPortURLs",
                                "%d = GCGetNumPortURLs(0x%p, 0x%p)", result, m_hPort, &count);
        return count;
    }
    size_t size = 0;
    return CallProducer(m_pCZqGenTL->GCGetPortURL, m_hPort, static_cast<char*>(nullptr), &size) ==
                   GC_ERR_SUCCESS
               ? 1
               : 0;
}

uint32_t CZqPort::GetPortURLIndex() const {
    return m_URLInfo.GetIndex();
}

void CZqPort::SetPortURLIndex(uint32_t nURLIndex) {
    CheckBelow(UNIT, __LINE__, "nURLIndex", nURLIndex, GetPortURLCount());
    m_URLInfo.SetIndex(nURLIndex);
}

IZqPortURLInfo* CZqPort::GetIZqPortURLInfo() const {
    return &m_URLInfo;
}

IZqPortInfo* CZqPort::GetIZqPortInfo() const {
    return &m_PortInfo;
}

CZqXMLFile& CZqPort::CreatedXMLFile() {
    // Without the lock: node callbacks ask for their node map while they hold that map's own lock.
    if (m_XMLFile.IsCreated())
        return m_XMLFile;
    const std::lock_guard<std::mutex> lock(m_CreationMutex);
    ConvertBadAlloc(UNIT, __LINE__, [this] {
        if (m_XMLFile.IsCreated())
            return;
        const gcstring portName = m_PortInfo.GetPortName();
        m_XMLFile.CreateNodeMap(m_URLInfo.GetURL(), this, portName);
    });
    return m_XMLFile;
}

INodeMap* CZqPort::GetINodeMap() {
    return CreatedXMLFile().GetNodeMap();
}

gcstring CZqPort::GetXMLFileName() {
    return ConvertBadAlloc(UNIT, __LINE__, [this] { return CreatedXMLFile().GetXMLFileName(); });
}

void CZqPort::SaveXMLFile(const gcstring& fileName) {
    ConvertBadAlloc(UNIT, __LINE__, [&] { CreatedXMLFile().SaveToFile(fileName); });
}

PORT_HANDLE CZqPort::GetPortHandle() const {
    return m_hPort;
}

void CZqPort::AttachChunkBuffer(uint8_t* pBuffer, int64_t length) {
    if (!m_pChunkAdapter) {
        const gcstring tlType = m_PortInfo.GetTLType();
        INodeMap* const pNodeMap = GetINodeMap();
        m_pChunkAdapter = ConvertBadAlloc(UNIT, __LINE__, [&] { return MakeChunkAdapter(tlType, pNodeMap); });
    }
    ConvertBadAlloc(UNIT, __LINE__, [&] { m_pChunkAdapter->AttachBuffer(pBuffer, length, nullptr); });
}

void CZqPort::DetachChunkBuffer() {
    if (m_pChunkAdapter)
        m_pChunkAdapter->DetachBuffer();
}

void CZqPort::CreateSubTreeNodeMap(gcstring rootName, GenApi::CNodeMapRef& nodeMapRef, bool subTreeFlag) {
    CreatedXMLFile().CreateSubTreeNodeMap(rootName, nodeMapRef, subTreeFlag);
}

void CZqPort::CreateNodeMapFactoryForChunkData(bool subTreeFlag) {
    INodeMap* const pNodeMap = CreatedXMLFile().GetNodeMap();
    if (pNodeMap == nullptr)
        throw ReportError<GenICam::LogicalErrorException>(UNIT, __LINE__, "NULL pointer dereferenced");
    for (const char* const rootName : {"ChunkData", "ChunkDataControl"}) {
        if (pNodeMap->GetNode(rootName) == nullptr)
            continue;
        const std::lock_guard<std::mutex> lock(m_CreationMutex);
        if (!m_XMLFile.HasFactoryForChunkData())
            ConvertBadAlloc(UNIT, __LINE__,
                            [&] { m_XMLFile.CreateNodeMapFactoryForChunkData(rootName, subTreeFlag); });
        return;
    }
}

void CZqPort::CreateSubTreeNodeMapForChunkData(GenApi::CNodeMapRef& nodeMapRef) {
    CreateNodeMapFactoryForChunkData(true);
    ConvertBadAlloc(UNIT, __LINE__, [&] { m_XMLFile.CreateSubTreeNodeMapForChunkData(nodeMapRef); });
}

void CZqPort::Read(void* pBuffer, int64_t address, int64_t length) {
    size_t size = static_cast<size_t>(length);
    const GC_ERROR result =
        CallProducer(m_pCZqGenTL->GCReadPort, m_hPort, static_cast<uint64_t>(address), pBuffer, &size);
    if (result != GC_ERR_SUCCESS)
        throw ProducerError(m_pCZqGenTL, UNIT, __LINE__, result, "GCReadPort",
                            "%d = GCReadPort(0x%p, %I64d, 0x%p, 0x%p)", result, m_hPort, address, pBuffer,
                            &size);
    if (size != static_cast<size_t>(length))
        throw ProducerError(m_pCZqGenTL, UNIT, __LINE__, GC_ERR_SUCCESS, "GCReadPort",
                            "%d = GCReadPort(0x%p, %I64d, 0x % p, 0x % p) Length:%I64d != %I64d", result,
                            m_hPort, address, pBuffer, &size, length, static_cast<int64_t>(size));
}

void CZqPort::Write(const void* pBuffer, int64_t address, int64_t length) {
    if (m_AccessMode != GenApi::WO && m_AccessMode != GenApi::RW)
        throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "Port is not writable.");
    size_t size = static_cast<size_t>(length);
    const GC_ERROR result =
        CallProducer(m_pCZqGenTL->GCWritePort, m_hPort, static_cast<uint64_t>(address), pBuffer, &size);
    // Kept: a positive result counts as success here, unlike in Read.
    if (result < GC_ERR_SUCCESS)
        throw ProducerError(m_pCZqGenTL, UNIT, __LINE__, result, "GCWritePort",
                            "%d = GCWritePort(0x%p, %I64d, 0x%p, 0x%p)", result, m_hPort, address, pBuffer,
                            &size);
    if (size != static_cast<size_t>(length))
        throw ProducerError(m_pCZqGenTL, UNIT, __LINE__, result, "GCWritePort",
                            "%d = GCWritePort(0x%p, %I64d, 0x%p, 0x%p) Length:%I64d != %d", result, m_hPort,
                            address, pBuffer, &size, length, static_cast<int32_t>(size));
}

GenApi::EAccessMode CZqPort::GetAccessMode() const {
    return m_AccessMode;
}

} // namespace ZqApi
