#include <cxxabi.h>

#include "ZqApi_TL/Remaining.h"
#include "ZqApi_TL/Teardown.h"
#include "ZqApi_TL/ZqDataStream.h"
#include "ZqGenTLCommon/ZqGenTLError.h"

// Filled buffers on their way from the producer's event to the application.

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqDataStream";

/// Counts a reader out again, so that who tears something down can wait for it.
class CountedOut {
public:
    explicit CountedOut(std::atomic<int>& count) : m_Count(count) {}
    ~CountedOut() { --m_Count; }
    CountedOut(const CountedOut&) = delete;
    CountedOut& operator=(const CountedOut&) = delete;

private:
    std::atomic<int>& m_Count;
};

enum Handle : size_t { FILLED, STOPPED, THREAD_ERROR, DEVICE_LOST, HANDLE_COUNT };

} // namespace

CZqStreamBuffer* CZqDataStream::TakeDelivered(Acquisition& acquisition) {
    const GenApi::AutoLock lock(m_Delivered.GetLock());
    CZqStreamBuffer* const pBuffer = m_Delivered.TakeFront();
    if (pBuffer != nullptr) {
        pBuffer->SetLent(true);
        ++m_nHandingOut;
    } else {
        acquisition = m_Acquisition;
    }
    return pBuffer;
}

IZqStreamBufferReleasable* CZqDataStream::RetrieveBuffer(uint32_t timeoutMs, EZqTimeoutHandling_t handling) {
    ++m_nReaders;
    const CountedOut inside(m_nReaders);
    const Remaining remaining(timeoutMs);
    for (;;) {
        if (m_bReleasing)
            return nullptr;
        Acquisition acquisition;
        if (CZqStreamBuffer* const pBuffer = TakeDelivered(acquisition)) {
            const CountedOut handingOut(m_nHandingOut);
            AttachChunks(*pBuffer);
            return pBuffer;
        }
        CEventObject* handles[HANDLE_COUNT] = {};
        handles[FILLED] = &m_Delivered.GetFilledEvent();
        handles[STOPPED] = acquisition.stopped.get();
        handles[THREAD_ERROR] = acquisition.thread ? &acquisition.thread->GetErrorEvent() : nullptr;
        handles[DEVICE_LOST] = m_pDeviceLostEvent.get();
        const uint32_t waitMs = remaining.Milliseconds();
        const WaitResult result = WaitMultiple(HANDLE_COUNT, handles, false, waitMs);
        if (result.kind != WaitResult::Signalled) {
            // A clock set forward, or a signal that another reader took, ends a wait before its time.
            if (remaining.Milliseconds() != 0)
                continue;
            if (handling == ZqTimeoutHandling_ThrowException)
                throw ReportError<GenICam::TimeoutException>(
                    UNIT, __LINE__,
                    "A timeout occurred during the processing of IZqDataStream::RetrieveBuffer(%u, %u)",
                    timeoutMs, static_cast<uint32_t>(handling));
            return nullptr;
        }
        if (result.index == FILLED)
            continue;
        if (result.index == STOPPED)
            return nullptr;
        if (result.index == DEVICE_LOST)
            throw ReportError<GenICam::AccessException>(UNIT, __LINE__, "The device is lost.");
        ThrowThreadError(*acquisition.thread);
        return nullptr;
    }
}

void CZqDataStream::ThrowThreadError(CZqEventNewBuffer& thread) {
    // Another reader may have taken the error meanwhile.
    if (WaitForSingleObject(&thread.GetErrorEvent(), 0) != WAIT_OBJECT_0)
        return;
    const CZqEvent::LastError error = thread.TakeLastError();
    // The failing call was made on another thread, so the producer's text for it is seldom to be had here.
    throw ProducerError(m_pCZqGenTL, UNIT, __LINE__, error.code, "EventGetData",
                        "%d = EventGetData(0x%p 0x%p, %I64u, %I64u)", error.code, error.hEvent, error.pBuffer,
                        thread.GetReceiveBufferSize(), thread.GetReceiveTimeout());
}

bool CZqDataStream::MayHaveChunks(CZqStreamBuffer& buffer) {
    const CZqStreamBufferInfo& info = buffer.GetInfo();
    if (info.IsIncomplete())
        return false;
    const size_t payloadType = info.GetPayloadType();
    if (payloadType == PAYLOAD_TYPE_CHUNK_DATA || payloadType == PAYLOAD_TYPE_CHUNK_ONLY)
        return true;
    // Since GenTL 1.5 every payload type may carry chunks.
    return buffer.HasChunkAdapter() && info.HasChunkData();
}

void CZqDataStream::AttachChunks(CZqStreamBuffer& buffer) {
    try {
        if (MayHaveChunks(buffer))
            buffer.AttachChunkBuffer();
        else
            buffer.DetachChunkBuffer();
    } catch (abi::__forced_unwind&) {
        throw; // a thread that is being cancelled must unwind to its end
    } catch (...) {
        // What can't be read as chunk data, or what a node callback does not bear, is a frame all the same.
        Teardown().Run([&buffer] { buffer.DetachChunkBuffer(); });
    }
}

void CZqDataStream::OnNewBuffer(IZqStreamBufferInside* pBuffer) {
    auto* const pStreamBuffer = static_cast<CZqStreamBuffer*>(pBuffer);
    ++m_nDelivered;
    CountRates(*pStreamBuffer);
    {
        const GenApi::AutoLock lock(m_Delivered.GetLock());
        pStreamBuffer->ForgetChunkBuffer();
        m_Delivered.Append(pStreamBuffer);
    }
    CZqCallbackParamNewBuffer param(this);
    m_CallbackManager.RunCallback(&param);
}

void CZqDataStream::CountRates(CZqStreamBuffer& buffer) {
    // What can't be read is not counted; the buffer is delivered whatever the producer answers here.
    try {
        if (!buffer.GetInfo().IsIncomplete())
            m_FPS.Rcv();
    } catch (const std::exception&) {
    }
    try {
        m_BPS.Rcv(CountedBytes(buffer));
    } catch (const std::exception&) {
    }
}

size_t CZqDataStream::CountedBytes(CZqStreamBuffer& buffer) {
    if (m_bCountDataSize) {
        try {
            return buffer.GetInfo().GetDataSize();
        } catch (const GenICam::GenericException&) {
            m_bCountDataSize = false;
        }
    }
    IZqImage* const pImage = buffer.GetIZqImage();
    return pImage->GetImageHeight() * pImage->GetImageLinePitch();
}

} // namespace ZqApi
