#pragma once

#include <ZqApi/Callback.h>
#include <ZqApi/EventCtrl.h>
#include <ZqApi/Releasable.h>
#include <ZqApi/Types.h>

namespace ZqApi {

class IZqDevice;
class IZqPort;
class IZqStreamBufferReleasable;

/// What a producer says of a data stream (DSGetInfo).
///
/// Every getter asks the producer anew, from any thread, and throws CZqGenTLErrorException when the producer
/// refuses. The object belongs to its stream.
class IZqDataStreamInfo {
public:
    virtual gcstring GetID() const = 0;
    /// Frames since the last start, without those that still wait for RetrieveBuffer.
    virtual uint64_t GetNumDelivered() const = 0;
    /// Frames lost because no buffer was queued, since the stream was opened.
    virtual uint64_t GetNumUnderrun() const = 0;
    virtual uint64_t GetNumAnnounced() const = 0;
    virtual uint64_t GetNumQueued() const = 0;
    /// Filled buffers that wait, in the producer or for RetrieveBuffer.
    virtual uint64_t GetNumAwaitDelivery() const = 0;
    virtual uint64_t GetNumStarted() const = 0;
    /// Bytes that one frame needs; the camera's "PayloadSize" feature where the producer does not implement
    /// the query.
    virtual size_t GetPayloadSize() const = 0;
    virtual bool IsGrabbing() const = 0;
    virtual bool GetDefinesPayloadSize() const = 0;
    virtual gcstring GetTLType() const = 0;
    virtual size_t GetNumChunksMax() const = 0;
    /// The least number of buffers that the producer starts with.
    virtual size_t GetBufAnnounceMin() const = 0;
    /// In bytes; the pool does not apply it, an allocator may.
    virtual size_t GetBufAlignment() const = 0;
    virtual ~IZqDataStreamInfo() = default;
};

/// A stream of images from a camera: a pool of buffers, acquisition, and delivery to a waiting thread or to
/// callbacks.
///
/// RetrieveBuffer, information and rates may be used from any thread, several at once. Start and stop exclude
/// each other. From inside a callback of the stream, StopAcquisition, StopEventAcquisitionThread and Release
/// throw GenICam::LogicalErrorException and do nothing, and StartAcquisition does nothing.
class IZqDataStream : public IZqRegisterCallback, public IZqEventCtrl {
public:
    virtual IZqDevice* GetIZqDevice() = 0;
    virtual IZqPort* GetIZqPort() = 0;
    virtual const IZqDataStreamInfo* GetIZqDataStreamInfo() = 0;
    virtual size_t GetStreamBufferCount() = 0;
    /// How many buffers the next start uses: 6 until set, at most 65535, at least the producer's minimum (a
    /// producer with a minimum above 6 needs this call). Throws GenICam::OutOfRangeException, and
    /// CZqGenTLErrorException when the producer's minimum can't be read; nothing is changed then.
    virtual void SetStreamBufferCount(size_t nCount) = 0;
    /// The oldest delivered buffer, in the caller's hands until it is released.
    ///
    /// Waits up to `timeoutMs` (INFINITE: without limit). Returns null when acquisition is stopped and
    /// nothing is left to take, and on a time-out unless `handling` asks for GenICam::TimeoutException.
    /// Throws GenICam::AccessException "The device is lost." after a loss and CZqGenTLErrorException when
    /// waiting for the producer's event failed. A reader that begins before StartAcquisition has returned may
    /// get null once.
    virtual IZqStreamBufferReleasable* RetrieveBuffer(uint32_t timeoutMs, EZqTimeoutHandling_t handling) = 0;
    /// Allocates and queues the buffers and starts the producer; does nothing while acquisition runs. `count`
    /// frames (GENTL_INFINITE: until stopped); after a finite count StopAcquisition is still due. Throws
    /// GenICam::AccessException "The device is lost.", CZqGenTLErrorException or GenICam::BadAllocException,
    /// leaving the stream stopped. A producer that refuses the new-buffer event other than by not
    /// implementing it delivers nothing, without an exception.
    virtual void StartAcquisition(uint64_t count, ACQ_START_FLAGS flags) = 0;
    /// Stops the producer and releases a blocked RetrieveBuffer. Frames already delivered can still be
    /// retrieved.
    virtual void StopAcquisition(ACQ_STOP_FLAGS flags) = 0;
    /// True while the producer grabs and while delivered buffers wait to be retrieved.
    virtual bool IsGrabbing() = 0;
    /// Complete frames a second over the last 500 deliveries.
    virtual double GetCurrentFPS() = 0;
    /// Bytes a second over the last 500 deliveries.
    virtual double GetCurrentBPS() = 0;

protected:
    ~IZqDataStream() = default;
};

/// A stream that its creator owns. `Release` stops it, revokes its buffers and closes it, without throwing.
class IZqDataStreamReleasable : public IZqDataStream, public IZqReleasable {
protected:
    ~IZqDataStreamReleasable() = default;
};

} // namespace ZqApi
