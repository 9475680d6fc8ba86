#include "ZqSDKCommon/ZqROIImage.h"

#include <algorithm>

#include <ZqApi/Library.h>

#include "ZqSDKCommon/Error.h"
#include "ZqSDKCommon/ImageSize.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqSDKCommon/ZqROIImage";

/// One direction of a region: a size in steps of the increment, and an offset that leaves room for it.
void CheckRange(const char* sizeName, size_t size, const char* offsetName, size_t offset, size_t parentSize,
                size_t increment) {
    const auto signedSize = static_cast<int64_t>(size);
    const auto signedOffset = static_cast<int64_t>(offset);
    const auto signedIncrement = static_cast<int64_t>(increment);
    const size_t room = parentSize > size ? parentSize - size : 0;
    CheckMin(UNIT, __LINE__, sizeName, signedSize, signedIncrement);
    CheckMax(UNIT, __LINE__, sizeName, signedSize, static_cast<int64_t>(parentSize));
    CheckIncrement(UNIT, __LINE__, sizeName, signedSize, signedIncrement, signedIncrement);
    CheckMin(UNIT, __LINE__, offsetName, signedOffset, 0);
    CheckMax(UNIT, __LINE__, offsetName, signedOffset, static_cast<int64_t>(room));
    CheckIncrement(UNIT, __LINE__, offsetName, signedOffset, 0, signedIncrement);
}

} // namespace

void CZqROIImage::SetROI(size_t x, size_t y, size_t width, size_t height) {
    const size_t parentWidth = m_pParent->GetImageWidth();
    const size_t parentHeight = m_pParent->GetImageHeight();
    // Kept: the format is that of the region before this call.
    const IZqPixelFormatInfo& info = *GetIZqPixelFormatInfo(GetImagePixelFormat());
    CheckRange("size_t Width", width, "size_t x", x, parentWidth, info.GetPixelIncrementX());
    // Kept: what is wrong below does not take these two back.
    m_nWidth = width;
    m_nX = x;
    CheckRange("size_t Height", height, "size_t y", y, parentHeight, info.GetPixelIncrementY());
    m_nY = y;
    m_nHeight = height;
}

size_t CZqROIImage::GetImageLinePitch() {
    return m_pParent->GetImageLinePitch();
}

size_t CZqROIImage::GetImagePlanePitch() {
    return m_pParent->GetImagePlanePitch();
}

EZqPixelFormatNamingConvention_t CZqROIImage::GetImagePixelFormat() {
    return GetIZqPixelFormatInfo(m_pParent->GetImagePixelFormat())->GetOffsettedPixelFormat(m_nX, m_nY);
}

void* CZqROIImage::GetImageBuffer() {
    const size_t bits = LineBitsOf(*GetIZqPixelFormatInfo(GetImagePixelFormat()));
    auto* const begin = static_cast<uint8_t*>(m_pParent->GetImageBuffer());
    if (begin == nullptr)
        return nullptr;
    return begin + m_nY * GetImageLinePitch() + m_nX * bits / 8;
}

void* CZqROIImage::GetUserContext() {
    return m_pParent->GetUserContext();
}

IZqImage* CZqROIImage::GetROIImage(size_t x, size_t y, size_t width, size_t height) {
    return RetargetROIImage(UNIT, m_pChild, *this, x, y, width, height);
}

IZqPixelComponentValue* CZqROIImage::GetIZqPixelComponentValue(size_t x, size_t y) {
    return m_pParent->GetIZqPixelComponentValue(x + m_nX, y + m_nY);
}

IZqImage* RetargetROIImage(const char* unit, std::unique_ptr<CZqROIImage>& view, IZqImageInside& parent,
                           size_t x, size_t y, size_t width, size_t height) {
    if (view == nullptr)
        view = ConvertBadAlloc(unit, __LINE__, [&] { return std::make_unique<CZqROIImage>(parent); });
    view->SetROI(x, y, width, height);
    return view.get();
}

size_t CZqROIImage::GetReadableSize() {
    const auto* const begin = static_cast<const uint8_t*>(m_pParent->GetImageBuffer());
    if (begin == nullptr)
        return 0;
    const auto offset = static_cast<size_t>(static_cast<const uint8_t*>(GetImageBuffer()) - begin);
    const size_t parentSize = ReadableSizeOf(*m_pParent);
    return offset < parentSize ? parentSize - offset : 0;
}

size_t ReadableSizeOf(IZqImage& image) {
    const size_t planes = GetIZqPixelFormatInfo(image.GetImagePixelFormat())->GetPlaneCount();
    const size_t size =
        (planes - 1) * image.GetImagePlanePitch() + image.GetImageHeight() * image.GetImageLinePitch();
    auto* const pInside = dynamic_cast<IZqImageInside*>(&image);
    return pInside != nullptr ? std::min(size, pInside->GetReadableSize()) : size;
}

IZqImageInside& RootOf(IZqImageInside& image) {
    auto* const pRegion = dynamic_cast<CZqROIImage*>(&image);
    return pRegion != nullptr ? RootOf(pRegion->GetParent()) : image;
}

} // namespace ZqApi
