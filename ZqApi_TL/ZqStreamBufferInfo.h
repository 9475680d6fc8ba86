#pragma once

#include <ZqApi/StreamBuffer.h>

namespace ZqApi {

class CZqGenTLLib;

/// DSGetBufferInfo on an announced buffer. A member of the stream buffer, which sets and clears the handle.
class CZqStreamBufferInfo final : public IZqStreamBufferInfo {
public:
    CZqStreamBufferInfo(CZqGenTLLib* pGenTL, DS_HANDLE hDataStream)
        : m_pCZqGenTL(pGenTL), m_hDataStream(hDataStream) {}

    void SetBufferHandle(BUFFER_HANDLE hStreamBuffer) { m_hStreamBuffer = hStreamBuffer; }

    void* GetBaseAddress() const override;
    size_t GetBufferSize() const override;
    void* GetUserPtr() const override;
    uint64_t GetTimestamp() const override;
    bool IsNewData() const override;
    bool IsQueued() const override;
    bool IsAcquiring() const override;
    bool IsIncomplete() const override;
    gcstring GetTLType() const override;
    size_t GetSizeFilled() const override;
    size_t GetWidth() const override;
    size_t GetHeight() const override;
    size_t GetXOffset() const override;
    size_t GetYOffset() const override;
    size_t GetXPadding() const override;
    size_t GetYPadding() const override;
    uint64_t GetFrameID() const override;
    bool IsImagePresent() const override;
    size_t GetImageOffset() const override;
    size_t GetPayloadType() const override;
    uint64_t GetPixelFormat() const override;
    uint64_t GetPixelFormatNameSpace() const override;
    size_t GetDeliverdImageHeight() const override;
    size_t GetDeliverdChunkPayloadSize() const override;
    uint64_t GetChunkLayoutID() const override;
    gcstring GetFileName() const override;
    int32_t GetPixelEndianness() const override;
    size_t GetDataSize() const override;
    uint64_t GetTimestampNS() const override;
    bool IsDataLargerThanBuffer() const override;
    bool HasChunkData() const override;

private:
    template <class T>
    T GetDSBufferInfo(BUFFER_INFO_CMD command) const;
    gcstring GetDSBufferString(BUFFER_INFO_CMD command) const;

    CZqGenTLLib* m_pCZqGenTL;
    DS_HANDLE m_hDataStream;
    BUFFER_HANDLE m_hStreamBuffer = nullptr;
};

} // namespace ZqApi
