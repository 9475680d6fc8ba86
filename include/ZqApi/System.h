#pragma once

#include <ZqApi/Callback.h>
#include <ZqApi/EventCtrl.h>
#include <ZqApi/Releasable.h>
#include <ZqApi/Types.h>

namespace ZqApi {

class IZqDeviceReleasable;
class IZqInterface;
class IZqPort;

/// What a producer says of itself (TLGetInfo). Every getter asks the producer anew, from any thread, and
/// throws CZqGenTLErrorException when the producer refuses. The object belongs to its system.
class IZqSystemInfo {
public:
    virtual gcstring GetID() const = 0;
    virtual gcstring GetVendor() const = 0;
    virtual gcstring GetModel() const = 0;
    virtual gcstring GetVersion() const = 0;
    virtual gcstring GetTLType() const = 0;
    /// File name of the producer.
    virtual gcstring GetName() const = 0;
    /// Full path of the producer.
    virtual gcstring GetPathName() const = 0;
    virtual gcstring GetDisplayName() const = 0;
    /// 0 ASCII, 1 UTF-8.
    virtual int32_t GetCharEncoding() const = 0;
    virtual uint32_t GetGenTLVersionMajor() const = 0;
    virtual uint32_t GetGenTLVersionMinor() const = 0;
    virtual ~IZqSystemInfo() = default;
};

/// The root of the module tree: one loaded producer with the interfaces that pass the system's filter.
///
/// Made by CreateIZqSystem. All operations may be called from any thread, but for starting and stopping the
/// event threads, which belong to one at a time; UpdateInterfaceList and the last `Release` throw
/// GenICam::LogicalErrorException on an event thread of the system or of one of its interfaces, that is
/// inside their error callbacks. Interfaces stay owned by the system; devices opened from it must be released
/// before it.
class IZqSystem : public IZqRegisterCallback, public IZqEventCtrl {
public:
    virtual EZqSystemVendor_t GetZqSystemVendor() = 0;
    /// The transport layer's own port, owned by the system.
    virtual IZqPort* GetIZqPort() = 0;
    virtual const IZqSystemInfo* GetIZqSystemInfo() = 0;
    /// Asks the producer (up to 250 ms) whether its interfaces changed and rebuilds the list if so; true when
    /// it was rebuilt. Interfaces that stayed keep their objects, the ones that went are released. When the
    /// producer fails midway, interfaces not yet reached are gone from the list until the producer reports
    /// another change.
    virtual bool UpdateInterfaceList() = 0;
    virtual uint32_t GetInterfaceCount() = 0;
    /// The interface at `index` in the producer's order. Throws GenICam::OutOfRangeException when there is
    /// none.
    virtual IZqInterface* GetIZqInterface(size_t index) = 0;
    /// Opens the first device that lets itself be opened, interface by interface. The caller releases it.
    /// Throws GenICam::RuntimeException "There is no available device." when there is none, whatever the
    /// reasons were.
    virtual IZqDeviceReleasable* CreateFirstIZqDevice(DEVICE_ACCESS_FLAGS eDeviceAccessFlags) = 0;

protected:
    ~IZqSystem() = default;
};

/// A system that its creator owns: `Release` gives it back, and the last one closes the producer.
class IZqSystemReleasable : public IZqSystem, public IZqReleasable {
protected:
    ~IZqSystemReleasable() = default;
};

} // namespace ZqApi
