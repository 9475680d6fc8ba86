#include "ZqApi_TL/ZqDataStreamInfo.h"

#include "ZqApi_TL/DeliveredQueue.h"
#include "ZqApi_TL/InsideInterfaces.h"
#include "ZqApi_TL/NodeLookup.h"
#include "ZqGenTLCommon/InfoQuery.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqDataStreamInfo";
constexpr const char* FORMAT = "%d = DSGetInfo(0x%p, %d, 0x%p, 0x%p, 0x%p)";

} // namespace

template <class T>
T CZqDataStreamInfo::GetDSInfo(STREAM_INFO_CMD command) const {
    ZQ_ASSERT(UNIT, m_hDataStream != NULL);
    return QueryNumber<T>({m_pCZqGenTL, UNIT, __LINE__, "DSGetInfo", FORMAT}, m_pCZqGenTL->DSGetInfo, command,
                          m_hDataStream);
}

gcstring CZqDataStreamInfo::GetDSString(STREAM_INFO_CMD command) const {
    ZQ_ASSERT(UNIT, m_hDataStream != NULL);
    return QueryText({m_pCZqGenTL, UNIT, __LINE__, "DSGetInfo", FORMAT}, m_pCZqGenTL->DSGetInfo, command,
                     m_hDataStream);
}

uint64_t CZqDataStreamInfo::GetNumDelivered() const {
    const GenApi::AutoLock lock(m_pDelivered->GetLock());
    const uint64_t delivered = GetDSInfo<uint64_t>(STREAM_INFO_NUM_DELIVERED);
    const uint64_t waiting = m_pDelivered->Size();
    return delivered > waiting ? delivered - waiting : 0;
}

uint64_t CZqDataStreamInfo::GetNumAwaitDelivery() const {
    const GenApi::AutoLock lock(m_pDelivered->GetLock());
    return GetDSInfo<uint64_t>(STREAM_INFO_NUM_AWAIT_DELIVERY) + m_pDelivered->Size();
}

size_t CZqDataStreamInfo::GetPayloadSize() const {
    try {
        return GetDSInfo<size_t>(STREAM_INFO_PAYLOAD_SIZE);
    } catch (const CZqGenTLErrorException& error) {
        if (error.GetError() != GC_ERR_NOT_IMPLEMENTED)
            throw;
    }
    return GetPayloadSizeFormNodeMap();
}

size_t CZqDataStreamInfo::GetPayloadSizeFormNodeMap() const {
    INodeMap* const pNodeMap = m_pIZqDeviceInside->GetRemoteIZqPort()->GetINodeMap();
    if (pNodeMap == nullptr)
        throw ReportError<GenICam::LogicalErrorException>(UNIT, __LINE__, "NULL pointer dereferenced");
    GenApi::CIntegerPtr pPayloadSize = FindNode(UNIT, __LINE__, pNodeMap, "PayloadSize");
    if (!pPayloadSize.IsValid())
        throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "Node %s not found.", "PayloadSize");
    return static_cast<size_t>(pPayloadSize->GetValue());
}

gcstring CZqDataStreamInfo::GetID() const {
    return GetDSString(STREAM_INFO_ID);
}
uint64_t CZqDataStreamInfo::GetNumUnderrun() const {
    return GetDSInfo<uint64_t>(STREAM_INFO_NUM_UNDERRUN);
}
uint64_t CZqDataStreamInfo::GetNumAnnounced() const {
    return GetDSInfo<uint64_t>(STREAM_INFO_NUM_ANNOUNCED);
}
uint64_t CZqDataStreamInfo::GetNumQueued() const {
    return GetDSInfo<uint64_t>(STREAM_INFO_NUM_QUEUED);
}
uint64_t CZqDataStreamInfo::GetNumStarted() const {
    return GetDSInfo<uint64_t>(STREAM_INFO_NUM_STARTED);
}
bool CZqDataStreamInfo::IsGrabbing() const {
    return GetDSInfo<bool>(STREAM_INFO_IS_GRABBING);
}
bool CZqDataStreamInfo::GetDefinesPayloadSize() const {
    return GetDSInfo<bool>(STREAM_INFO_DEFINES_PAYLOADSIZE);
}
gcstring CZqDataStreamInfo::GetTLType() const {
    return GetDSString(STREAM_INFO_TLTYPE);
}
size_t CZqDataStreamInfo::GetNumChunksMax() const {
    return GetDSInfo<size_t>(STREAM_INFO_NUM_CHUNKS_MAX);
}
size_t CZqDataStreamInfo::GetBufAnnounceMin() const {
    return GetDSInfo<size_t>(STREAM_INFO_BUF_ANNOUNCE_MIN);
}
size_t CZqDataStreamInfo::GetBufAlignment() const {
    return GetDSInfo<size_t>(STREAM_INFO_BUF_ALIGNMENT);
}

} // namespace ZqApi
