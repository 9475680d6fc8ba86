#pragma once

#include <vector>

#include <ZqApi/DataStream.h>
#include <ZqApi/Device.h>
#include <ZqApi/Export.h>
#include <ZqApi/System.h>
#include <ZqApi/Types.h>

namespace ZqApi {

/// An array that owns modules: releasable `T`, handed out as plain `UT`. One thread at a time.
///
/// Its destructor releases what is still registered, in order, and swallows failures: a module that refuses,
/// because it runs one of its callbacks, is left to itself. Whoever holds several
/// arrays destroys streams before devices and devices before systems. An index out of range throws
/// GenICam::OutOfRangeException: "nIndex = 2 must be smaller than Max = 2". The three instances below are all
/// that the library has.
template <class T, class UT>
class CZqAutoPtrArray {
public:
    /// Throws GenICam::BadAllocException.
    CZqAutoPtrArray();
    virtual ~CZqAutoPtrArray();
    CZqAutoPtrArray(const CZqAutoPtrArray&) = delete;
    CZqAutoPtrArray& operator=(const CZqAutoPtrArray&) = delete;

    /// Appends `p`, which the array owns from now on, and returns its index. Nothing is checked: the same
    /// object twice is released twice. When it throws, the caller still owns the object.
    virtual size_t Register(T* p);
    /// Takes the entry out and hands it back, unreleased; later entries move down by one.
    virtual T* Deregister(size_t nIndex);
    virtual size_t GetSize() const;
    /// Stops the process for a null entry.
    virtual UT* operator[](size_t nIndex) const;

protected:
    /// Takes out and releases the entry at index 0 until none is left. One that refuses stays, with those
    /// behind it, and its exception leaves.
    void ReleaseAll();

private:
    std::vector<T*>* m_pEntries;
};

extern template class ZQAPI_API CZqAutoPtrArray<IZqSystemReleasable, IZqSystem>;
extern template class ZQAPI_API CZqAutoPtrArray<IZqDeviceReleasable, IZqDevice>;
extern template class ZQAPI_API CZqAutoPtrArray<IZqDataStreamReleasable, IZqDataStream>;

/// Systems, of several producers for instance.
class ZQAPI_API CIZqSystemPtrArray : public CZqAutoPtrArray<IZqSystemReleasable, IZqSystem> {
public:
    /// Releases every system, index 0 first; the array stays, empty.
    void Release();
    /// Opens the first device of the first system that has one that opens; the caller releases it. Reasons
    /// of systems that have none are not told: GenICam::RuntimeException "There is no available device.".
    IZqDeviceReleasable* CreateFirstIZqDevice(DEVICE_ACCESS_FLAGS eDeviceAccessFlags);
};

/// Cameras that start and stop together. The operations on all of them run in index order and end at the
/// first exception, which the caller gets; those before it have started or stopped.
class ZQAPI_API CIZqDevicePtrArray : public CZqAutoPtrArray<IZqDeviceReleasable, IZqDevice> {
public:
    void Release();
    void AcquisitionStart();
    void AcquisitionStop();
};

/// Streams that are waited on together; operations on all of them as for devices.
class ZQAPI_API CIZqDataStreamPtrArray : public CZqAutoPtrArray<IZqDataStreamReleasable, IZqDataStream> {
public:
    void Release();
    void StartAcquisition(uint64_t count, ACQ_START_FLAGS flags);
    void StopAcquisition(ACQ_STOP_FLAGS flags);
    /// False at the first stream that does not grab; true for an empty array.
    bool IsGrabbingAll();
    /// True at the first stream that grabs; false for an empty array.
    bool IsGrabbingAny();
    /// The next filled buffer of any stream, of the lowest index when several have one; give it back by its
    /// `Release`.
    ///
    /// After `timeoutMs` milliseconds null, or with ZqTimeoutHandling_ThrowException
    /// GenICam::TimeoutException "A timeout occurred during the processing of
    /// CIZqDataStreamPtrArray::RetrieveBuffer(5000, 1)". Only filled buffers end the wait: neither a stop nor
    /// the loss of a device does, and an empty array times out at once. When another thread takes the buffer
    /// meanwhile, the stream decides as for a time-out of 0.
    IZqStreamBufferReleasable* RetrieveBuffer(uint32_t timeoutMs, EZqTimeoutHandling_t handling);
};

} // namespace ZqApi
