#pragma once

#include <ZqApi/Device.h>

namespace ZqApi {

/// The device information commands, each with its getter, for whichever producer function answers them.
class DeviceInfoGetters : public IZqDeviceInfo {
public:
    gcstring GetID() const override { return GetDeviceInfoString(DEVICE_INFO_ID); }
    gcstring GetVendor() const final { return GetDeviceInfoString(DEVICE_INFO_VENDOR); }
    gcstring GetModel() const final { return GetDeviceInfoString(DEVICE_INFO_MODEL); }
    gcstring GetTLType() const final { return GetDeviceInfoString(DEVICE_INFO_TLTYPE); }
    gcstring GetDisplayName() const final { return GetDeviceInfoString(DEVICE_INFO_DISPLAYNAME); }
    DEVICE_ACCESS_STATUS GetAccessStatus() const final {
        return GetDeviceInfoInt32(DEVICE_INFO_ACCESS_STATUS);
    }
    gcstring GetUserDefinedName() const final { return GetDeviceInfoString(DEVICE_INFO_USER_DEFINED_NAME); }
    gcstring GetSerialNumber() const final { return GetDeviceInfoString(DEVICE_INFO_SERIAL_NUMBER); }
    gcstring GetVersion() const final { return GetDeviceInfoString(DEVICE_INFO_VERSION); }
    uint64_t GetTimestampFrequency() const final {
        return GetDeviceInfoUInt64(DEVICE_INFO_TIMESTAMP_FREQUENCY);
    }

private:
    virtual gcstring GetDeviceInfoString(DEVICE_INFO_CMD command) const = 0;
    virtual int32_t GetDeviceInfoInt32(DEVICE_INFO_CMD command) const = 0;
    virtual uint64_t GetDeviceInfoUInt64(DEVICE_INFO_CMD command) const = 0;
};

} // namespace ZqApi
