#include "ZqApi_TL/ZqStreamBuffer.h"

#include <string>

#include "ZqApi_TL/OptionalEvent.h"
#include "ZqApi_TL/Teardown.h"
#include "ZqGenTLCommon/ZqGenTLError.h"
#include "ZqGenTLCommon/ZqGenTLLib.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqStreamBuffer";

} // namespace

CZqStreamBuffer::CZqStreamBuffer(CZqGenTLLib* pGenTL, IZqDataStreamInside* pDataStream, void* pBuffer,
                                 size_t size, void* pUserContext, size_t index, bool* pLeftAnnounced)
    : m_pCZqGenTL(pGenTL), m_pIZqDataStreamInside(pDataStream),
      m_BufferInfo(pGenTL,
                   (ZQ_ASSERT(UNIT, m_pCZqGenTL != NULL), ZQ_ASSERT(UNIT, m_pIZqDataStreamInside != NULL),
                    pDataStream->GetDataStreamHandle())),
      m_Image(this), m_Chunks(*this), m_pBuffer(pBuffer), m_Size(size), m_pUserContext(pUserContext) {
    try {
        ConvertBadAlloc(UNIT, __LINE__, [&] { Construct(index); });
    } catch (...) {
        bool revoked = false;
        Teardown().Run([&] {
            DeleteInsideObjects();
            revoked = true;
        });
        if (pLeftAnnounced != nullptr)
            *pLeftAnnounced = !revoked;
        throw;
    }
}

void CZqStreamBuffer::Construct(size_t index) {
    Announce();
    const gcstring deviceID = m_pIZqDataStreamInside->GetIZqDeviceInside()->GetIZqDeviceInfo()->GetID();
    const std::string name = "StreamBuffer_x_" + std::to_string(index) + "_" + deviceID.c_str();
    m_pCZqPort = std::make_unique<CZqPort>(m_pCZqGenTL, m_hStreamBuffer, GenApi::RW, gcstring(name.c_str()));
    m_pErrorEvent = MakeEventIfImplemented<CZqEventErrorSB>(
        m_pCZqGenTL, m_hStreamBuffer, static_cast<IZqStreamBuffer*>(this), &m_CallbackManager,
        ZqCallbackType_GenTLEventErrorSB, "ZqApi_TL_EventError_SB");
}

void CZqStreamBuffer::Announce() {
    const DS_HANDLE hDataStream = m_pIZqDataStreamInside->GetDataStreamHandle();
    // What the new-buffer event hands back; it casts to exactly this type.
    void* const pPrivate = static_cast<IZqStreamBufferInside*>(this);
    BUFFER_HANDLE hBuffer = nullptr;
    const bool allocate = m_pBuffer == nullptr;
    if (allocate) {
        const GC_ERROR result = RequireHandle(
            CallProducer(m_pCZqGenTL->DSAllocAndAnnounceBuffer, hDataStream, m_Size, pPrivate, &hBuffer),
            hBuffer);
        CheckProducer(m_pCZqGenTL, UNIT, __LINE__, result, "DSAllocAndAnnounceBuffer",
                      "%d = DSAllocAndAnnounceBuffer(0x%p, %u, 0x%p, 0x%p)", result, hDataStream, m_Size,
                      pPrivate, &hBuffer);
    } else {
        const GC_ERROR result = RequireHandle(
            CallProducer(m_pCZqGenTL->DSAnnounceBuffer, hDataStream, m_pBuffer, m_Size, pPrivate, &hBuffer),
            hBuffer);
        CheckProducer(m_pCZqGenTL, UNIT, __LINE__, result, "DSAnnounceBuffer",
                      "%d = DSAnnounceBuffer(0x%p, 0x%p, %u, 0x%p, 0x%p)", result, hDataStream, m_pBuffer,
                      m_Size, pPrivate, &hBuffer);
    }
    m_hStreamBuffer = hBuffer;
    m_BufferInfo.SetBufferHandle(hBuffer);
    if (allocate)
        m_pBuffer = m_BufferInfo.GetBaseAddress();
}

CZqStreamBuffer::~CZqStreamBuffer() {
    Teardown().Run([this] { DeleteInsideObjects(); });
}

void* CZqStreamBuffer::RegisterCallback(IZqCallback* pCallback) {
    return m_CallbackManager.RegisterCallback(pCallback);
}

void CZqStreamBuffer::DeregisterCallback(void* hCallback) {
    m_CallbackManager.DeregisterCallback(hCallback);
}

IZqDataStream* CZqStreamBuffer::GetIZqDataStream() const {
    return m_pIZqDataStreamInside;
}

IZqPort* CZqStreamBuffer::GetIZqPort() {
    return m_pCZqPort.get();
}

const IZqStreamBufferInfo* CZqStreamBuffer::GetIZqStreamBufferInfo() const {
    return &m_BufferInfo;
}

IZqImage* CZqStreamBuffer::GetIZqImage() {
    bool present = true;
    try {
        present = m_BufferInfo.IsImagePresent();
    } catch (const GenICam::GenericException&) {
        // Producers older than the query deliver nothing but images.
    }
    if (!present)
        throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "There is no available image.");
    return &m_Image;
}

INodeMap* CZqStreamBuffer::GetChunkINodeMap() {
    INodeMap* const pNodeMap = m_Chunks.GetNodeMap();
    if (pNodeMap == nullptr)
        throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "Not found a node map for chunk.");
    return pNodeMap;
}

IZqDataStreamInside* CZqStreamBuffer::GetIZqDataStreamInside() const {
    return m_pIZqDataStreamInside;
}

BUFFER_HANDLE CZqStreamBuffer::GetBufferHandle() const {
    return m_hStreamBuffer;
}

void CZqStreamBuffer::AttachChunkBuffer() {
    if (m_Chunks.IsAttached())
        return;
    PrepareChunkDecode();
    m_Chunks.Attach();
}

void CZqStreamBuffer::DetachChunkBuffer() {
    m_Chunks.Detach();
}

void CZqStreamBuffer::PrepareChunkDecode() {
    m_Chunks.Prepare(m_pCZqGenTL, *m_pIZqDataStreamInside->GetIZqDeviceInside());
}

void CZqStreamBuffer::Release() {
    m_pIZqDataStreamInside->QueueBuffer(this);
}

void CZqStreamBuffer::StartEventAcquisitionThread() {
    if (m_pErrorEvent)
        m_pErrorEvent->Start();
}

void CZqStreamBuffer::StopEventAcquisitionThread() {
    if (m_pErrorEvent)
        m_pErrorEvent->Stop();
}

void CZqStreamBuffer::DeleteInsideObjects() {
    Teardown().Run([this] { StopEventAcquisitionThread(); });
    m_Chunks.DeleteAdapter();
    RevokeBuffer();
}

void CZqStreamBuffer::RevokeBuffer() {
    if (m_hStreamBuffer == nullptr)
        return;
    m_pErrorEvent.reset();
    m_Image.ReleaseROIImage();
    const DS_HANDLE hDataStream = m_pIZqDataStreamInside->GetDataStreamHandle();
    const BUFFER_HANDLE hBuffer = m_hStreamBuffer;
    void* pBuffer = nullptr;
    void* pPrivate = nullptr;
    const GC_ERROR result =
        CallProducer(m_pCZqGenTL->DSRevokeBuffer, hDataStream, hBuffer, &pBuffer, &pPrivate);
    m_hStreamBuffer = nullptr;
    m_BufferInfo.SetBufferHandle(nullptr);
    Teardown revoke;
    revoke.Run([&] {
        CheckProducer(m_pCZqGenTL, UNIT, __LINE__, result, "DSRevokeBuffer",
                      "%d = DSRevokeBuffer(0x%p, 0x%p, 0x%p, 0x%p)", result, hDataStream, hBuffer, &pBuffer,
                      &pPrivate);
    });
    m_pCZqPort.reset();
    revoke.RethrowFirst();
}

} // namespace ZqApi
