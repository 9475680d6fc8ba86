#include "ZqApi_TL/ZqIFDeviceInfo.h"

#include "ZqGenTLCommon/InfoQuery.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqIFDeviceInfo";
constexpr const char* FORMAT = "%d = IFGetDeviceInfo(0x%p, 0x%p, %d, 0x%p, 0x%p, 0x%p)";

} // namespace

template <class T>
T CZqIFDeviceInfo::GetDeviceInfo(DEVICE_INFO_CMD command) const {
    ZQ_ASSERT(UNIT, m_hIF != NULL);
    return QueryNumber<T>({m_pCZqGenTL, UNIT, __LINE__, "IFGetDeviceInfo", FORMAT},
                          m_pCZqGenTL->IFGetDeviceInfo, command, m_hIF, m_DeviceID.c_str());
}

gcstring CZqIFDeviceInfo::GetDeviceInfoString(DEVICE_INFO_CMD command) const {
    ZQ_ASSERT(UNIT, m_hIF != NULL);
    return QueryText({m_pCZqGenTL, UNIT, __LINE__, "IFGetDeviceInfo", FORMAT}, m_pCZqGenTL->IFGetDeviceInfo,
                     command, m_hIF, m_DeviceID.c_str());
}

gcstring CZqIFDeviceInfo::GetID() const {
    return m_DeviceID;
}

int32_t CZqIFDeviceInfo::GetDeviceInfoInt32(DEVICE_INFO_CMD command) const {
    return GetDeviceInfo<int32_t>(command);
}

uint64_t CZqIFDeviceInfo::GetDeviceInfoUInt64(DEVICE_INFO_CMD command) const {
    return GetDeviceInfo<uint64_t>(command);
}

} // namespace ZqApi
