#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "ZqApi_TL/BPS.h"
#include "ZqApi_TL/DeliveredQueue.h"
#include "ZqApi_TL/FPS.h"
#include "ZqApi_TL/InsideInterfaces.h"
#include "ZqApi_TL/StreamBufferPool.h"
#include "ZqApi_TL/ZqDataStreamInfo.h"
#include "ZqApi_TL/ZqEventError.h"
#include "ZqApi_TL/ZqEventNewBuffer.h"
#include "ZqApi_TL/ZqPort.h"
#include "ZqGenTLCommon/ZqGenTLLib.h"
#include "ZqSDKCommon/ZqCallbackManager.h"

namespace ZqApi {

/// One opened data stream: its buffer pool, acquisition, and the hand-over of filled buffers.
///
/// Owns the stream handle and closes it. Start, stop and release exclude each other by the control lock,
/// which nothing else takes; the delivered queue has its own.
class CZqDataStream final : public IZqDataStreamInside {
public:
    /// Takes the handle over unless it throws. The device outlives the stream.
    CZqDataStream(CZqGenTLLib* pGenTL, IZqDeviceInside* pDevice, DS_HANDLE hDataStream,
                  IZqAllocator* pAllocator);
    ~CZqDataStream();
    CZqDataStream(const CZqDataStream&) = delete;
    CZqDataStream& operator=(const CZqDataStream&) = delete;

    void* RegisterCallback(IZqCallback* pCallback) override;
    void DeregisterCallback(void* hCallback) override;
    IZqDevice* GetIZqDevice() override;
    IZqPort* GetIZqPort() override;
    const IZqDataStreamInfo* GetIZqDataStreamInfo() override;
    size_t GetStreamBufferCount() override;
    void SetStreamBufferCount(size_t nCount) override;
    IZqStreamBufferReleasable* RetrieveBuffer(uint32_t timeoutMs, EZqTimeoutHandling_t handling) override;
    void StartAcquisition(uint64_t count, ACQ_START_FLAGS flags) override;
    void StopAcquisition(ACQ_STOP_FLAGS flags) override;
    bool IsGrabbing() override;
    double GetCurrentFPS() override;
    double GetCurrentBPS() override;
    IZqDeviceInside* GetIZqDeviceInside() override;
    DS_HANDLE GetDataStreamHandle() override;
    void OnNewBuffer(IZqStreamBufferInside* pBuffer) override;
    IZqStreamBufferInside* RegisterStreamBuffer(void* pBuffer, size_t size, void* pContext,
                                                size_t index) override;
    void DeregisterStreamBuffer(IZqStreamBuffer* pBuffer) override;
    void QueueBuffer(IZqStreamBuffer* pBuffer) override;
    void* GetIsFilledStreamBufferEventHandle() override;
    void Release() override;
    void StartEventAcquisitionThread() override;
    void StopEventAcquisitionThread() override;

private:
    void Construct();
    /// On a callback of the stream or of one of its buffers.
    bool IsInsideCallback() const;
    void RefuseInsideCallback(int line) const;

    size_t PayloadSizeToAllocate();
    bool MustReplacePool(size_t payloadSize);
    /// Fills the pool; the result is how many buffers of an earlier start it kept, which come first.
    size_t AllocateBuffers();
    void DeallocateBuffers();
    void FlushQueue(ACQ_QUEUE_TYPE mode);

    void StartNewBufferThread();
    void PrepareChunkDecoding();
    void QueueKeptBuffers(size_t keptCount);
    void QueueUnlessBusy(const CZqStreamBuffer& buffer);
    bool IsQueued(const CZqStreamBuffer& buffer, bool& known) const;
    void QueueToProducer(const CZqStreamBuffer& buffer);
    void StartProducer(uint64_t count, ACQ_START_FLAGS flags);
    void DropNewBufferThread();
    void StopGrabbing(ACQ_STOP_FLAGS flags);

    /// What a reader waits on besides frames. Shared, because the reader may still hold it when the next
    /// acquisition has its own: a stop that is followed at once by a start is seen all the same.
    struct Acquisition {
        std::shared_ptr<CZqEventNewBuffer> thread; ///< from start to stop, else null
        std::shared_ptr<CEventObject> stopped;     ///< signalled from the stop on, and before the first start
    };

    CZqStreamBuffer* TakeDelivered(Acquisition& acquisition);
    static bool MayHaveChunks(CZqStreamBuffer& buffer);
    static void AttachChunks(CZqStreamBuffer& buffer);
    void ThrowThreadError(CZqEventNewBuffer& thread);
    void CountRates(CZqStreamBuffer& buffer);
    size_t CountedBytes(CZqStreamBuffer& buffer);

    void DeleteInsideObjects();

    CZqGenTLLib* const m_pCZqGenTL;
    IZqDeviceInside* const m_pIZqDeviceInside;
    const std::shared_ptr<CZqGenTLLib> m_pKeptGenTL;
    // A reader may still wait on it while the device is being torn down.
    const std::shared_ptr<CEventObject> m_pDeviceLostEvent;
    const std::shared_ptr<const void> m_pStreamToken;
    DS_HANDLE m_hDataStream;
    DeliveredQueue m_Delivered;
    CZqDataStreamInfo m_DataStreamInfo;
    std::unique_ptr<CZqPort> m_pCZqPort;
    CZqCallbackManager m_CallbackManager;
    std::unique_ptr<CZqEventErrorDS> m_pErrorEvent;
    std::atomic<size_t> m_nStreamBufferCount{6};
    StreamBufferPool m_Pool;

    std::mutex m_Control;
    // Changed under the control lock and the queue's, read under either.
    Acquisition m_Acquisition;
    std::atomic<uint32_t> m_nDelivered{0};
    CFPS m_FPS;
    CBPS m_BPS;
    std::atomic<bool> m_bCountDataSize{true};
    std::atomic<bool> m_bReleasing{false};
    std::atomic<int> m_nReaders{0};
    // Readers that ask the producer about the buffer that they have taken.
    std::atomic<int> m_nHandingOut{0};
};

} // namespace ZqApi
