#pragma once

#include <ZqApi/Device.h>

namespace ZqApi {

class CZqGenTLLib;

/// DevGetInfo on an opened device. A member of the device object.
class CZqDeviceInfo final : public IZqDeviceInfo {
public:
    CZqDeviceInfo(CZqGenTLLib* pGenTL, DEV_HANDLE hDevice) : m_pCZqGenTL(pGenTL), m_hDevice(hDevice) {}

    gcstring GetID() const override;
    gcstring GetVendor() const override;
    gcstring GetModel() const override;
    gcstring GetTLType() const override;
    gcstring GetDisplayName() const override;
    DEVICE_ACCESS_STATUS GetAccessStatus() const override;
    gcstring GetUserDefinedName() const override;
    gcstring GetSerialNumber() const override;
    gcstring GetVersion() const override;
    uint64_t GetTimestampFrequency() const override;

private:
    template <class T>
    T GetDeviceInfo(DEVICE_INFO_CMD command) const;
    gcstring GetDeviceInfoString(DEVICE_INFO_CMD command) const;

    CZqGenTLLib* m_pCZqGenTL;
    DEV_HANDLE m_hDevice;
};

} // namespace ZqApi
