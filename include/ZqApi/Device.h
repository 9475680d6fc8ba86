#pragma once

#include <ZqApi/Callback.h>
#include <ZqApi/EventCtrl.h>
#include <ZqApi/Releasable.h>
#include <ZqApi/Types.h>

namespace ZqApi {

class IZqAllocator;
class IZqDataStreamReleasable;
class IZqInterface;
class IZqPort;

/// What a producer says of a device, opened (DevGetInfo) or only seen by its interface (IFGetDeviceInfo).
///
/// Every getter asks the producer anew, from any thread, and throws CZqGenTLErrorException when the producer
/// refuses.
class IZqDeviceInfo {
public:
    virtual gcstring GetID() const = 0;
    virtual gcstring GetVendor() const = 0;
    virtual gcstring GetModel() const = 0;
    virtual gcstring GetTLType() const = 0;
    virtual gcstring GetDisplayName() const = 0;
    virtual DEVICE_ACCESS_STATUS GetAccessStatus() const = 0;
    virtual gcstring GetUserDefinedName() const = 0;
    virtual gcstring GetSerialNumber() const = 0;
    virtual gcstring GetVersion() const = 0;
    /// Ticks a second of the camera's time stamps.
    virtual uint64_t GetTimestampFrequency() const = 0;
    virtual ~IZqDeviceInfo() = default;
};

/// An opened camera: its own features (remote port), the producer's view of it (local port) and its data
/// streams.
///
/// Feature access and information may be used from any thread; acquisition start and stop belong to one
/// controlling thread. Data streams must be released before the device, the device before its system.
class IZqDevice : public IZqRegisterCallback, public IZqEventCtrl {
public:
    virtual IZqInterface* GetIZqInterface() = 0;
    /// The producer's module for the device.
    virtual IZqPort* GetLocalIZqPort() = 0;
    virtual IZqDeviceInfo* GetIZqDeviceInfo() const = 0;
    /// The camera itself. Read-only when the device was opened with DEVICE_ACCESS_READONLY.
    virtual IZqPort* GetRemoteIZqPort() = 0;
    virtual size_t GetDataStreamCount() const = 0;
    /// Opens the data stream at `nIndex`. With an allocator the application supplies the image memory (the
    /// allocator must outlive the stream), without one the producer does. The caller releases the stream.
    /// Throws GenICam::OutOfRangeException for an index that is not there.
    virtual IZqDataStreamReleasable* CreateIZqDataStream(size_t nIndex, IZqAllocator* pAllocator) = 0;
    /// Locks the transport parameters ("TLParamsLocked" = 1) and executes the camera's "AcquisitionStart". If
    /// the command fails the lock is taken back. Start the data stream first.
    virtual void AcquisitionStart() = 0;
    /// Executes "AcquisitionStop", then unlocks. Does nothing when not started. When the command fails the
    /// parameters stay locked and the device counts as stopped.
    virtual void AcquisitionStop() = 0;
    /// True once the camera has been lost; it never becomes false again. Close the device and open it anew.
    virtual bool IsDeviceLost() = 0;

protected:
    ~IZqDevice() = default;
};

/// A device that its creator owns. `Release` stops the camera, the event threads and closes it; from one of
/// the device's own event threads it throws GenICam::LogicalErrorException and does nothing. It must not be
/// called from inside a node callback of the device's node maps.
class IZqDeviceReleasable : public IZqDevice, public IZqReleasable {
protected:
    ~IZqDeviceReleasable() = default;
};

} // namespace ZqApi
