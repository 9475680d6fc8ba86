#pragma once

#include "ZqApi_TL/DeviceInfoGetters.h"

namespace ZqApi {

class CZqGenTLLib;

/// DevGetInfo on an opened device. A member of the device object.
class CZqDeviceInfo final : public DeviceInfoGetters {
public:
    CZqDeviceInfo(CZqGenTLLib* pGenTL, DEV_HANDLE hDevice) : m_pCZqGenTL(pGenTL), m_hDevice(hDevice) {}

private:
    gcstring GetDeviceInfoString(DEVICE_INFO_CMD command) const override;
    int32_t GetDeviceInfoInt32(DEVICE_INFO_CMD command) const override;
    uint64_t GetDeviceInfoUInt64(DEVICE_INFO_CMD command) const override;
    template <class T>
    T GetDeviceInfo(DEVICE_INFO_CMD command) const;

    CZqGenTLLib* m_pCZqGenTL;
    DEV_HANDLE m_hDevice;
};

} // namespace ZqApi
