#include "ZqApi_TL/ZqPixelFormatInfo.h"

#include <algorithm>

#include "ZqSDKCommon/Error.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqPixelFormatInfo";

// The filter over a pixel, by the filter over pixel (0,0) and the position in the mosaic.
constexpr EZqPixelColorFilter_t FILTERS[][4] = {
    {ZqPixelColorFilter_None, ZqPixelColorFilter_None, ZqPixelColorFilter_None, ZqPixelColorFilter_None},
    {ZqPixelColorFilter_Mono, ZqPixelColorFilter_Mono, ZqPixelColorFilter_Mono, ZqPixelColorFilter_Mono},
    {ZqPixelColorFilter_BayerRG, ZqPixelColorFilter_BayerGR, ZqPixelColorFilter_BayerGB,
     ZqPixelColorFilter_BayerBG},
    {ZqPixelColorFilter_BayerGR, ZqPixelColorFilter_BayerRG, ZqPixelColorFilter_BayerBG,
     ZqPixelColorFilter_BayerGB},
    {ZqPixelColorFilter_BayerGB, ZqPixelColorFilter_BayerBG, ZqPixelColorFilter_BayerRG,
     ZqPixelColorFilter_BayerGR},
    {ZqPixelColorFilter_BayerBG, ZqPixelColorFilter_BayerGB, ZqPixelColorFilter_BayerGR,
     ZqPixelColorFilter_BayerRG},
};

size_t Position(size_t x, size_t y) {
    return (y % 2) * 2 + x % 2;
}

/// Whether a mosaic may be cut at an odd column: its pixels don't cross bytes.
bool CanCutAtOddColumn(const PixelFormatRow& row) {
    return row.pixelTotalBits % 8 == 0 || row.pixelTotalBits == 4;
}

/// Mosaics that differ in nothing but their phase.
bool IsSameFamily(const PixelFormatRow& one, const PixelFormatRow& other) {
    return one.isBayer && other.isBayer && one.pixelTotalBits == other.pixelTotalBits &&
           one.pixelValidBits == other.pixelValidBits && one.isGevSp == other.isGevSp;
}

size_t Quotient(size_t dividend, size_t divisor) {
    return divisor != 0 ? dividend / divisor : 0;
}

} // namespace

CZqSpecificPixelInfo::CZqSpecificPixelInfo(const PixelFormatRow& row) : m_Row(row) {
    for (size_t position = 0; position < 4; ++position)
        m_Offsetted[position] = FormatCutAt(position);
}

EZqPixelFormatNamingConvention_t CZqSpecificPixelInfo::FormatCutAt(size_t position) const {
    if (position == 0 || !m_Row.isBayer)
        return m_Row.value;
    const bool oddColumn = position % 2 != 0;
    if (oddColumn && !CanCutAtOddColumn(m_Row))
        return ZqPixelFormat_Unknown;
    const EZqPixelColorFilter_t filter = FILTERS[m_Row.filter][position];
    const auto sibling =
        std::find_if(PixelFormatTable.begin(), PixelFormatTable.end(), [&](const PixelFormatRow& other) {
            return IsSameFamily(m_Row, other) && other.filter == filter;
        });
    return sibling != PixelFormatTable.end() ? sibling->value : ZqPixelFormat_Unknown;
}

EZqPixelFormatNamingConvention_t CZqSpecificPixelInfo::GetValue() const {
    return m_Row.value;
}

gcstring CZqSpecificPixelInfo::GetName() const {
    return ConvertBadAlloc(UNIT, __LINE__, [this] { return gcstring(m_Row.name); });
}

gcstring CZqSpecificPixelInfo::GetDescription() const {
    return ConvertBadAlloc(UNIT, __LINE__, [this] { return gcstring(m_Row.description); });
}

size_t CZqSpecificPixelInfo::GetEachPixelTotalBitCount() const {
    return m_Row.pixelTotalBits;
}

size_t CZqSpecificPixelInfo::GetEachComponentTotalBitCount() const {
    return m_Row.componentTotalBits;
}

size_t CZqSpecificPixelInfo::GetEachComponentValidBitCount() const {
    return m_Row.componentValidBits;
}

size_t CZqSpecificPixelInfo::GetEachPixelTotalComponentCount() const {
    return Quotient(m_Row.pixelTotalBits, m_Row.componentTotalBits);
}

size_t CZqSpecificPixelInfo::GetPlaneCount() const {
    return m_Row.planes;
}

size_t CZqSpecificPixelInfo::GetPixelIncrementX() const {
    return m_Row.incrementX;
}

size_t CZqSpecificPixelInfo::GetPixelIncrementY() const {
    return 1;
}

bool CZqSpecificPixelInfo::IsColor() const {
    return m_Row.isColor;
}

bool CZqSpecificPixelInfo::IsMono() const {
    return !m_Row.isColor;
}

bool CZqSpecificPixelInfo::IsBayer() const {
    return m_Row.isBayer;
}

bool CZqSpecificPixelInfo::IsCompressed() const {
    return false;
}

EZqPixelColorFilter_t CZqSpecificPixelInfo::GetPixelColorFilter(size_t x, size_t y) const {
    return FILTERS[m_Row.filter][Position(x, y)];
}

size_t CZqSpecificPixelInfo::GetLinePitchAlignment() const {
    return m_Row.linePitchAlignment;
}

size_t CZqSpecificPixelInfo::GetRequiredLinePitch(size_t width, size_t alignment) const {
    const size_t bits = m_Row.planes < 2 ? m_Row.pixelTotalBits : m_Row.componentTotalBits;
    const size_t bytes = (bits * width + 7) / 8;
    if (alignment < 2)
        return bytes;
    const size_t aligned = bytes / alignment * alignment;
    return aligned == bytes ? bytes : aligned + alignment;
}

size_t CZqSpecificPixelInfo::GetEachPixelValidBitCount() const {
    return m_Row.pixelValidBits;
}

size_t CZqSpecificPixelInfo::GetEachPixelValidComponentCount() const {
    return Quotient(m_Row.pixelValidBits, m_Row.componentValidBits);
}

EZqPixelFormatNamingConvention_t CZqSpecificPixelInfo::GetOffsettedPixelFormat(size_t x, size_t y) const {
    return m_Offsetted[Position(x, y)];
}

bool CZqSpecificPixelInfo::IsBGROrder() const {
    return m_Row.isBGROrder;
}

bool CZqSpecificPixelInfo::IsGevSp() const {
    return m_Row.isGevSp;
}

CZqPixelFormatInfo::CZqPixelFormatInfo() {
    for (const PixelFormatRow& row : PixelFormatTable)
        m_Records.emplace(row.value, std::make_unique<CZqSpecificPixelInfo>(row));
}

IZqPixelFormatInfoInside*
CZqPixelFormatInfo::GetIZqPixelFormatInfoInside(EZqPixelFormatNamingConvention_t value) const {
    const auto found = m_Records.find(value);
    if (found == m_Records.end())
        throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "Unknown pixelformat 0x%X", value);
    return found->second.get();
}

} // namespace ZqApi
