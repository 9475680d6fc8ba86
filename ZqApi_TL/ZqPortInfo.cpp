#include "ZqApi_TL/ZqPortInfo.h"

#include "ZqGenTLCommon/InfoQuery.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqPortInfo";
constexpr const char* FORMAT = "%d = GCGetPortInfo(0x%p, %d, 0x%p, 0x%p, 0x%p)";

} // namespace

bool CZqPortInfo::GetFlag(PORT_INFO_CMD command) const {
    ZQ_ASSERT(UNIT, m_hPort != NULL);
    return QueryNumber<bool>({m_pCZqGenTL, UNIT, __LINE__, "GCGetPortInfo", FORMAT},
                             m_pCZqGenTL->GCGetPortInfo, command, m_hPort);
}

gcstring CZqPortInfo::GetText(PORT_INFO_CMD command) const {
    ZQ_ASSERT(UNIT, m_hPort != NULL);
    return QueryText({m_pCZqGenTL, UNIT, __LINE__, "GCGetPortInfo", FORMAT}, m_pCZqGenTL->GCGetPortInfo,
                     command, m_hPort);
}

gcstring CZqPortInfo::GetID() const {
    return GetText(PORT_INFO_ID);
}
gcstring CZqPortInfo::GetVendor() const {
    return GetText(PORT_INFO_VENDOR);
}
gcstring CZqPortInfo::GetModel() const {
    return GetText(PORT_INFO_MODEL);
}
gcstring CZqPortInfo::GetTLType() const {
    return GetText(PORT_INFO_TLTYPE);
}
gcstring CZqPortInfo::GetModule() const {
    return GetText(PORT_INFO_MODULE);
}
bool CZqPortInfo::IsLittleEndian() const {
    return GetFlag(PORT_INFO_LITTLE_ENDIAN);
}
bool CZqPortInfo::IsBigEndian() const {
    return GetFlag(PORT_INFO_BIG_ENDIAN);
}
bool CZqPortInfo::IsAccessRead() const {
    return GetFlag(PORT_INFO_ACCESS_READ);
}
bool CZqPortInfo::IsAccessWrite() const {
    return GetFlag(PORT_INFO_ACCESS_WRITE);
}
bool CZqPortInfo::IsAccessNA() const {
    return GetFlag(PORT_INFO_ACCESS_NA);
}
bool CZqPortInfo::IsAccessNI() const {
    return GetFlag(PORT_INFO_ACCESS_NI);
}
gcstring CZqPortInfo::GetVersion() const {
    return GetText(PORT_INFO_VERSION);
}
gcstring CZqPortInfo::GetPortName() const {
    return GetText(PORT_INFO_PORTNAME);
}

} // namespace ZqApi
