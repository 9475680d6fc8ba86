#pragma once

#include <atomic>

#include "ZqApi_TL/PixelReader.h"
#include "ZqSDKCommon/IZqPixelComponentValueInside.h"

namespace ZqApi {

/// Reads one pixel of an image into a list of its components; a member of its image.
///
/// Any thread: each operation sees or makes a whole list. Who needs several values of one pixel keeps others
/// from reading another one meanwhile.
class CZqPixelComponent final : public IZqPixelComponentValueInside {
public:
    size_t GetCount() override;
    uint64_t GetValue(size_t index) override;
    EZqPixelComponent_t GetPixelComponent(size_t index) override;
    void SetPixelComponent(IZqImage* pIZqImage, size_t x, size_t y) override;
    void SetPixelComponent(const ImageMemory& memory, size_t x, size_t y) override;

private:
    SPIXE_COMPONENT_INFO GetEntry(size_t index) const;
    void Read(const ImageMemory& memory, const PixelReader& reader, size_t x, size_t y);
    const PixelReader& ReaderOf(EZqPixelFormatNamingConvention_t format);

    PixelComponentList m_List;
    // An image's pixels are mostly read one after another.
    std::atomic<const PixelReader*> m_pLastReader{nullptr};
};

} // namespace ZqApi
