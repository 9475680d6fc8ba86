#pragma once

#include <memory>

#include "ZqSDKCommon/IZqImageInside.h"
#include "ZqSDKCommon/IZqPixelComponentValueInside.h"
#include "ZqSDKCommon/ZqROIImage.h"

namespace ZqApi {

/// The image buffer as the library itself uses it.
class IZqImageBufferInside : public IZqImageBufferReleasable {
protected:
    ~IZqImageBufferInside() = default;
};

/// An image that the caller owns: a block of memory and how it is laid out. One thread at a time.
///
/// The memory comes from the caller's allocator or, without one, from the buffer itself. While there is any,
/// line pitch times planes times height never exceeds its capacity.
class CZqImageBuffer final : public IZqImageBufferInside, public IZqImageInside, public IZqAllocator {
public:
    /// Null allocates from the heap. Throws GenICam::BadAllocException.
    explicit CZqImageBuffer(IZqAllocator* pAllocator);
    CZqImageBuffer(const CZqImageBuffer&) = delete;
    CZqImageBuffer& operator=(const CZqImageBuffer&) = delete;
    ~CZqImageBuffer();

    void CreateBuffer(size_t width, size_t height, EZqPixelFormatNamingConvention_t format,
                      _EZqMemoryInitialization_t initialization) override;
    IZqImage* GetIZqImage() override;
    void CopyImage(IZqImage* pSource) override;
    void SetSize(size_t width, size_t height, EZqPixelFormatNamingConvention_t format,
                 size_t linePitchAlignment) override;
    bool HasImageBuffer() override;
    void Release() override;

    size_t GetImageWidth() override;
    size_t GetImageHeight() override;
    size_t GetImageLinePitch() override;
    size_t GetImagePlanePitch() override;
    EZqPixelFormatNamingConvention_t GetImagePixelFormat() override;
    void* GetImageBuffer() override;
    void* GetUserContext() override;
    IZqImage* GetROIImage(size_t x, size_t y, size_t width, size_t height) override;
    IZqPixelComponentValue* GetIZqPixelComponentValue(size_t x, size_t y) override;

    size_t GetReadableSize() override { return m_nCapacity; }

    void Allocate(void** ppBuffer, size_t size, void** ppContext) override;
    void Deallocate(void* pBuffer, size_t size, void* pContext) override;
    void OnDeregister() override;

    /// Draw a chart into this buffer's own image; false, and nothing drawn, unless the initialisation is
    /// ZqMemoryInitialization_TestChart. Throw GenICam::BadAllocException.
    bool MakeChartMono8(IZqImage* pIZqImage, _EZqMemoryInitialization_t initialization);
    bool MakeChartMono16(IZqImage* pIZqImage, _EZqMemoryInitialization_t initialization);
    bool MakeChartBGR8(IZqImage* pIZqImage, _EZqMemoryInitialization_t initialization);
    bool MakeChartBGR16(IZqImage* pIZqImage, _EZqMemoryInitialization_t initialization);

    /// Bytes allocated; the current size may need fewer.
    size_t GetCapacity() const { return m_nCapacity; }

private:
    void Reallocate(size_t size);
    void ReleaseMemory();

    void* m_pBuffer = nullptr;
    void* m_pUserContext = nullptr;
    size_t m_nCapacity = 0;
    IZqAllocator* const m_pAllocator;
    size_t m_nWidth = 0;
    size_t m_nHeight = 0;
    size_t m_nLinePitch = 0;
    EZqPixelFormatNamingConvention_t m_ePixelFormat = ZqPixelFormat_Unknown;
    std::unique_ptr<IZqPixelComponentValueInside> m_pPixelComponent;
    std::unique_ptr<CZqROIImage> m_pCZqROIImage;
};

} // namespace ZqApi
