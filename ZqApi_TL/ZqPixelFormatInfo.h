#pragma once

#include <map>
#include <memory>

#include "ZqApi_TL/PixelFormatTable.h"
#include "ZqSDKCommon/IZqPixelFormatInfoInside.h"

namespace ZqApi {

/// One record of the catalogue: a row of the table and what follows from it. Any thread.
class CZqSpecificPixelInfo final : public IZqPixelFormatInfoInside {
public:
    explicit CZqSpecificPixelInfo(const PixelFormatRow& row);

    EZqPixelFormatNamingConvention_t GetValue() const override;
    gcstring GetName() const override;
    gcstring GetDescription() const override;
    size_t GetEachPixelTotalBitCount() const override;
    size_t GetEachComponentTotalBitCount() const override;
    size_t GetEachComponentValidBitCount() const override;
    size_t GetEachPixelTotalComponentCount() const override;
    size_t GetPlaneCount() const override;
    size_t GetPixelIncrementX() const override;
    size_t GetPixelIncrementY() const override;
    bool IsColor() const override;
    bool IsMono() const override;
    bool IsBayer() const override;
    bool IsCompressed() const override;
    EZqPixelColorFilter_t GetPixelColorFilter(size_t x, size_t y) const override;
    size_t GetLinePitchAlignment() const override;
    size_t GetRequiredLinePitch(size_t width, size_t alignment) const override;
    size_t GetEachPixelValidBitCount() const override;
    size_t GetEachPixelValidComponentCount() const override;
    EZqPixelFormatNamingConvention_t GetOffsettedPixelFormat(size_t x, size_t y) const override;
    bool IsBGROrder() const override;
    bool IsGevSp() const override;

private:
    EZqPixelFormatNamingConvention_t FormatCutAt(size_t position) const;

    const PixelFormatRow& m_Row;
    // By position in the mosaic: y odd is 2, x odd is 1.
    EZqPixelFormatNamingConvention_t m_Offsetted[4];
};

/// The catalogue of pixel formats: built at the library's initialisation, constant afterwards. Owns its
/// records.
class CZqPixelFormatInfo final {
public:
    CZqPixelFormatInfo();
    CZqPixelFormatInfo(const CZqPixelFormatInfo&) = delete;
    CZqPixelFormatInfo& operator=(const CZqPixelFormatInfo&) = delete;

    /// Throws GenICam::RuntimeException "Unknown pixelformat 0x%X".
    IZqPixelFormatInfoInside* GetIZqPixelFormatInfoInside(EZqPixelFormatNamingConvention_t value) const;

private:
    std::map<EZqPixelFormatNamingConvention_t, std::unique_ptr<CZqSpecificPixelInfo>> m_Records;
};

} // namespace ZqApi
