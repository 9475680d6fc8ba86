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

gcstring CZqDeviceInfo::GetID() const {
    return GetDeviceInfoString(DEVICE_INFO_ID);
}
gcstring CZqDeviceInfo::GetVendor() const {
    return GetDeviceInfoString(DEVICE_INFO_VENDOR);
}
gcstring CZqDeviceInfo::GetModel() const {
    return GetDeviceInfoString(DEVICE_INFO_MODEL);
}
gcstring CZqDeviceInfo::GetTLType() const {
    return GetDeviceInfoString(DEVICE_INFO_TLTYPE);
}
gcstring CZqDeviceInfo::GetDisplayName() const {
    return GetDeviceInfoString(DEVICE_INFO_DISPLAYNAME);
}
DEVICE_ACCESS_STATUS CZqDeviceInfo::GetAccessStatus() const {
    return GetDeviceInfo<DEVICE_ACCESS_STATUS>(DEVICE_INFO_ACCESS_STATUS);
}
gcstring CZqDeviceInfo::GetUserDefinedName() const {
    return GetDeviceInfoString(DEVICE_INFO_USER_DEFINED_NAME);
}
gcstring CZqDeviceInfo::GetSerialNumber() const {
    return GetDeviceInfoString(DEVICE_INFO_SERIAL_NUMBER);
}
gcstring CZqDeviceInfo::GetVersion() const {
    return GetDeviceInfoString(DEVICE_INFO_VERSION);
}
uint64_t CZqDeviceInfo::GetTimestampFrequency() const {
    return GetDeviceInfo<uint64_t>(DEVICE_INFO_TIMESTAMP_FREQUENCY);
}

} // namespace ZqApi
