#include "ZqApi_TL/ZqPixelComponentInfo.h"

#include "ZqSDKCommon/Error.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqPixelComponentInfo";

constexpr struct {
    EZqPixelComponent_t value;
    const char* name;
} COMPONENTS[] = {
    {ZqPixelComponent_Unknown, "Unknown"}, {ZqPixelComponent_Mono1, "Mono1"},
    {ZqPixelComponent_Mono2, "Mono2"},     {ZqPixelComponent_Mono4, "Mono4"},
    {ZqPixelComponent_Mono8, "Mono8"},     {ZqPixelComponent_Mono10, "Mono10"},
    {ZqPixelComponent_Mono12, "Mono12"},   {ZqPixelComponent_Mono14, "Mono14"},
    {ZqPixelComponent_Mono16, "Mono16"},   {ZqPixelComponent_R4, "R4"},
    {ZqPixelComponent_R8, "R8"},           {ZqPixelComponent_R10, "R10"},
    {ZqPixelComponent_R12, "R12"},         {ZqPixelComponent_R14, "R14"},
    {ZqPixelComponent_R16, "R16"},         {ZqPixelComponent_G4, "G4"},
    {ZqPixelComponent_G8, "G8"},           {ZqPixelComponent_G10, "G10"},
    {ZqPixelComponent_G12, "G12"},         {ZqPixelComponent_G14, "G14"},
    {ZqPixelComponent_G16, "G16"},         {ZqPixelComponent_B4, "B4"},
    {ZqPixelComponent_B8, "B8"},           {ZqPixelComponent_B10, "B10"},
    {ZqPixelComponent_B12, "B12"},         {ZqPixelComponent_B14, "B14"},
    {ZqPixelComponent_B16, "B16"},         {ZqPixelComponent_Gr4, "Gr4"},
    {ZqPixelComponent_Gr8, "Gr8"},         {ZqPixelComponent_Gr10, "Gr10"},
    {ZqPixelComponent_Gr12, "Gr12"},       {ZqPixelComponent_Gr14, "Gr14"},
    {ZqPixelComponent_Gr16, "Gr16"},       {ZqPixelComponent_Gb4, "Gb4"},
    {ZqPixelComponent_Gb8, "Gb8"},         {ZqPixelComponent_Gb10, "Gb10"},
    {ZqPixelComponent_Gb12, "Gb12"},       {ZqPixelComponent_Gb14, "Gb14"},
    {ZqPixelComponent_Gb16, "Gb16"},       {ZqPixelComponent_Y8, "Y8"},
    {ZqPixelComponent_Cb8, "Cb8"},         {ZqPixelComponent_Cr8, "Cr8"},
    {ZqPixelComponent_U8, "U8"},           {ZqPixelComponent_V8, "V8"},
};

constexpr size_t BitCountOf(EZqPixelComponent_t value) {
    return value >> 16 & 0xFF;
}

} // namespace

CZqPixelComponentInfo::CZqPixelComponentInfo() {
    for (const auto& row : COMPONENTS)
        m_Records.emplace(row.value, std::make_unique<CZqSpecificPixelComponentInfo>(row.value, row.name,
                                                                                     BitCountOf(row.value)));
}

IZqPixelComponentInfo*
CZqPixelComponentInfo::GetIZqPixelComponentInfoInside(EZqPixelComponent_t eZqPixelComponent) const {
    const auto record = m_Records.find(eZqPixelComponent);
    if (record == m_Records.end())
        throw ReportError<GenICam::InvalidArgumentException>(UNIT, __LINE__,
                                                             "EZqPixelComponet_t %u is not supported.",
                                                             static_cast<uint32_t>(eZqPixelComponent));
    return record->second.get();
}

} // namespace ZqApi
