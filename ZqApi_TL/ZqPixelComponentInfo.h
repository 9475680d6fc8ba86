#pragma once

#include <map>
#include <memory>

#include <ZqApi/PixelComponent.h>

namespace ZqApi {

/// One record of the component catalogue; never changed.
class CZqSpecificPixelComponentInfo final : public IZqPixelComponentInfo {
public:
    CZqSpecificPixelComponentInfo(EZqPixelComponent_t value, const char* name, size_t bitCount)
        : m_Value(value), m_Name(name), m_BitCount(bitCount) {}

    EZqPixelComponent_t GetValue() const override { return m_Value; }
    gcstring GetName() const override { return m_Name; }
    size_t GetBitCount() const override { return m_BitCount; }

private:
    const EZqPixelComponent_t m_Value;
    const char* const m_Name;
    const size_t m_BitCount;
};

/// The catalogue of pixel components. Built before use and never changed: any thread.
class CZqPixelComponentInfo {
public:
    CZqPixelComponentInfo();

    /// Owned by the catalogue. Throws GenICam::InvalidArgumentException "EZqPixelComponet_t %u is not
    /// supported.".
    IZqPixelComponentInfo* GetIZqPixelComponentInfoInside(EZqPixelComponent_t eZqPixelComponent) const;

private:
    std::map<EZqPixelComponent_t, std::unique_ptr<CZqSpecificPixelComponentInfo>> m_Records;
};

} // namespace ZqApi
