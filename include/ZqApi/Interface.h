#pragma once

#include <ZqApi/Callback.h>
#include <ZqApi/EventCtrl.h>
#include <ZqApi/Types.h>

namespace ZqApi {

class IZqDeviceInfo;
class IZqDeviceReleasable;
class IZqPort;
class IZqSystem;

/// What a producer says of one interface (IFGetInfo). Asks anew on every call, from any thread; throws
/// CZqGenTLErrorException when the producer refuses. The object belongs to its interface.
class IZqInterfaceInfo {
public:
    virtual gcstring GetID() const = 0;
    virtual gcstring GetDisplayName() const = 0;
    /// "U3V", "GEV", "CXP", ...
    virtual gcstring GetTLType() const = 0;
    virtual ~IZqInterfaceInfo() = default;
};

/// One adapter that cameras hang on: a network card, a USB host controller, a frame grabber.
///
/// Owned by its system. All operations may be called from any thread.
class IZqInterface : public IZqRegisterCallback, public IZqEventCtrl {
public:
    virtual IZqSystem* GetIZqSystem() = 0;
    virtual IZqPort* GetIZqPort() = 0;
    virtual const IZqInterfaceInfo* GetIZqInterfaceInfo() = 0;
    /// Asks the producer, up to the time-out below, whether the devices changed and rebuilds the list if so;
    /// true when it was rebuilt. Open devices are not touched.
    virtual bool UpdateDeviceList() = 0;
    /// In milliseconds: 250, or 500 on USB3 Vision interfaces of the default vendor, until set.
    virtual uint64_t GetUpdateDeviceListTimeout() = 0;
    virtual void SetUpdateDeviceListTimeout(uint64_t timeoutMs) = 0;
    virtual uint32_t GetDeviceCount() = 0;
    /// What is known of the device without opening it; valid until the next UpdateDeviceList. Throws
    /// GenICam::OutOfRangeException when there is no such index.
    virtual const IZqDeviceInfo* GetIZqDeviceInfo(size_t nIndex) = 0;
    /// Whether the device would let itself be opened with these flags (DEVICE_ACCESS_READONLY, _CONTROL or
    /// _EXCLUSIVE). Throws GenICam::OutOfRangeException for other flags and for an index that is not there.
    virtual bool IsDeviceAvailable(size_t nIndex, DEVICE_ACCESS_FLAGS eDeviceAccessFlags) = 0;
    /// Opens the device at this index of the list. The caller releases it, before the system.
    virtual IZqDeviceReleasable* CreateIZqDevice(size_t nIndex, DEVICE_ACCESS_FLAGS eDeviceAccessFlags) = 0;
    /// Opens the device with this identifier; it need not be in the list. Its event threads are running on
    /// return. The caller releases it, before the system.
    virtual IZqDeviceReleasable* CreateIZqDevice(const gcstring& id,
                                                 DEVICE_ACCESS_FLAGS eDeviceAccessFlags) = 0;
    /// Opens the first available device of the list; never updates the list. Throws GenICam::RuntimeException
    /// "There is no available device.".
    virtual IZqDeviceReleasable* CreateFirstIZqDevice(DEVICE_ACCESS_FLAGS eDeviceAccessFlags) = 0;

protected:
    ~IZqInterface() = default;
};

} // namespace ZqApi
