#include "ZqSDKCommon/ZqImageBuffer.h"

#include <algorithm>
#include <cstring>
#include <new>

#include <ZqApi/Library.h>

#include "ZqSDKCommon/Error.h"
#include "ZqSDKCommon/IZqPixelFormatInfoInside.h"
#include "ZqSDKCommon/ImageSize.h"
#include "ZqSDKCommon/TestChart.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqSDKCommon/ZqImageBuffer";

using MakeChart = bool (CZqImageBuffer::*)(IZqImage*, _EZqMemoryInitialization_t);

// Kept: RGB8 and RGBa8 get samples of 16 bits, so that their charts come out in stripes.
constexpr struct {
    EZqPixelFormatNamingConvention_t format;
    MakeChart make;
} CHARTS[] = {
    {ZqPixelFormat_Mono8, &CZqImageBuffer::MakeChartMono8},
    {ZqPixelFormat_Mono10, &CZqImageBuffer::MakeChartMono16},
    {ZqPixelFormat_Mono12, &CZqImageBuffer::MakeChartMono16},
    {ZqPixelFormat_Mono14, &CZqImageBuffer::MakeChartMono16},
    {ZqPixelFormat_Mono16, &CZqImageBuffer::MakeChartMono16},
    {ZqPixelFormat_BGR8, &CZqImageBuffer::MakeChartBGR8},
    {ZqPixelFormat_BGRa8, &CZqImageBuffer::MakeChartBGR8},
    {ZqPixelFormat_BGR10, &CZqImageBuffer::MakeChartBGR16},
    {ZqPixelFormat_BGR12, &CZqImageBuffer::MakeChartBGR16},
    {ZqPixelFormat_BGR14, &CZqImageBuffer::MakeChartBGR16},
    {ZqPixelFormat_BGR16, &CZqImageBuffer::MakeChartBGR16},
    {ZqPixelFormat_BGRa10, &CZqImageBuffer::MakeChartBGR16},
    {ZqPixelFormat_BGRa12, &CZqImageBuffer::MakeChartBGR16},
    {ZqPixelFormat_BGRa14, &CZqImageBuffer::MakeChartBGR16},
    {ZqPixelFormat_BGRa16, &CZqImageBuffer::MakeChartBGR16},
    {ZqPixelFormat_RGB8, &CZqImageBuffer::MakeChartBGR16},
    {ZqPixelFormat_RGBa8, &CZqImageBuffer::MakeChartBGR16},
};

/// Null for a format without a chart.
MakeChart ChartOf(EZqPixelFormatNamingConvention_t format) {
    const auto* const found = std::find_if(std::begin(CHARTS), std::end(CHARTS),
                                           [format](const auto& row) { return row.format == format; });
    return found != std::end(CHARTS) ? found->make : nullptr;
}

/// Where pixels are copied from: what a source claims beyond its memory reads as 0.
struct PlaneSource {
    const uint8_t* begin;
    size_t readable;

    void Copy(uint8_t* to, size_t offset, size_t size) const {
        const size_t there = offset < readable ? std::min(size, readable - offset) : 0;
        if (there != 0)
            std::memcpy(to, begin + offset, there);
        std::memset(to + there, 0, size - there);
    }
};

/// Copies what both pitches have of each line. The last line ends with its pixels: behind those, the memory
/// of a region may end as well.
void CopyPlane(uint8_t* to, size_t toPitch, const PlaneSource& from, size_t offset, size_t fromPitch,
               size_t height, size_t pixelBytes) {
    const size_t common = std::min(toPitch, fromPitch);
    const size_t lastLine = std::min(common, pixelBytes);
    if (toPitch == fromPitch) {
        from.Copy(to, offset, (height - 1) * toPitch + lastLine);
        return;
    }
    for (size_t line = 1; line < height; ++line, to += toPitch, offset += fromPitch)
        from.Copy(to, offset, common);
    from.Copy(to, offset, lastLine);
}

} // namespace

CZqImageBuffer::CZqImageBuffer(IZqAllocator* pAllocator)
    : m_pAllocator(pAllocator != nullptr ? pAllocator : this),
      m_pPixelComponent(ConvertBadAlloc(UNIT, __LINE__, CreatePixelComponentReader)) {}

CZqImageBuffer::~CZqImageBuffer() {
    ReleaseMemory();
    if (m_pAllocator != this)
        m_pAllocator->OnDeregister();
}

void CZqImageBuffer::Release() {
    delete this;
}

void CZqImageBuffer::SetSize(size_t width, size_t height, EZqPixelFormatNamingConvention_t format,
                             size_t linePitchAlignment) {
    CheckAbove(UNIT, __LINE__, "size_t nWidth", static_cast<int64_t>(width), 0);
    CheckAbove(UNIT, __LINE__, "size_t nHeight", static_cast<int64_t>(height), 0);
    auto* const pIZqPixelFormatInfoDest =
        dynamic_cast<IZqPixelFormatInfoInside*>(GetIZqPixelFormatInfo(format));
    ZQ_ASSERT(UNIT, (pIZqPixelFormatInfoDest) != NULL);
    const ImageSize size = ImageSizeOf(*pIZqPixelFormatInfoDest, width, height, linePitchAlignment);
    if (size.bytes == 0)
        throw ReportError<GenICam::BadAllocException>(UNIT, __LINE__, "");
    if (m_pBuffer == nullptr || size.bytes > m_nCapacity)
        Reallocate(size.bytes);
    m_nWidth = width;
    m_nHeight = height;
    m_nLinePitch = size.linePitch;
    m_ePixelFormat = format;
}

void CZqImageBuffer::Reallocate(size_t size) {
    ReleaseMemory();
    // An allocator that stores a block and throws all the same keeps it.
    void* pBuffer = nullptr;
    ConvertBadAlloc(UNIT, __LINE__, [&] { m_pAllocator->Allocate(&pBuffer, size, &m_pUserContext); });
    if (pBuffer == nullptr)
        throw ReportError<GenICam::BadAllocException>(UNIT, __LINE__, "");
    m_pBuffer = pBuffer;
    m_nCapacity = size;
}

void CZqImageBuffer::ReleaseMemory() {
    m_pCZqROIImage.reset();
    if (m_pBuffer == nullptr)
        return;
    // Kept: the context outlives the memory that it came with.
    m_pAllocator->Deallocate(m_pBuffer, m_nCapacity, m_pUserContext);
    m_pBuffer = nullptr;
    m_nCapacity = 0;
    m_nWidth = 0;
    m_nHeight = 0;
    m_nLinePitch = 0;
    m_ePixelFormat = ZqPixelFormat_Unknown;
}

void CZqImageBuffer::CreateBuffer(size_t width, size_t height, EZqPixelFormatNamingConvention_t format,
                                  _EZqMemoryInitialization_t initialization) {
    SetSize(width, height, format, 0);
    const bool toBeDrawn = initialization == ZqMemoryInitialization_TestChart;
    const MakeChart makeChart = toBeDrawn ? ChartOf(format) : nullptr;
    if (makeChart != nullptr && (this->*makeChart)(this, initialization))
        return;
    // The whole capacity, which may be more than this image needs.
    if (toBeDrawn || initialization == ZqMemoryInitialization_ZeroFill)
        std::memset(m_pBuffer, 0x00, m_nCapacity);
    else if (initialization == ZqMemoryInitialization_FFFill)
        std::memset(m_pBuffer, 0xFF, m_nCapacity);
}

bool CZqImageBuffer::MakeChartMono8(IZqImage* pIZqImage, _EZqMemoryInitialization_t initialization) {
    return ConvertBadAlloc(UNIT, __LINE__,
                           [&] { return MakeChartMono<uint8_t>(*pIZqImage, m_nCapacity, initialization); });
}

bool CZqImageBuffer::MakeChartMono16(IZqImage* pIZqImage, _EZqMemoryInitialization_t initialization) {
    return ConvertBadAlloc(UNIT, __LINE__,
                           [&] { return MakeChartMono<uint16_t>(*pIZqImage, m_nCapacity, initialization); });
}

bool CZqImageBuffer::MakeChartBGR8(IZqImage* pIZqImage, _EZqMemoryInitialization_t initialization) {
    const EZqPixelFormatNamingConvention_t format = pIZqImage->GetImagePixelFormat();
    const bool rgbOrder = format == ZqPixelFormat_RGB8 || format == ZqPixelFormat_RGBa8;
    return ConvertBadAlloc(UNIT, __LINE__, [&] {
        return MakeChartBGR<uint8_t>(*pIZqImage, m_nCapacity, initialization, rgbOrder);
    });
}

bool CZqImageBuffer::MakeChartBGR16(IZqImage* pIZqImage, _EZqMemoryInitialization_t initialization) {
    return ConvertBadAlloc(UNIT, __LINE__, [&] {
        return MakeChartBGR<uint16_t>(*pIZqImage, m_nCapacity, initialization, false);
    });
}

void CZqImageBuffer::CopyImage(IZqImage* pSource) {
    auto* const pSrcIZqImageInside = dynamic_cast<IZqImageInside*>(pSource);
    ZQ_ASSERT(UNIT, (pSrcIZqImageInside) != NULL);
    const EZqPixelFormatNamingConvention_t format = pSrcIZqImageInside->GetImagePixelFormat();
    const size_t width = pSrcIZqImageInside->GetImageWidth();
    const size_t height = pSrcIZqImageInside->GetImageHeight();
    const size_t fromPitch = pSrcIZqImageInside->GetImageLinePitch();
    if (&RootOf(*pSrcIZqImageInside) == this) {
        // A region of this very image: sizing the copy would pull it from under the source.
        CZqImageBuffer detached(nullptr);
        detached.CopyImage(pSource);
        CopyImage(detached.GetIZqImage());
        return;
    }
    const PlaneSource from{static_cast<const uint8_t*>(pSrcIZqImageInside->GetImageBuffer()),
                           pSrcIZqImageInside->GetReadableSize()};
    const size_t fromPlanePitch = pSrcIZqImageInside->GetImagePlanePitch();
    SetSize(width, height, format, 0);
    const IZqPixelFormatInfo& info = *GetIZqPixelFormatInfo(format);
    const size_t pixelBytes = info.GetRequiredLinePitch(width, 1);
    for (size_t plane = 0; plane < info.GetPlaneCount(); ++plane)
        CopyPlane(static_cast<uint8_t*>(m_pBuffer) + plane * GetImagePlanePitch(), m_nLinePitch, from,
                  plane * fromPlanePitch, fromPitch, height, pixelBytes);
}

IZqImage* CZqImageBuffer::GetIZqImage() {
    if (!HasImageBuffer())
        throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "There is no available image.");
    return this;
}

bool CZqImageBuffer::HasImageBuffer() {
    return m_pBuffer != nullptr;
}

size_t CZqImageBuffer::GetImageWidth() {
    return m_nWidth;
}

size_t CZqImageBuffer::GetImageHeight() {
    return m_nHeight;
}

size_t CZqImageBuffer::GetImageLinePitch() {
    return m_nLinePitch;
}

size_t CZqImageBuffer::GetImagePlanePitch() {
    return m_nHeight * m_nLinePitch;
}

EZqPixelFormatNamingConvention_t CZqImageBuffer::GetImagePixelFormat() {
    return m_ePixelFormat;
}

void* CZqImageBuffer::GetImageBuffer() {
    return m_pBuffer;
}

void* CZqImageBuffer::GetUserContext() {
    return m_pUserContext;
}

IZqImage* CZqImageBuffer::GetROIImage(size_t x, size_t y, size_t width, size_t height) {
    return RetargetROIImage(UNIT, m_pCZqROIImage, *this, x, y, width, height);
}

IZqPixelComponentValue* CZqImageBuffer::GetIZqPixelComponentValue(size_t x, size_t y) {
    const ImageMemory memory{
        this,         m_ePixelFormat,           m_nWidth,   m_nHeight, static_cast<const uint8_t*>(m_pBuffer),
        m_nLinePitch, m_nHeight * m_nLinePitch, m_nCapacity};
    m_pPixelComponent->SetPixelComponent(memory, x, y);
    return m_pPixelComponent.get();
}

void CZqImageBuffer::Allocate(void** ppBuffer, size_t size, void**) {
    try {
        *ppBuffer = ::operator new(size);
    } catch (const std::bad_alloc&) {
        *ppBuffer = nullptr;
    }
}

void CZqImageBuffer::Deallocate(void* pBuffer, size_t, void*) {
    ::operator delete(pBuffer);
}

void CZqImageBuffer::OnDeregister() {}

} // namespace ZqApi
