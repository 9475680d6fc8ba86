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
gcstring CZqIFDeviceInfo::GetVendor() const {
    return GetDeviceInfoString(DEVICE_INFO_VENDOR);
}
gcstring CZqIFDeviceInfo::GetModel() const {
    return GetDeviceInfoString(DEVICE_INFO_MODEL);
}
gcstring CZqIFDeviceInfo::GetTLType() const {
    return GetDeviceInfoString(DEVICE_INFO_TLTYPE);
}
gcstring CZqIFDeviceInfo::GetDisplayName() const {
    return GetDeviceInfoString(DEVICE_INFO_DISPLAYNAME);
}
DEVICE_ACCESS_STATUS CZqIFDeviceInfo::GetAccessStatus() const {
    return GetDeviceInfo<DEVICE_ACCESS_STATUS>(DEVICE_INFO_ACCESS_STATUS);
}
gcstring CZqIFDeviceInfo::GetUserDefinedName() const {
    return GetDeviceInfoString(DEVICE_INFO_USER_DEFINED_NAME);
}
gcstring CZqIFDeviceInfo::GetSerialNumber() const {
    return GetDeviceInfoString(DEVICE_INFO_SERIAL_NUMBER);
}
gcstring CZqIFDeviceInfo::GetVersion() const {
    return GetDeviceInfoString(DEVICE_INFO_VERSION);
}
uint64_t CZqIFDeviceInfo::GetTimestampFrequency() const {
    return GetDeviceInfo<uint64_t>(DEVICE_INFO_TIMESTAMP_FREQUENCY);
}

} // namespace ZqApi
