#pragma once

#include <ZqApi/Callback.h>
#include <ZqApi/EventCtrl.h>
#include <ZqApi/Releasable.h>
#include <ZqApi/Types.h>

namespace ZqApi {

class IZqDataStream;
class IZqImage;
class IZqPort;

/// What a producer says of one delivered buffer (DSGetBufferInfo).
///
/// Every getter asks the producer anew, from any thread; a value that the producer does not give throws
/// CZqGenTLErrorException. Sizes and offsets are in bytes, widths in pixels, heights in lines. The object
/// belongs to its buffer.
class IZqStreamBufferInfo {
public:
    virtual void* GetBaseAddress() const = 0;
    virtual size_t GetBufferSize() const = 0;
    virtual void* GetUserPtr() const = 0;
    /// In ticks of the camera's clock.
    virtual uint64_t GetTimestamp() const = 0;
    virtual bool IsNewData() const = 0;
    virtual bool IsQueued() const = 0;
    virtual bool IsAcquiring() const = 0;
    virtual bool IsIncomplete() const = 0;
    virtual gcstring GetTLType() const = 0;
    virtual size_t GetSizeFilled() const = 0;
    virtual size_t GetWidth() const = 0;
    virtual size_t GetHeight() const = 0;
    virtual size_t GetXOffset() const = 0;
    virtual size_t GetYOffset() const = 0;
    virtual size_t GetXPadding() const = 0;
    virtual size_t GetYPadding() const = 0;
    virtual uint64_t GetFrameID() const = 0;
    virtual bool IsImagePresent() const = 0;
    virtual size_t GetImageOffset() const = 0;
    /// A PAYLOAD_TYPE_... value.
    virtual size_t GetPayloadType() const = 0;
    virtual uint64_t GetPixelFormat() const = 0;
    /// A PIXELFORMAT_NAMESPACE_... value.
    virtual uint64_t GetPixelFormatNameSpace() const = 0;
    virtual size_t GetDeliverdImageHeight() const = 0;
    virtual size_t GetDeliverdChunkPayloadSize() const = 0;
    virtual uint64_t GetChunkLayoutID() const = 0;
    virtual gcstring GetFileName() const = 0;
    virtual int32_t GetPixelEndianness() const = 0;
    virtual size_t GetDataSize() const = 0;
    virtual uint64_t GetTimestampNS() const = 0;
    virtual bool IsDataLargerThanBuffer() const = 0;
    virtual bool HasChunkData() const = 0;
    virtual ~IZqStreamBufferInfo() = default;
};

/// One buffer of a data stream's pool: what the camera filled, and its picture.
///
/// Obtained from IZqDataStream::RetrieveBuffer and used by one thread at a time until it is released.
class IZqStreamBuffer : public IZqRegisterCallback, public IZqEventCtrl {
public:
    virtual IZqDataStream* GetIZqDataStream() const = 0;
    /// The buffer's own port. Many producers have none: its node map then throws CZqGenTLErrorException.
    virtual IZqPort* GetIZqPort() = 0;
    virtual const IZqStreamBufferInfo* GetIZqStreamBufferInfo() const = 0;
    /// The picture, without copying. Throws GenICam::RuntimeException "There is no available image." when the
    /// buffer holds none.
    virtual IZqImage* GetIZqImage() = 0;
    /// The features of the buffer's chunk data, in a node map of the buffer's own. Their values are those of
    /// the frame as it was handed out and last until the buffer is released; for an incomplete frame, or one
    /// without chunks, they are not available. Node callbacks run where a frame is handed out and where the
    /// stream starts, stops or is released, and must do none of these. Throws GenICam::RuntimeException
    /// "Not found a node map for chunk.".
    virtual INodeMap* GetChunkINodeMap() = 0;

protected:
    ~IZqStreamBuffer() = default;
};

/// A buffer in the application's hands: `Release` queues it to the producer again.
///
/// `Release` throws CZqGenTLErrorException when the producer refuses (released twice: "-1004 =
/// DSQueueBuffer(...)"; camera lost). Release every buffer before its stream. When a start replaces the pool
/// meanwhile (larger payload, fewer buffers) the pixels are gone: `Release` then only ends the object,
/// GetIZqPort is null, the chunk features are not available, and asking for information or the image stops
/// the process.
class IZqStreamBufferReleasable : public IZqStreamBuffer, public IZqReleasable {
protected:
    ~IZqStreamBufferReleasable() = default;
};

} // namespace ZqApi
