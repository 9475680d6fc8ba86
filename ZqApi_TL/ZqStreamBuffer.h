#pragma once

#include <atomic>
#include <memory>

#include "ZqApi_TL/InsideInterfaces.h"
#include "ZqApi_TL/StreamBufferChunks.h"
#include "ZqApi_TL/ZqEventError.h"
#include "ZqApi_TL/ZqPort.h"
#include "ZqApi_TL/ZqStreamBufferImage.h"
#include "ZqApi_TL/ZqStreamBufferInfo.h"
#include "ZqSDKCommon/ZqCallbackManager.h"

namespace ZqApi {

/// One announced buffer of a data stream's pool.
///
/// Owned by its stream; in the application's hands between RetrieveBuffer and Release ("lent").
class CZqStreamBuffer final : public IZqStreamBufferInside {
public:
    /// Announces `pBuffer` of `size` bytes, or with null lets the producer allocate. Throws
    /// CZqGenTLErrorException and leaves nothing announced then.
    /// `*pLeftAnnounced` becomes true when a failed construction could not revoke what it had announced.
    CZqStreamBuffer(CZqGenTLLib* pGenTL, IZqDataStreamInside* pDataStream, void* pBuffer, size_t size,
                    void* pUserContext, size_t index, bool* pLeftAnnounced = nullptr);
    ~CZqStreamBuffer();
    CZqStreamBuffer(const CZqStreamBuffer&) = delete;
    CZqStreamBuffer& operator=(const CZqStreamBuffer&) = delete;

    void* RegisterCallback(IZqCallback* pCallback) override;
    void DeregisterCallback(void* hCallback) override;
    IZqDataStream* GetIZqDataStream() const override;
    IZqPort* GetIZqPort() override;
    const IZqStreamBufferInfo* GetIZqStreamBufferInfo() const override;
    IZqImage* GetIZqImage() override;
    INodeMap* GetChunkINodeMap() override;
    IZqDataStreamInside* GetIZqDataStreamInside() const override;
    BUFFER_HANDLE GetBufferHandle() const override;
    void AttachChunkBuffer() override;
    void DetachChunkBuffer() override;
    void PrepareChunkDecode() override;
    void Release() override;
    void StartEventAcquisitionThread() override;
    void StopEventAcquisitionThread() override;

    /// Ends everything that hangs on the producer's buffer and revokes it. Throws CZqGenTLErrorException when
    /// the producer refuses; the handle is gone all the same.
    void DeleteInsideObjects();

    const CZqStreamBufferInfo& GetInfo() const { return m_BufferInfo; }
    void* GetBufferAddress() const { return m_pBuffer; }
    size_t GetAnnouncedSize() const { return m_Size; }
    void* GetUserContext() const { return m_pUserContext; }

    /// Where its stream's pool has it; only a buffer in the pool can be queued. The pool's lock guards it.
    enum class Place { Pool, Leaving, Outside };
    Place GetPlace() const { return m_Place; }
    void SetPlace(Place place) { m_Place = place; }
    bool IsLent() const { return m_bLent; }
    void SetLent(bool lent) { m_bLent = lent; }
    /// Forgets that chunk data was attached: the memory holds another frame now.
    void ForgetChunkBuffer() { m_Chunks.Forget(); }
    /// Lets preparation be tried again.
    void RenewChunkDecode() { m_Chunks.Renew(); }
    /// Whether its chunk data could be read, if a frame had any.
    bool HasChunkAdapter() const { return m_Chunks.HasAdapter(); }

private:
    void Construct(size_t index);
    void Announce();
    void RevokeBuffer();

    CZqGenTLLib* const m_pCZqGenTL;
    IZqDataStreamInside* const m_pIZqDataStreamInside;
    BUFFER_HANDLE m_hStreamBuffer = nullptr;
    CZqStreamBufferInfo m_BufferInfo;
    CZqStreamBufferImage m_Image;
    StreamBufferChunks m_Chunks;
    void* m_pBuffer;
    const size_t m_Size;
    void* const m_pUserContext;
    std::unique_ptr<CZqPort> m_pCZqPort;
    CZqCallbackManager m_CallbackManager;
    std::unique_ptr<CZqEventErrorSB> m_pErrorEvent;
    std::atomic<bool> m_bLent{false};
    Place m_Place = Place::Pool;
};

} // namespace ZqApi
