#pragma once

#include <utility>

#include <ZqApi/Device.h>

namespace ZqApi {

class CZqGenTLLib;

/// IFGetDeviceInfo for a device that its interface sees, opened or not. An entry of the interface's device
/// list.
class CZqIFDeviceInfo final : public IZqDeviceInfo {
public:
    CZqIFDeviceInfo(CZqGenTLLib* pGenTL, IF_HANDLE hIF, gcstring deviceID)
        : m_pCZqGenTL(pGenTL), m_hIF(hIF), m_DeviceID(std::move(deviceID)) {}

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
    IF_HANDLE m_hIF;
    gcstring m_DeviceID;
};

} // namespace ZqApi
