#pragma once

#include <memory>

#include "ZqSDKCommon/IZqImageInside.h"

namespace ZqApi {

/// A view of a rectangular region of another image; owns no pixels. One thread at a time.
///
/// The parent owns the view, so it outlives it. A new view is empty; each SetROI re-targets it for everybody
/// who holds it.
class CZqROIImage final : public IZqImageInside {
public:
    explicit CZqROIImage(IZqImageInside& parent) : m_pParent(&parent) {}
    CZqROIImage(const CZqROIImage&) = delete;
    CZqROIImage& operator=(const CZqROIImage&) = delete;

    size_t GetImageWidth() override { return m_nWidth; }
    size_t GetImageHeight() override { return m_nHeight; }
    size_t GetImageLinePitch() override;
    size_t GetImagePlanePitch() override;
    EZqPixelFormatNamingConvention_t GetImagePixelFormat() override;
    void* GetImageBuffer() override;
    void* GetUserContext() override;
    IZqImage* GetROIImage(size_t x, size_t y, size_t width, size_t height) override;
    IZqPixelComponentValue* GetIZqPixelComponentValue(size_t x, size_t y) override;

    /// Offsets and sizes are multiples of the pixel format's increments and stay inside the parent. Throws
    /// GenICam::OutOfRangeException; a refusal of the vertical numbers leaves the horizontal ones in place.
    void SetROI(size_t x, size_t y, size_t width, size_t height);

    size_t GetReadableSize() override;
    IZqImageInside& GetParent() { return *m_pParent; }

private:
    IZqImageInside* const m_pParent;
    size_t m_nX = 0;
    size_t m_nY = 0;
    size_t m_nWidth = 0;
    size_t m_nHeight = 0;
    std::unique_ptr<CZqROIImage> m_pChild;
};

/// What GetROIImage of every image does: creates the view on the first call, then re-targets it. `unit` is
/// the source of the GenICam::BadAllocException when there is no memory for the view.
IZqImage* RetargetROIImage(const char* unit, std::unique_ptr<CZqROIImage>& view, IZqImageInside& parent,
                           size_t x, size_t y, size_t width, size_t height);

/// The bytes from the image's first pixel on that belong to it: every line of every plane counts with its
/// whole pitch, but not beyond the memory that there is; a region's ends where its parent's does.
size_t ReadableSizeOf(IZqImage& image);

/// The image that a region, or a region of a region, lies in; of others the image itself.
IZqImageInside& RootOf(IZqImageInside& image);

} // namespace ZqApi
