#pragma once

#include <atomic>

#include <ZqApi/Port.h>

namespace ZqApi {

class CZqGenTLLib;

/// GCGetPortURLInfo for the selected description file of a port. A member of the port object.
class CZqPortURLInfo final : public IZqPortURLInfo {
public:
    CZqPortURLInfo(CZqGenTLLib* pGenTL, PORT_HANDLE hPort) : m_pCZqGenTL(pGenTL), m_hPort(hPort) {}

    uint32_t GetIndex() const { return m_nURLIndex; }
    void SetIndex(uint32_t nURLIndex) { m_nURLIndex = nURLIndex; }

    gcstring GetURL() const override;
    int32_t GetSchemaVerMajor() const override;
    int32_t GetSchemaVerMinor() const override;
    int32_t GetFileVerMajor() const override;
    int32_t GetFileVerMinor() const override;
    int32_t GetFileVerSubMinor() const override;
    void GetSha1HashBuffer(void* pBuffer, size_t* pSize) const override;
    uint64_t GetFileRegisterAddress() const override;
    uint64_t GetFileSize() const override;
    int32_t GetScheme() const override;
    gcstring GetFileName() const override;

private:
    template <class T>
    T GetNumber(URL_INFO_CMD command) const;
    gcstring GetText(URL_INFO_CMD command) const;

    CZqGenTLLib* m_pCZqGenTL;
    PORT_HANDLE m_hPort;
    // Selected by the application while an event thread may be building the node map.
    std::atomic<uint32_t> m_nURLIndex{0};
};

} // namespace ZqApi
