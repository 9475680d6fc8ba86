#include "ZqApi_TL/ZqPortURLInfo.h"

#include "ZqGenTLCommon/InfoQuery.h"
#include "ZqSDKCommon/PortAccess.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqPortURLInfo";
constexpr const char* FORMAT = "%d = GCGetPortURLInfo(0x%p, %u, %d, 0x%p, 0x%p, 0x%p)";

} // namespace

template <class T>
T CZqPortURLInfo::GetNumber(URL_INFO_CMD command) const {
    ZQ_ASSERT(UNIT, m_hPort != NULL);
    return QueryNumber<T>({m_pCZqGenTL, UNIT, __LINE__, "GCGetPortURLInfo", FORMAT},
                          m_pCZqGenTL->GCGetPortURLInfo, command, m_hPort, GetIndex());
}

gcstring CZqPortURLInfo::GetText(URL_INFO_CMD command) const {
    ZQ_ASSERT(UNIT, m_hPort != NULL);
    const bool askTheOldWay = m_pCZqGenTL->GCGetPortURLInfo == nullptr && command == URL_INFO_URL &&
                              GetIndex() == 0 && m_pCZqGenTL->GCGetPortURL != nullptr;
    if (askTheOldWay)
        return ReadLegacyURL(m_pCZqGenTL, UNIT, __LINE__, m_hPort);
    return QueryText({m_pCZqGenTL, UNIT, __LINE__, "GCGetPortURLInfo", FORMAT}, m_pCZqGenTL->GCGetPortURLInfo,
                     command, m_hPort, GetIndex());
}

void CZqPortURLInfo::GetSha1HashBuffer(void* pBuffer, size_t* pSize) const {
    ZQ_ASSERT(UNIT, m_hPort != NULL);
    const URL_INFO_CMD command = URL_INFO_FILE_SHA1_HASH;
    const uint32_t nURLIndex = GetIndex();
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    const GC_ERROR result =
        CallProducer(m_pCZqGenTL->GCGetPortURLInfo, m_hPort, nURLIndex, command, &type, pBuffer, pSize);
    if (result != GC_ERR_SUCCESS)
        throw ProducerError(m_pCZqGenTL, UNIT, __LINE__, result, "GCGetPortURLInfo", FORMAT, result, m_hPort,
                            nURLIndex, command, &type, pBuffer, pSize);
}

gcstring CZqPortURLInfo::GetURL() const {
    return GetText(URL_INFO_URL);
}
int32_t CZqPortURLInfo::GetSchemaVerMajor() const {
    return GetNumber<int32_t>(URL_INFO_SCHEMA_VER_MAJOR);
}
int32_t CZqPortURLInfo::GetSchemaVerMinor() const {
    return GetNumber<int32_t>(URL_INFO_SCHEMA_VER_MINOR);
}
int32_t CZqPortURLInfo::GetFileVerMajor() const {
    return GetNumber<int32_t>(URL_INFO_FILE_VER_MAJOR);
}
int32_t CZqPortURLInfo::GetFileVerMinor() const {
    return GetNumber<int32_t>(URL_INFO_FILE_VER_MINOR);
}
int32_t CZqPortURLInfo::GetFileVerSubMinor() const {
    return GetNumber<int32_t>(URL_INFO_FILE_VER_SUBMINOR);
}
uint64_t CZqPortURLInfo::GetFileRegisterAddress() const {
    return GetNumber<uint64_t>(URL_INFO_FILE_REGISTER_ADDRESS);
}
uint64_t CZqPortURLInfo::GetFileSize() const {
    return GetNumber<uint64_t>(URL_INFO_FILE_SIZE);
}
int32_t CZqPortURLInfo::GetScheme() const {
    return GetNumber<int32_t>(URL_INFO_SCHEME);
}
gcstring CZqPortURLInfo::GetFileName() const {
    return GetText(URL_INFO_FILENAME);
}

} // namespace ZqApi
