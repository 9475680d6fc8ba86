#include "producer/gentl/StreamEngine.h"

#include "producer/gentl/Spin.h"
#include "producer/sim/Failure.h"

namespace zqgentl {

/// While one exists the thread is not writing into a buffer and takes no new one.
class StreamEngine::Pause {
public:
    Pause(StreamEngine& engine, Lock& lock) : m_engine(engine) {
        ++m_engine.m_pauses;
        m_engine.m_settled.wait(lock, [this] { return !m_engine.m_writing; });
    }
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;
    ~Pause() {
        --m_engine.m_pauses;
        m_engine.m_wake.notify_one();
    }

private:
    StreamEngine& m_engine;
};

StreamEngine::StreamEngine(Camera& camera, StreamListener& listener)
    : m_camera(camera), m_listener(listener) {
    m_thread = std::thread([this] { Run(); });
}

StreamEngine::~StreamEngine() {
    Shutdown();
}

void StreamEngine::RequireAnnounced(const BufferModule& buffer) const {
    if (!m_pool.Contains(buffer))
        throw Failure(GenTL::GC_ERR_INVALID_HANDLE, "the buffer is not announced on this stream");
}

void StreamEngine::RequireOpen() const {
    if (m_quit)
        throw Failure(GenTL::GC_ERR_INVALID_HANDLE, "the stream has been closed");
}

void StreamEngine::Announce(std::shared_ptr<BufferModule> buffer) {
    std::lock_guard<std::mutex> guard(m_lock);
    RequireOpen();
    m_pool.Announce(std::move(buffer));
}

std::shared_ptr<BufferModule> StreamEngine::Revoke(BufferModule& buffer) {
    std::lock_guard<std::mutex> guard(m_lock);
    RequireAnnounced(buffer);
    if (buffer.CurrentPlace() != Place::Idle)
        throw Failure(GenTL::GC_ERR_BUSY, "the buffer is queued, being filled or awaiting delivery");
    return m_pool.Revoke(buffer);
}

std::shared_ptr<BufferModule> StreamEngine::BufferAt(uint32_t index) const {
    std::lock_guard<std::mutex> guard(m_lock);
    if (index >= m_pool.Announced().size())
        throw Failure(GenTL::GC_ERR_INVALID_INDEX,
                      "buffer " + std::to_string(index) + " of " + std::to_string(m_pool.Announced().size()));
    return m_pool.Announced()[index];
}

std::vector<std::shared_ptr<BufferModule>> StreamEngine::Buffers() const {
    std::lock_guard<std::mutex> guard(m_lock);
    return m_pool.Announced();
}

void StreamEngine::Queue(BufferModule& buffer) {
    std::lock_guard<std::mutex> guard(m_lock);
    RequireOpen();
    RequireAnnounced(buffer);
    if (buffer.CurrentPlace() != Place::Idle)
        throw Failure(GenTL::GC_ERR_RESOURCE_IN_USE,
                      "the buffer is queued, being filled or awaiting delivery");
    buffer.SetFrame(FrameInfo());
    m_pool.Move(buffer, Place::Input);
    if (m_threadIdle)
        m_wake.notify_one();
}

void StreamEngine::Flush(GenTL::ACQ_QUEUE_TYPE operation) {
    Lock lock(m_lock);
    RequireOpen();
    const Pause pause(*this, lock);
    switch (operation) {
    case GenTL::ACQ_QUEUE_INPUT_TO_OUTPUT:
        m_counters.queuedForDelivery += m_pool.Count(Place::Input);
        m_pool.MoveAll(Place::Input, Place::Output);
        if (m_gate != nullptr)
            m_gate->NotifyAll();
        break;
    case GenTL::ACQ_QUEUE_OUTPUT_DISCARD:
        m_pool.MoveAll(Place::Output, Place::Idle);
        break;
    case GenTL::ACQ_QUEUE_ALL_TO_INPUT:
        CancelCurrent(Place::Input);
        Requeue(Place::Output);
        break;
    case GenTL::ACQ_QUEUE_UNQUEUED_TO_INPUT:
        Requeue(Place::Idle);
        break;
    case GenTL::ACQ_QUEUE_ALL_DISCARD:
        CancelCurrent(Place::Idle);
        m_pool.MoveAll(Place::Input, Place::Idle);
        m_pool.MoveAll(Place::Output, Place::Idle);
        break;
    default:
        throw Failure(GenTL::GC_ERR_NOT_IMPLEMENTED,
                      "there is no queue operation " + std::to_string(operation));
    }
}

void StreamEngine::Requeue(Place from) {
    while (BufferModule* buffer = m_pool.First(from)) {
        buffer->SetFrame(FrameInfo());
        m_pool.Move(*buffer, Place::Input);
    }
}

void StreamEngine::CancelCurrent(Place to) {
    if (m_current == nullptr)
        return;
    m_pool.Move(*m_current, to);
    m_current = nullptr;
    m_wake.notify_one();
    m_settled.notify_all();
}

void StreamEngine::SetHandling(BufferHandling handling) {
    std::lock_guard<std::mutex> guard(m_lock);
    if (m_stopOwed)
        throw Failure(GenTL::GC_ERR_ACCESS_DENIED,
                      "buffer handling can't change while the stream is started");
    m_handling = handling;
}

void StreamEngine::Start(uint64_t frames) {
    std::lock_guard<std::mutex> guard(m_lock);
    if (frames == 0)
        throw Failure(GenTL::GC_ERR_INVALID_PARAMETER, "0 frames can't be acquired");
    RequireOpen();
    if (m_stopOwed)
        throw Failure(GenTL::GC_ERR_RESOURCE_IN_USE, "the acquisition is started already");
    if (m_pool.Announced().size() < buffersMin)
        throw Failure(GenTL::GC_ERR_INVALID_BUFFER, "no buffer is announced");
    m_counters.delivered = 0;
    m_remaining = frames;
    m_running = true;
    m_stopOwed = true;
    m_rescheduled = true;
    m_wake.notify_one();
}

void StreamEngine::Stop(GenTL::ACQ_STOP_FLAGS flags) {
    Lock lock(m_lock);
    if (!m_stopOwed)
        throw Failure(GenTL::GC_ERR_RESOURCE_IN_USE, "the acquisition is not started");
    m_running = false;
    m_stopOwed = false;
    m_wake.notify_one();
    if (flags == GenTL::ACQ_STOP_FLAGS_DEFAULT) {
        m_settled.wait(lock, [this] { return m_current == nullptr && !m_beginning; });
        return;
    }
    m_settled.wait(lock, [this] { return !m_writing && !m_beginning; });
    if (m_current == nullptr)
        return;
    const uint64_t frameId = m_currentFrame.frameId;
    DeliverUnfinished();
    TellDelivered(lock, frameId);
}

void StreamEngine::DeliverUnfinished() {
    if (!m_currentWhole) {
        FrameInfo frame = m_currentFrame;
        frame.incomplete = true;
        m_current->SetFrame(frame);
    }
    Deliver(*m_current);
    m_wake.notify_one();
}

StreamEngine::Counts StreamEngine::Count() const {
    std::lock_guard<std::mutex> guard(m_lock);
    return {m_counters, m_pool.Announced().size(), m_pool.Count(Place::Input) + m_pool.Count(Place::Filling),
            m_pool.Count(Place::Output), m_running};
}

void StreamEngine::Wake() {
    std::lock_guard<std::mutex> guard(m_lock);
    m_wake.notify_one();
}

void StreamEngine::Lose() {
    Lock lock(m_lock);
    m_running = false;
    const Pause pause(*this, lock);
    CancelCurrent(Place::Idle);
    m_pool.MoveAll(Place::Input, Place::Idle);
    m_pool.MoveAll(Place::Output, Place::Idle);
}

void StreamEngine::Shutdown() {
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_quit = true;
        m_running = false;
        m_wake.notify_one();
    }
    if (m_thread.joinable())
        m_thread.join();
    Lock lock(m_lock);
    CancelCurrent(Place::Idle);
    m_pool.MoveAll(Place::Input, Place::Idle);
    m_pool.MoveAll(Place::Output, Place::Idle);
}

void StreamEngine::Attach(EventGate& gate) {
    std::lock_guard<std::mutex> guard(m_lock);
    m_gate = &gate;
}

void StreamEngine::Detach(EventGate& gate) {
    std::lock_guard<std::mutex> guard(m_lock);
    gate.Close();
    if (m_gate != &gate)
        return;
    m_gate = nullptr;
    m_pool.MoveAll(Place::Output, Place::Idle);
}

void StreamEngine::KillWait(EventGate& gate) {
    std::lock_guard<std::mutex> guard(m_lock);
    gate.Kill();
}

void StreamEngine::TakeFilled(EventGate& gate, void* buffer, size_t* size, uint64_t timeoutMs) {
    if (m_free && timeoutMs > 0)
        SpinUntil([this] { return m_pool.Count(Place::Output) > 0; });
    Lock lock(m_lock);
    gate.Await(lock, timeoutMs, [this] { return m_pool.Count(Place::Output) > 0; });
    BufferModule& filled = *m_pool.First(Place::Output);
    if (buffer != nullptr) {
        const GenTL::EVENT_NEW_BUFFER_DATA data{filled.Handle(), filled.UserPointer()};
        ReplyBytes(&data, sizeof data, buffer, size);
    }
    m_pool.Move(filled, Place::Idle);
}

void StreamEngine::DiscardOutput() {
    std::lock_guard<std::mutex> guard(m_lock);
    m_pool.MoveAll(Place::Output, Place::Idle);
}

} // namespace zqgentl
