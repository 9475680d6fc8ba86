#include "ZqApi_TL/ZqPort.h"

#include "ZqGenTLCommon/ZqGenTLError.h"
#include "ZqGenTLCommon/ZqGenTLLib.h"
#include "ZqSDKCommon/Error.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqPort";

[[noreturn]] void ThrowChunkDecodingMissing(int line) {
    throw ReportError<GenICam::RuntimeException>(UNIT, line, "Chunk decoding is not implemented yet.");
}

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

void CZqPort::AttachChunkBuffer(uint8_t*, int64_t) {
    ThrowChunkDecodingMissing(__LINE__);
}

void CZqPort::DetachChunkBuffer() {}

void CZqPort::CreateSubTreeNodeMap(gcstring rootName, GenApi::CNodeMapRef& nodeMapRef, bool subTreeFlag) {
    CreatedXMLFile().CreateSubTreeNodeMap(rootName, nodeMapRef, subTreeFlag);
}

void CZqPort::CreateNodeMapFactoryForChunkData(bool) {
    ThrowChunkDecodingMissing(__LINE__);
}

void CZqPort::CreateSubTreeNodeMapForChunkData(GenApi::CNodeMapRef&) {
    ThrowChunkDecodingMissing(__LINE__);
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
