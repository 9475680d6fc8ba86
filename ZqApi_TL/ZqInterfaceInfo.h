#pragma once

#include <ZqApi/Interface.h>

namespace ZqApi {

class CZqGenTLLib;

/// IFGetInfo on an open interface. A member of the interface object.
class CZqInterfaceInfo final : public IZqInterfaceInfo {
public:
    CZqInterfaceInfo(CZqGenTLLib* pGenTL, IF_HANDLE hIF) : m_pCZqGenTL(pGenTL), m_hIF(hIF) {}

    gcstring GetID() const override;
    gcstring GetDisplayName() const override;
    gcstring GetTLType() const override;

private:
    gcstring GetIFGetInfoString(INTERFACE_INFO_CMD command) const;

    CZqGenTLLib* m_pCZqGenTL;
    IF_HANDLE m_hIF;
};

} // namespace ZqApi
