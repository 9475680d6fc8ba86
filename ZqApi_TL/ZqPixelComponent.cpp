#include "ZqApi_TL/ZqPixelComponent.h"

#include <ZqApi/Library.h>

#include "ZqSDKCommon/Error.h"
#include "ZqSDKCommon/IZqImageInside.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqPixelComponent";

void CheckInside(const char* name, size_t value, size_t size) {
    CheckIndex(UNIT, __LINE__, name, static_cast<int64_t>(value), static_cast<int64_t>(size));
}

/// What the image says now, once more for its size.
ImageMemory MemoryOf(IZqImage& image, const PixelReader& reader, size_t x, size_t y) {
    const size_t width = image.GetImageWidth();
    const size_t height = image.GetImageHeight();
    CheckInside("x", x, width);
    CheckInside("y", y, height);
    auto* const pInside = dynamic_cast<IZqImageInside*>(&image);
    return {&image,
            reader.format,
            width,
            height,
            static_cast<const uint8_t*>(image.GetImageBuffer()),
            image.GetImageLinePitch(),
            reader.planes > 1 ? image.GetImagePlanePitch() : 0,
            pInside != nullptr ? pInside->GetReadableSize() : SIZE_MAX};
}

} // namespace

size_t CZqPixelComponent::GetCount() {
    return m_List.GetCount();
}

uint64_t CZqPixelComponent::GetValue(size_t index) {
    return GetEntry(index).value;
}

EZqPixelComponent_t CZqPixelComponent::GetPixelComponent(size_t index) {
    return GetEntry(index).component;
}

SPIXE_COMPONENT_INFO CZqPixelComponent::GetEntry(size_t index) const {
    SPIXE_COMPONENT_INFO info;
    CheckInside("nIndex", index, m_List.GetEntry(index, info));
    return info;
}

void CZqPixelComponent::SetPixelComponent(IZqImage* pIZqImage, size_t x, size_t y) {
    ZQ_ASSERT(UNIT, pIZqImage);
    CheckInside("size_t x", x, pIZqImage->GetImageWidth());
    CheckInside("size_t y", y, pIZqImage->GetImageHeight());
    const PixelReader& reader = ReaderOf(pIZqImage->GetImagePixelFormat());
    try {
        Read(MemoryOf(*pIZqImage, reader, x, y), reader, x, y);
    } catch (...) {
        // Up to here a refusal keeps the previous pixel; from here on there is none.
        m_List.Replace(PixelComponents());
        throw;
    }
}

void CZqPixelComponent::SetPixelComponent(const ImageMemory& memory, size_t x, size_t y) {
    CheckInside("size_t x", x, memory.width);
    CheckInside("size_t y", y, memory.height);
    Read(memory, ReaderOf(memory.format), x, y);
}

void CZqPixelComponent::Read(const ImageMemory& memory, const PixelReader& reader, size_t x, size_t y) {
    PixelComponents pixel;
    reader.read(PixelSource(memory, reader.planes, reader.bits), reader, x, y, pixel);
    m_List.Replace(pixel);
}

const PixelReader& CZqPixelComponent::ReaderOf(EZqPixelFormatNamingConvention_t format) {
    const PixelReader* reader = m_pLastReader.load(std::memory_order_acquire);
    if (reader != nullptr && reader->format == format)
        return *reader;
    reader = FindPixelReader(format);
    if (reader == nullptr)
        throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "Not supported pixelformat %s",
                                                     GetIZqPixelFormatInfo(format)->GetName());
    m_pLastReader.store(reader, std::memory_order_release);
    return *reader;
}

std::unique_ptr<IZqPixelComponentValueInside> CreatePixelComponentReader() {
    return std::make_unique<CZqPixelComponent>();
}

} // namespace ZqApi
