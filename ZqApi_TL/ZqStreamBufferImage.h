#pragma once

#include <memory>

#include "ZqApi_TL/InsideInterfaces.h"
#include "ZqApi_TL/ZqPixelComponent.h"
#include "ZqSDKCommon/ZqROIImage.h"

namespace ZqApi {

class CZqStreamBuffer;

/// The picture in a stream buffer, described by what the producer tells of it and, where it tells nothing, by
/// the chunk data. A member of its buffer; one thread at a time.
class CZqStreamBufferImage final : public IZqImageInside {
public:
    explicit CZqStreamBufferImage(CZqStreamBuffer* pStreamBuffer) : m_pCZqStreamBuffer(pStreamBuffer) {}

    size_t GetImageWidth() override;
    size_t GetImageHeight() override;
    size_t GetImageLinePitch() override;
    size_t GetImagePlanePitch() override;
    EZqPixelFormatNamingConvention_t GetImagePixelFormat() override;
    void* GetImageBuffer() override;
    void* GetUserContext() override;
    size_t GetReadableSize() override;
    IZqImage* GetROIImage(size_t x, size_t y, size_t width, size_t height) override;
    IZqPixelComponentValue* GetIZqPixelComponentValue(size_t x, size_t y) override;

    /// Destroys the view and every view of it.
    void ReleaseROIImage();

private:
    /// 0 when there is no such chunk value.
    size_t ChunkValue(const char* node) const;
    size_t ImageOffset() const;
    bool ReadChunkPixelFormat(int64_t& value) const;
    bool IsCoaXPress();

    CZqStreamBuffer* const m_pCZqStreamBuffer;
    std::unique_ptr<CZqROIImage> m_pCZqROIImage;
    CZqPixelComponent m_CZqPixelComponent;
    // Unknown until first needed: most buffers name their pixel format in a way that needs no interface.
    EZqInterfaceType_t m_InterfaceType = ZqInterfaceType_Unknown;
};

/// The format that a CoaXPress pixel-format code stands for; ZqPixelFormat_Unknown when it stands for none.
EZqPixelFormatNamingConvention_t FromCoaXPressPixelFormat(uint64_t code);

} // namespace ZqApi
