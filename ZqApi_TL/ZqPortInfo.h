#pragma once

#include <ZqApi/Port.h>

namespace ZqApi {

class CZqGenTLLib;

/// GCGetPortInfo on a port handle. A member of the port object.
class CZqPortInfo final : public IZqPortInfo {
public:
    CZqPortInfo(CZqGenTLLib* pGenTL, PORT_HANDLE hPort) : m_pCZqGenTL(pGenTL), m_hPort(hPort) {}

    gcstring GetID() const override;
    gcstring GetVendor() const override;
    gcstring GetModel() const override;
    gcstring GetTLType() const override;
    gcstring GetModule() const override;
    bool IsLittleEndian() const override;
    bool IsBigEndian() const override;
    bool IsAccessRead() const override;
    bool IsAccessWrite() const override;
    bool IsAccessNA() const override;
    bool IsAccessNI() const override;
    gcstring GetVersion() const override;
    gcstring GetPortName() const override;

private:
    bool GetFlag(PORT_INFO_CMD command) const;
    gcstring GetText(PORT_INFO_CMD command) const;

    CZqGenTLLib* m_pCZqGenTL;
    PORT_HANDLE m_hPort;
};

} // namespace ZqApi
