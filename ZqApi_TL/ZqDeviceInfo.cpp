#include "ZqApi_TL/ZqDeviceInfo.h"

#include "ZqGenTLCommon/InfoQuery.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqDeviceInfo";
constexpr const char* FORMAT = "%d = DevGetInfo(0x%p, %d, 0x%p, 0x%p, 0x%p)";

} // namespace

template <class T>
T CZqDeviceInfo::GetDeviceInfo(DEVICE_INFO_CMD command) const {
    ZQ_ASSERT(UNIT, m_hDevice != NULL);
    return QueryNumber<T>({m_pCZqGenTL, UNIT, __LINE__, "DevGetInfo", FORMAT}, m_pCZqGenTL->DevGetInfo,
                          command, m_hDevice);
}

gcstring CZqDeviceInfo::GetDeviceInfoString(DEVICE_INFO_CMD command) const {
    ZQ_ASSERT(UNIT, m_hDevice != NULL);
    return QueryText({m_pCZqGenTL, UNIT, __LINE__, "DevGetInfo", FORMAT}, m_pCZqGenTL->DevGetInfo, command,
                     m_hDevice);
}

int32_t CZqDeviceInfo::GetDeviceInfoInt32(DEVICE_INFO_CMD command) const {
    return GetDeviceInfo<int32_t>(command);
}

uint64_t CZqDeviceInfo::GetDeviceInfoUInt64(DEVICE_INFO_CMD command) const {
    return GetDeviceInfo<uint64_t>(command);
}

} // namespace ZqApi
