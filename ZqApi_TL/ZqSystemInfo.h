#pragma once

#include <ZqApi/System.h>

namespace ZqApi {

class CZqGenTLLib;

/// TLGetInfo on an open transport layer. A member of the system, which sets and clears it.
class CZqSystemInfo final : public IZqSystemInfo {
public:
    void Set(CZqGenTLLib* pGenTL, TL_HANDLE hTL) {
        m_pCZqGenTL = pGenTL;
        m_hTL = hTL;
    }

    gcstring GetID() const override;
    gcstring GetVendor() const override;
    gcstring GetModel() const override;
    gcstring GetVersion() const override;
    gcstring GetTLType() const override;
    gcstring GetName() const override;
    gcstring GetPathName() const override;
    gcstring GetDisplayName() const override;
    int32_t GetCharEncoding() const override;
    uint32_t GetGenTLVersionMajor() const override;
    uint32_t GetGenTLVersionMinor() const override;

private:
    template <class T>
    T GetTLInfo(TL_INFO_CMD command) const;
    gcstring GetTLInfoString(TL_INFO_CMD command) const;

    CZqGenTLLib* m_pCZqGenTL = nullptr;
    TL_HANDLE m_hTL = nullptr;
};

} // namespace ZqApi
