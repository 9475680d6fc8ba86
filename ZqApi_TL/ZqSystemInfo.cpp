#include "ZqApi_TL/ZqSystemInfo.h"

#include "ZqGenTLCommon/InfoQuery.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqSystemInfo";
constexpr const char* FORMAT = "%d = TLGetInfo(0x%p, %d, 0x%p, 0x%p, 0x%p)";

} // namespace

template <class T>
T CZqSystemInfo::GetTLInfo(TL_INFO_CMD command) const {
    ZQ_ASSERT(UNIT, m_hTL != NULL);
    return QueryNumber<T>({m_pCZqGenTL, UNIT, __LINE__, "TLGetInfo", FORMAT}, m_pCZqGenTL->TLGetInfo, command,
                          m_hTL);
}

gcstring CZqSystemInfo::GetTLInfoString(TL_INFO_CMD command) const {
    ZQ_ASSERT(UNIT, m_hTL != NULL);
    return QueryText({m_pCZqGenTL, UNIT, __LINE__, "TLGetInfo", FORMAT}, m_pCZqGenTL->TLGetInfo, command,
                     m_hTL);
}

gcstring CZqSystemInfo::GetID() const {
    return GetTLInfoString(TL_INFO_ID);
}
gcstring CZqSystemInfo::GetVendor() const {
    return GetTLInfoString(TL_INFO_VENDOR);
}
gcstring CZqSystemInfo::GetModel() const {
    return GetTLInfoString(TL_INFO_MODEL);
}
gcstring CZqSystemInfo::GetVersion() const {
    return GetTLInfoString(TL_INFO_VERSION);
}
gcstring CZqSystemInfo::GetTLType() const {
    return GetTLInfoString(TL_INFO_TLTYPE);
}
gcstring CZqSystemInfo::GetName() const {
    return GetTLInfoString(TL_INFO_NAME);
}
gcstring CZqSystemInfo::GetPathName() const {
    return GetTLInfoString(TL_INFO_PATHNAME);
}
gcstring CZqSystemInfo::GetDisplayName() const {
    return GetTLInfoString(TL_INFO_DISPLAYNAME);
}
int32_t CZqSystemInfo::GetCharEncoding() const {
    return GetTLInfo<int32_t>(TL_INFO_CHAR_ENCODING);
}
uint32_t CZqSystemInfo::GetGenTLVersionMajor() const {
    return GetTLInfo<uint32_t>(TL_INFO_GENTL_VER_MAJOR);
}
uint32_t CZqSystemInfo::GetGenTLVersionMinor() const {
    return GetTLInfo<uint32_t>(TL_INFO_GENTL_VER_MINOR);
}

} // namespace ZqApi
