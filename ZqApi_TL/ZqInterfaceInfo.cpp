#include "ZqApi_TL/ZqInterfaceInfo.h"

#include "ZqGenTLCommon/InfoQuery.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqInterfaceInfo";

} // namespace

gcstring CZqInterfaceInfo::GetIFGetInfoString(INTERFACE_INFO_CMD command) const {
    ZQ_ASSERT(UNIT, m_hIF != NULL);
    return QueryText({m_pCZqGenTL, UNIT, __LINE__, "IFGetInfo", "%d = IFGetInfo(0x%p, %d, 0x%p, 0x%p, 0x%p)"},
                     m_pCZqGenTL->IFGetInfo, command, m_hIF);
}

gcstring CZqInterfaceInfo::GetID() const {
    return GetIFGetInfoString(INTERFACE_INFO_ID);
}
gcstring CZqInterfaceInfo::GetDisplayName() const {
    return GetIFGetInfoString(INTERFACE_INFO_DISPLAYNAME);
}
gcstring CZqInterfaceInfo::GetTLType() const {
    return GetIFGetInfoString(INTERFACE_INFO_TLTYPE);
}

} // namespace ZqApi
