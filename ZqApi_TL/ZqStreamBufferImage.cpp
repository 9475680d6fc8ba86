#include "ZqApi_TL/ZqStreamBufferImage.h"

#include <ZqApi/Library.h>

#include "ZqApi_TL/ZqStreamBuffer.h"
#include "ZqSDKCommon/Error.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqStreamBufferImage";

using GenICam::GenericException;

/// The producer's answer, or nothing when it gives none. What the application sees is the fall-back, so the
/// reason is dropped.
template <class Query>
bool TryQuery(Query query, size_t& value) {
    try {
        value = query();
        return true;
    } catch (const GenericException&) {
        return false;
    }
}

} // namespace

size_t CZqStreamBufferImage::ChunkValue(const char* node) const {
    try {
        GenApi::CIntegerPtr pInteger = m_pCZqStreamBuffer->GetChunkINodeMap()->GetNode(node);
        return pInteger.IsValid() ? static_cast<size_t>(pInteger->GetValue()) : 0;
    } catch (const GenericException&) {
        return 0;
    }
}

bool CZqStreamBufferImage::ReadChunkPixelFormat(int64_t& value) const {
    try {
        GenApi::CEnumerationPtr pFormat = m_pCZqStreamBuffer->GetChunkINodeMap()->GetNode("ChunkPixelFormat");
        if (!pFormat.IsValid())
            return false;
        value = pFormat->GetIntValue();
        return true;
    } catch (const GenericException&) {
        return false;
    }
}

size_t CZqStreamBufferImage::GetImageWidth() {
    size_t width = 0;
    const auto& info = m_pCZqStreamBuffer->GetInfo();
    return TryQuery([&] { return info.GetWidth(); }, width) ? width : ChunkValue("ChunkWidth");
}

size_t CZqStreamBufferImage::GetImageHeight() {
    size_t height = 0;
    const auto& info = m_pCZqStreamBuffer->GetInfo();
    if (TryQuery([&] { return info.GetDeliverdImageHeight(); }, height) && height != 0)
        return height;
    return TryQuery([&] { return info.GetHeight(); }, height) ? height : ChunkValue("ChunkHeight");
}

size_t CZqStreamBufferImage::GetImageLinePitch() {
    ZQ_ASSERT(UNIT, m_pCZqStreamBuffer->GetBufferHandle() != NULL);
    const size_t width = GetImageWidth();
    const size_t pitch = GetIZqPixelFormatInfo(GetImagePixelFormat())->GetRequiredLinePitch(width, 1);
    size_t padding = 0;
    TryQuery([this] { return m_pCZqStreamBuffer->GetInfo().GetXPadding(); }, padding);
    return pitch + padding;
}

size_t CZqStreamBufferImage::GetImagePlanePitch() {
    return GetImageLinePitch() * GetImageHeight();
}

bool CZqStreamBufferImage::IsCoaXPress() {
    if (m_InterfaceType == ZqInterfaceType_Unknown)
        m_InterfaceType = m_pCZqStreamBuffer->GetIZqDataStreamInside()
                              ->GetIZqDeviceInside()
                              ->GetIZqInterfaceInside()
                              ->GetZqInterfaceType();
    return m_InterfaceType == ZqInterfaceType_CXP;
}

EZqPixelFormatNamingConvention_t CZqStreamBufferImage::GetImagePixelFormat() {
    uint64_t value = 0;
    uint64_t nPixelFormatNamespace = 0;
    try {
        value = m_pCZqStreamBuffer->GetInfo().GetPixelFormat();
        nPixelFormatNamespace = m_pCZqStreamBuffer->GetInfo().GetPixelFormatNameSpace();
    } catch (const GenericException&) {
        int64_t chunkFormat = 0;
        if (!ReadChunkPixelFormat(chunkFormat))
            throw;
        return static_cast<EZqPixelFormatNamingConvention_t>(static_cast<uint32_t>(chunkFormat));
    }
    ZQ_ASSERT(UNIT, nPixelFormatNamespace <= UINT32_MAX);
    if (nPixelFormatNamespace == PIXELFORMAT_NAMESPACE_PFNC_32BIT || !IsCoaXPress())
        return static_cast<EZqPixelFormatNamingConvention_t>(static_cast<uint32_t>(value));
    return FromCoaXPressPixelFormat(value);
}

void* CZqStreamBufferImage::GetImageBuffer() {
    ZQ_ASSERT(UNIT, m_pCZqStreamBuffer->GetBufferHandle() != NULL);
    auto* const begin = static_cast<uint8_t*>(m_pCZqStreamBuffer->GetBufferAddress());
    return begin != nullptr ? begin + ImageOffset() : nullptr;
}

size_t CZqStreamBufferImage::ImageOffset() const {
    size_t offset = 0;
    TryQuery([this] { return m_pCZqStreamBuffer->GetInfo().GetImageOffset(); }, offset);
    return offset;
}

size_t CZqStreamBufferImage::GetReadableSize() {
    if (m_pCZqStreamBuffer->GetBufferHandle() == nullptr || m_pCZqStreamBuffer->GetBufferAddress() == nullptr)
        return 0;
    const size_t size = m_pCZqStreamBuffer->GetAnnouncedSize();
    const size_t offset = ImageOffset();
    return offset < size ? size - offset : 0;
}

void* CZqStreamBufferImage::GetUserContext() {
    return m_pCZqStreamBuffer->GetUserContext();
}

IZqImage* CZqStreamBufferImage::GetROIImage(size_t x, size_t y, size_t width, size_t height) {
    return RetargetROIImage(UNIT, m_pCZqROIImage, *this, x, y, width, height);
}

void CZqStreamBufferImage::ReleaseROIImage() {
    m_pCZqROIImage.reset();
}

IZqPixelComponentValue* CZqStreamBufferImage::GetIZqPixelComponentValue(size_t x, size_t y) {
    m_CZqPixelComponent.SetPixelComponent(this, x, y);
    return &m_CZqPixelComponent;
}

} // namespace ZqApi
