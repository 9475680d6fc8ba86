#pragma once

#include <utility>

#include "ZqApi_TL/DeviceInfoGetters.h"

namespace ZqApi {

class CZqGenTLLib;

/// IFGetDeviceInfo for a device that its interface sees, opened or not. An entry of the interface's device
/// list.
class CZqIFDeviceInfo final : public DeviceInfoGetters {
public:
    CZqIFDeviceInfo(CZqGenTLLib* pGenTL, IF_HANDLE hIF, gcstring deviceID)
        : m_pCZqGenTL(pGenTL), m_hIF(hIF), m_DeviceID(std::move(deviceID)) {}

    gcstring GetID() const override;

private:
    gcstring GetDeviceInfoString(DEVICE_INFO_CMD command) const override;
    int32_t GetDeviceInfoInt32(DEVICE_INFO_CMD command) const override;
    uint64_t GetDeviceInfoUInt64(DEVICE_INFO_CMD command) const override;
    template <class T>
    T GetDeviceInfo(DEVICE_INFO_CMD command) const;

    CZqGenTLLib* m_pCZqGenTL;
    IF_HANDLE m_hIF;
    gcstring m_DeviceID;
};

} // namespace ZqApi
