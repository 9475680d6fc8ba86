#pragma once

#include <ZqApi/PixelFormat.h>
#include <ZqApi/Releasable.h>
#include <ZqApi/Types.h>

namespace ZqApi {

class IZqPixelComponentValue;

/// Pixels in memory: a stream buffer's picture, a caller-owned image, or a region of either.
///
/// Widths are in pixels, heights in lines, pitches in bytes. An image is used from one thread at a time.
class IZqImage {
public:
    virtual size_t GetImageWidth() = 0;
    virtual size_t GetImageHeight() = 0;
    /// Bytes from one line to the next.
    virtual size_t GetImageLinePitch() = 0;
    /// Bytes from one plane to the next: line pitch times height, of a region its parent's.
    virtual size_t GetImagePlanePitch() = 0;
    virtual EZqPixelFormatNamingConvention_t GetImagePixelFormat() = 0;
    /// Line 0 of plane 0; owned by the image.
    virtual void* GetImageBuffer() = 0;
    /// What the allocator of the memory stored with it, even when the memory is gone; null without an
    /// allocator.
    virtual void* GetUserContext() = 0;
    /// A view of a region, owned by this image; every call re-targets the same view.
    ///
    /// Offset and size are multiples of the pixel format's increments and lie inside the image, else
    /// GenICam::OutOfRangeException is thrown; a refusal of `y` or `height` leaves the view with the new `x`
    /// and `width`. The view of a buffer ends when the buffer's memory is given back; a new size in the same
    /// memory leaves it where it was, which may be outside the image: bytes that are not there read as 0.
    virtual IZqImage* GetROIImage(size_t x, size_t y, size_t width, size_t height) = 0;
    /// The components of the pixel at (x, y), owned by this image and overwritten by the next call. Throws
    /// GenICam::OutOfRangeException outside the image; of a region, outside the image that it lies in.
    virtual IZqPixelComponentValue* GetIZqPixelComponentValue(size_t x, size_t y) = 0;

protected:
    ~IZqImage() = default;
};

/// Image memory from the application, for data streams and image buffers. Implemented by the application and
/// never owned by the library; a stream calls it from the thread that starts, stops or releases the stream,
/// an image buffer from the thread that uses the buffer. Taking memory back must not throw.
class IZqAllocator {
public:
    /// Stores a block of at least `size` bytes in `*ppBuffer` (null: no memory) and, if wanted, a context.
    virtual void Allocate(void** ppBuffer, size_t size, void** ppContext) = 0;
    /// Takes a block back: the `size` that was asked for and the context that Allocate stored.
    virtual void Deallocate(void* pBuffer, size_t size, void* pContext) = 0;
    /// Called once when an image buffer that used the allocator is destroyed; data streams never call it.
    virtual void OnDeregister() = 0;

protected:
    ~IZqAllocator() = default;
};

/// How IZqImageBuffer::CreateBuffer fills the memory.
enum _EZqMemoryInitialization_t : int32_t {
    ZqMemoryInitialization_None = 0,
    ZqMemoryInitialization_ZeroFill = 1,
    ZqMemoryInitialization_FFFill = 2,
    ZqMemoryInitialization_TestChart = 3
};

/// An image that the caller owns. One thread at a time.
///
/// Memory is kept while a new size fits into it, and given back to the allocator before a larger block is
/// asked for: when there is none, GenICam::BadAllocException without a text is thrown and the buffer is
/// empty. A size below 1 throws GenICam::OutOfRangeException, an unknown format GenICam::RuntimeException, a
/// size beyond 64 bits GenICam::BadAllocException, and all three change nothing.
class IZqImageBuffer {
public:
    /// SetSize with the format's own alignment, then a fill of all the memory held, or a test chart: grey
    /// steps and ramps in Mono8 to Mono16, colour patches in the unpacked BGR formats, the same drawn with
    /// samples of twice the size, and so in stripes, in RGB8 and RGBa8, zeros in all others.
    virtual void CreateBuffer(size_t width, size_t height, EZqPixelFormatNamingConvention_t format,
                              _EZqMemoryInitialization_t initialization) = 0;
    /// Throws GenICam::RuntimeException "There is no available image." while no memory is held.
    virtual IZqImage* GetIZqImage() = 0;
    /// Takes over size, format and pixels of another image of the library (an application's own
    /// implementation of IZqImage stops the process). The lines are aligned as the format asks, not as the
    /// source's.
    virtual void CopyImage(IZqImage* pSource) = 0;
    /// `linePitchAlignment` in bytes; 0 takes the pixel format's own.
    virtual void SetSize(size_t width, size_t height, EZqPixelFormatNamingConvention_t format,
                         size_t linePitchAlignment) = 0;
    virtual bool HasImageBuffer() = 0;

protected:
    ~IZqImageBuffer() = default;
};

class IZqImageBufferReleasable : public IZqImageBuffer, public IZqReleasable {
protected:
    ~IZqImageBufferReleasable() = default;
};

} // namespace ZqApi
