#include "ZqApi_TL/Teardown.h"
#include "ZqApi_TL/ZqDataStream.h"
#include "ZqGenTLCommon/ZqGenTLError.h"

// Starting and stopping a data stream's producer.

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqDataStream";

} // namespace

void CZqDataStream::StartAcquisition(uint64_t count, ACQ_START_FLAGS flags) {
    // A callback of this stream runs on one of its threads; the control lock may be held by who joins them.
    if (IsInsideCallback())
        return;
    const std::lock_guard<std::mutex> control(m_Control);
    if (m_bReleasing)
        return;
    if (m_pIZqDeviceInside->IsDeviceLost())
        throw ReportError<GenICam::AccessException>(UNIT, __LINE__, "The device is lost.");
    if (m_Acquisition.thread)
        return;
    std::shared_ptr<CEventObject> stopped;
    try {
        ConvertBadAlloc(UNIT, __LINE__, [&] {
            stopped = std::make_shared<CEventObject>(nullptr, true, false, nullptr);
            StartNewBufferThread();
            const size_t keptCount = AllocateBuffers();
            PrepareChunkDecoding();
            QueueKeptBuffers(keptCount);
            m_FPS.Reset();
            m_BPS.Reset();
            StartProducer(count, flags);
        });
    } catch (...) {
        Teardown cleanup;
        cleanup.Run([this] { DropNewBufferThread(); });
        cleanup.Run([this] { DeallocateBuffers(); });
        throw;
    }
    m_nDelivered = 0;
    const GenApi::AutoLock lock(m_Delivered.GetLock());
    m_Acquisition.stopped.swap(stopped);
}

void CZqDataStream::StartNewBufferThread() {
    auto thread = std::make_shared<CZqEventNewBuffer>(m_pCZqGenTL, m_hDataStream, "ZqApi_TL_EventNewBuffer");
    {
        const GenApi::AutoLock lock(m_Delivered.GetLock());
        m_Acquisition.thread = thread;
    }
    thread->Start();
}

void CZqDataStream::PrepareChunkDecoding() {
    for (CZqStreamBuffer* const buffer : m_Pool.Buffers()) {
        // One in the application's hands is prepared when it is handed out again.
        if (buffer->IsLent())
            continue;
        try {
            buffer->RenewChunkDecode();
            buffer->PrepareChunkDecode();
        } catch (const GenICam::BadAllocException&) {
            throw;
        } catch (const GenICam::GenericException&) {
            // The stream runs without chunk data.
        }
    }
}

bool CZqDataStream::IsQueued(const CZqStreamBuffer& buffer, bool& known) const {
    try {
        known = true;
        return buffer.GetInfo().IsQueued();
    } catch (const GenICam::GenericException&) {
        known = false;
        return false;
    }
}

void CZqDataStream::QueueKeptBuffers(size_t keptCount) {
    // Frames delivered before the last stop and never retrieved, or dropped by the producer with its event,
    // left these buffers with nobody.
    for (size_t index = 0; index < keptCount && index < m_Pool.Size(); ++index) {
        const CZqStreamBuffer& buffer = *m_Pool.Buffers()[index];
        // A buffer that the application hands in just now must not be queued twice.
        m_Pool.WithoutHandIn([&] { QueueUnlessBusy(buffer); });
    }
}

void CZqDataStream::QueueUnlessBusy(const CZqStreamBuffer& buffer) {
    bool known = false;
    // A producer that keeps its output over a restart may have delivered it already.
    // In this order: a reader marks a buffer as lent before it is out of the queue.
    if (m_Delivered.Contains(&buffer) || buffer.IsLent() || IsQueued(buffer, known))
        return;
    try {
        QueueToProducer(buffer);
    } catch (const CZqGenTLErrorException& error) {
        if (known || error.GetError() != GC_ERR_RESOURCE_IN_USE)
            throw;
    }
}

void CZqDataStream::StartProducer(uint64_t count, ACQ_START_FLAGS flags) {
    const GC_ERROR result = CallProducer(m_pCZqGenTL->DSStartAcquisition, m_hDataStream, flags, count);
    CheckProducer(m_pCZqGenTL, UNIT, __LINE__, result, "DSStartAcquisition",
                  "%d = DSStartAcquisition(0x%p, %d, %I64d)", result, m_hDataStream, flags, count);
}

void CZqDataStream::DropNewBufferThread() {
    std::shared_ptr<CZqEventNewBuffer> thread;
    {
        const GenApi::AutoLock lock(m_Delivered.GetLock());
        thread.swap(m_Acquisition.thread);
    }
    if (!thread)
        return;
    // A reader may hold the object on; what the producer knows of it ends here.
    Teardown steps;
    steps.Run([&] { thread->Stop(); });
    steps.Run([&] { thread->UnregisterEvent(); });
}

void CZqDataStream::StopAcquisition(ACQ_STOP_FLAGS flags) {
    RefuseInsideCallback(__LINE__);
    const std::lock_guard<std::mutex> control(m_Control);
    StopGrabbing(flags);
}

void CZqDataStream::StopGrabbing(ACQ_STOP_FLAGS flags) {
    if (!m_Acquisition.thread)
        return;
    m_Acquisition.stopped->SetEvent();
    // Reported before the thread ends: the producer's last error belongs to this call.
    Teardown stop;
    stop.Run([&] {
        const GC_ERROR result = CallProducer(m_pCZqGenTL->DSStopAcquisition, m_hDataStream, flags);
        CheckProducer(m_pCZqGenTL, UNIT, __LINE__, result, "DSStopAcquisition",
                      "%d = DSStopAcquisition(0x%p, %d)", result, m_hDataStream, flags);
    });
    DropNewBufferThread();
    stop.RethrowFirst();
}

} // namespace ZqApi
