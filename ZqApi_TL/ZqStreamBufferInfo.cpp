#include "ZqApi_TL/ZqStreamBufferInfo.h"

#include "ZqGenTLCommon/InfoQuery.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqStreamBufferInfo";
constexpr const char* FORMAT = "%d = DSGetBufferInfo(0x%p, 0x%p, %d, 0x%p, 0x%p, 0x%p)";

} // namespace

template <class T>
T CZqStreamBufferInfo::GetDSBufferInfo(BUFFER_INFO_CMD command) const {
    ZQ_ASSERT(UNIT, m_hStreamBuffer != NULL);
    return QueryNumber<T>({m_pCZqGenTL, UNIT, __LINE__, "DSGetBufferInfo", FORMAT},
                          m_pCZqGenTL->DSGetBufferInfo, command, m_hDataStream, m_hStreamBuffer);
}

gcstring CZqStreamBufferInfo::GetDSBufferString(BUFFER_INFO_CMD command) const {
    ZQ_ASSERT(UNIT, m_hStreamBuffer != NULL);
    return QueryText({m_pCZqGenTL, UNIT, __LINE__, "DSGetBufferInfo", FORMAT}, m_pCZqGenTL->DSGetBufferInfo,
                     command, m_hDataStream, m_hStreamBuffer);
}

void* CZqStreamBufferInfo::GetBaseAddress() const {
    return GetDSBufferInfo<void*>(BUFFER_INFO_BASE);
}
size_t CZqStreamBufferInfo::GetBufferSize() const {
    return GetDSBufferInfo<size_t>(BUFFER_INFO_SIZE);
}
void* CZqStreamBufferInfo::GetUserPtr() const {
    return GetDSBufferInfo<void*>(BUFFER_INFO_USER_PTR);
}
uint64_t CZqStreamBufferInfo::GetTimestamp() const {
    return GetDSBufferInfo<uint64_t>(BUFFER_INFO_TIMESTAMP);
}
bool CZqStreamBufferInfo::IsNewData() const {
    return GetDSBufferInfo<bool>(BUFFER_INFO_NEW_DATA);
}
bool CZqStreamBufferInfo::IsQueued() const {
    return GetDSBufferInfo<bool>(BUFFER_INFO_IS_QUEUED);
}
bool CZqStreamBufferInfo::IsAcquiring() const {
    return GetDSBufferInfo<bool>(BUFFER_INFO_IS_ACQUIRING);
}
bool CZqStreamBufferInfo::IsIncomplete() const {
    return GetDSBufferInfo<bool>(BUFFER_INFO_IS_INCOMPLETE);
}
gcstring CZqStreamBufferInfo::GetTLType() const {
    return GetDSBufferString(BUFFER_INFO_TLTYPE);
}
size_t CZqStreamBufferInfo::GetSizeFilled() const {
    return GetDSBufferInfo<size_t>(BUFFER_INFO_SIZE_FILLED);
}
size_t CZqStreamBufferInfo::GetWidth() const {
    return GetDSBufferInfo<size_t>(BUFFER_INFO_WIDTH);
}
size_t CZqStreamBufferInfo::GetHeight() const {
    return GetDSBufferInfo<size_t>(BUFFER_INFO_HEIGHT);
}
size_t CZqStreamBufferInfo::GetXOffset() const {
    return GetDSBufferInfo<size_t>(BUFFER_INFO_XOFFSET);
}
size_t CZqStreamBufferInfo::GetYOffset() const {
    return GetDSBufferInfo<size_t>(BUFFER_INFO_YOFFSET);
}
size_t CZqStreamBufferInfo::GetXPadding() const {
    return GetDSBufferInfo<size_t>(BUFFER_INFO_XPADDING);
}
size_t CZqStreamBufferInfo::GetYPadding() const {
    return GetDSBufferInfo<size_t>(BUFFER_INFO_YPADDING);
}
uint64_t CZqStreamBufferInfo::GetFrameID() const {
    return GetDSBufferInfo<uint64_t>(BUFFER_INFO_FRAMEID);
}
bool CZqStreamBufferInfo::IsImagePresent() const {
    return GetDSBufferInfo<bool>(BUFFER_INFO_IMAGEPRESENT);
}
size_t CZqStreamBufferInfo::GetImageOffset() const {
    return GetDSBufferInfo<size_t>(BUFFER_INFO_IMAGEOFFSET);
}
size_t CZqStreamBufferInfo::GetPayloadType() const {
    return GetDSBufferInfo<size_t>(BUFFER_INFO_PAYLOADTYPE);
}
uint64_t CZqStreamBufferInfo::GetPixelFormat() const {
    return GetDSBufferInfo<uint64_t>(BUFFER_INFO_PIXELFORMAT);
}
uint64_t CZqStreamBufferInfo::GetPixelFormatNameSpace() const {
    return GetDSBufferInfo<uint64_t>(BUFFER_INFO_PIXELFORMAT_NAMESPACE);
}
size_t CZqStreamBufferInfo::GetDeliverdImageHeight() const {
    return GetDSBufferInfo<size_t>(BUFFER_INFO_DELIVERED_IMAGEHEIGHT);
}
size_t CZqStreamBufferInfo::GetDeliverdChunkPayloadSize() const {
    return GetDSBufferInfo<size_t>(BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE);
}
uint64_t CZqStreamBufferInfo::GetChunkLayoutID() const {
    return GetDSBufferInfo<uint64_t>(BUFFER_INFO_CHUNKLAYOUTID);
}
gcstring CZqStreamBufferInfo::GetFileName() const {
    return GetDSBufferString(BUFFER_INFO_FILENAME);
}
int32_t CZqStreamBufferInfo::GetPixelEndianness() const {
    return GetDSBufferInfo<int32_t>(BUFFER_INFO_PIXEL_ENDIANNESS);
}
size_t CZqStreamBufferInfo::GetDataSize() const {
    return GetDSBufferInfo<size_t>(BUFFER_INFO_DATA_SIZE);
}
uint64_t CZqStreamBufferInfo::GetTimestampNS() const {
    return GetDSBufferInfo<uint64_t>(BUFFER_INFO_TIMESTAMP_NS);
}
bool CZqStreamBufferInfo::IsDataLargerThanBuffer() const {
    return GetDSBufferInfo<bool>(BUFFER_INFO_DATA_LARGER_THAN_BUFFER);
}
bool CZqStreamBufferInfo::HasChunkData() const {
    return GetDSBufferInfo<bool>(BUFFER_INFO_CONTAINS_CHUNKDATA);
}

} // namespace ZqApi
