#pragma once

#include <ZqApi/DataStream.h>

namespace ZqApi {

class CZqGenTLLib;
class DeliveredQueue;
class IZqDeviceInside;

/// DSGetInfo on an open data stream. A member of the data stream.
///
/// A buffer that the producer has delivered but nobody has retrieved counts as still awaiting delivery.
class CZqDataStreamInfo final : public IZqDataStreamInfo {
public:
    CZqDataStreamInfo(CZqGenTLLib* pGenTL, DS_HANDLE hDataStream, IZqDeviceInside* pDevice,
                      DeliveredQueue* pDelivered)
        : m_pCZqGenTL(pGenTL), m_hDataStream(hDataStream), m_pIZqDeviceInside(pDevice),
          m_pDelivered(pDelivered) {}

    gcstring GetID() const override;
    uint64_t GetNumDelivered() const override;
    uint64_t GetNumUnderrun() const override;
    uint64_t GetNumAnnounced() const override;
    uint64_t GetNumQueued() const override;
    uint64_t GetNumAwaitDelivery() const override;
    uint64_t GetNumStarted() const override;
    size_t GetPayloadSize() const override;
    bool IsGrabbing() const override;
    bool GetDefinesPayloadSize() const override;
    gcstring GetTLType() const override;
    size_t GetNumChunksMax() const override;
    size_t GetBufAnnounceMin() const override;
    size_t GetBufAlignment() const override;

    /// The camera's "PayloadSize" feature. Throws GenICam::RuntimeException "Node %s not found.".
    size_t GetPayloadSizeFormNodeMap() const;

private:
    template <class T>
    T GetDSInfo(STREAM_INFO_CMD command) const;
    gcstring GetDSString(STREAM_INFO_CMD command) const;

    CZqGenTLLib* m_pCZqGenTL;
    DS_HANDLE m_hDataStream;
    IZqDeviceInside* m_pIZqDeviceInside;
    DeliveredQueue* m_pDelivered;
};

} // namespace ZqApi
