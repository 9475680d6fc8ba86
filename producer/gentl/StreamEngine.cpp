#include "producer/gentl/StreamEngine.h"

#include "producer/gentl/FrameWriter.h"
#include "producer/gentl/Spin.h"
#include "producer/sim/Failure.h"

#include <algorithm>

namespace zqgentl {

namespace {

// A thread that was held up this long starts a new beat instead of catching up.
constexpr std::chrono::seconds maxBacklog(1);

uint64_t Nanoseconds(std::chrono::steady_clock::time_point time) {
    return static_cast<uint64_t>(std::chrono::nanoseconds(time.time_since_epoch()).count());
}

} // namespace

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

StreamEngine::StreamEngine(Camera& camera) : m_camera(camera) {
    m_thread = std::thread([this] { Run(); });
}

StreamEngine::~StreamEngine() {
    Shutdown();
}

void StreamEngine::RequireAnnounced(const BufferModule& buffer) const {
    if (!m_pool.Contains(buffer))
        throw Failure(GenTL::GC_ERR_INVALID_HANDLE, "the buffer is not announced on this stream");
}

void StreamEngine::Announce(std::shared_ptr<BufferModule> buffer) {
    std::lock_guard<std::mutex> guard(m_lock);
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
        m_settled.wait(lock, [this] { return m_current == nullptr; });
        return;
    }
    m_settled.wait(lock, [this] { return !m_writing; });
    if (m_current != nullptr)
        DeliverUnfinished();
}

void StreamEngine::DeliverUnfinished() {
    FrameInfo frame = m_currentFrame;
    frame.incomplete = true;
    m_current->SetFrame(frame);
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

bool StreamEngine::Flowing() const {
    return m_running && m_camera.Acquiring();
}

bool StreamEngine::Disturbed(const FrameTicket& ticket) const {
    return m_quit || !Flowing() || ticket.revision != m_camera.Revision();
}

bool StreamEngine::MayTake() const {
    const bool overwrites = m_handling != BufferHandling::OldestFirst;
    return m_pauses == 0 &&
           (m_pool.Count(Place::Input) > 0 || (overwrites && m_pool.Count(Place::Output) > 0));
}

void StreamEngine::Run() {
    FrameTicket ticket;
    Lock lock(m_lock);
    while (!m_quit) {
        m_free.store(Flowing() && !ticket.plan.paced && !ticket.plan.triggered, std::memory_order_relaxed);
        if (!Flowing()) {
            m_wake.wait(lock, [this] { return m_quit || Flowing(); });
        } else if (ticket.revision != m_camera.Revision()) {
            lock.unlock();
            m_camera.Refresh(ticket);
            lock.lock();
        } else if (ticket.plan.triggered) {
            TriggeredFrame(lock, ticket);
        } else if (ticket.plan.paced) {
            PacedFrame(lock, ticket);
        } else {
            FreeFrame(lock, ticket);
        }
    }
}

void StreamEngine::FreeFrame(Lock& lock, FrameTicket& ticket) {
    if (!MayTake()) {
        lock.unlock();
        SpinUntil([this] { return m_pool.Count(Place::Input) > 0; });
        lock.lock();
        m_threadIdle = true;
        m_wake.wait(lock, [&] { return MayTake() || Disturbed(ticket); });
        m_threadIdle = false;
        return;
    }
    BufferModule& buffer = TakeNext();
    m_writing = true;
    lock.unlock();
    const bool begun = m_camera.BeginFrame(ticket);
    const bool dropped = begun && ticket.plan.faults.Drops(ticket.frameId);
    if (begun) {
        const auto timestampNs = static_cast<uint64_t>(SteadyNow());
        Send(EventKind::FrameStart, ticket, timestampNs);
        Send(EventKind::ExposureEnd, ticket, timestampNs);
        if (!dropped)
            WriteFrame(m_painter, buffer, ticket, timestampNs);
        Send(EventKind::FrameEnd, ticket, timestampNs);
    }
    lock.lock();
    m_writing = false;
    if (begun && !dropped) {
        ++m_counters.started;
        Finish(lock, buffer, ticket);
        return;
    }
    m_pool.MoveToFront(buffer, Place::Input);
    m_current = nullptr;
    m_settled.notify_all();
}

void StreamEngine::Schedule(const FrameTicket& ticket) {
    const Clock::time_point now = Clock::now();
    if (m_rescheduled || ticket.run != m_run || now - m_due > maxBacklog)
        m_due = now;
    // A rate raised meanwhile must not wait for the old period to end.
    m_due = std::min(m_due, now + ticket.plan.period);
    m_rescheduled = false;
    m_run = ticket.run;
}

bool StreamEngine::AwaitDue(Lock& lock, const FrameTicket& ticket) {
    return !m_wake.wait_until(lock, m_due, [&] { return Disturbed(ticket); });
}

void StreamEngine::PacedFrame(Lock& lock, FrameTicket& ticket) {
    Schedule(ticket);
    if (!AwaitDue(lock, ticket))
        return;
    const Clock::time_point exposed = m_due;
    m_due += ticket.plan.period;
    Expose(lock, ticket, exposed);
}

void StreamEngine::TriggeredFrame(Lock& lock, FrameTicket& ticket) {
    m_wake.wait(lock, [&] { return Disturbed(ticket) || m_camera.Triggered(); });
    if (Disturbed(ticket))
        return;
    m_camera.TakeTrigger();
    m_due = Clock::now() + ticket.plan.triggerDelay;
    m_rescheduled = true;
    if (AwaitDue(lock, ticket))
        Expose(lock, ticket, m_due);
}

void StreamEngine::Expose(Lock& lock, FrameTicket& ticket, Clock::time_point exposed) {
    lock.unlock();
    const bool begun = m_camera.BeginFrame(ticket);
    if (begun)
        Send(EventKind::FrameStart, ticket, Nanoseconds(exposed));
    lock.lock();
    if (!begun)
        return;
    m_wake.wait(lock, [this] { return m_quit || m_pauses == 0; });
    if (m_quit || !m_running)
        return;
    const bool dropped = ticket.plan.faults.Drops(ticket.frameId);
    if (dropped || !MayTake()) {
        m_counters.underrun += dropped ? 0 : 1;
        lock.unlock();
        Send(EventKind::ExposureEnd, ticket, Nanoseconds(exposed));
        lock.lock();
        return;
    }
    BufferModule& buffer = TakeNext();
    ++m_counters.started;
    m_currentFrame = DescribeFrame(ticket, Nanoseconds(exposed));
    // A frame once begun is finished, unless it is taken away by a flush, a kill or a loss.
    const bool taken = m_wake.wait_until(lock, exposed + ticket.plan.exposure,
                                         [&] { return m_quit || m_current != &buffer; });
    if (taken)
        return;
    m_writing = true;
    lock.unlock();
    Send(EventKind::ExposureEnd, ticket, Nanoseconds(exposed));
    WriteFrame(m_painter, buffer, ticket, Nanoseconds(exposed));
    Send(EventKind::FrameEnd, ticket, Nanoseconds(exposed));
    lock.lock();
    m_writing = false;
    Finish(lock, buffer, ticket);
}

void StreamEngine::Finish(Lock& lock, BufferModule& buffer, const FrameTicket& ticket) {
    const std::chrono::milliseconds delay = ticket.plan.faults.Delay(ticket.frameId);
    if (delay.count() != 0) {
        const auto taken = [&] { return m_quit || m_current != &buffer; };
        if (m_wake.wait_until(lock, Clock::now() + delay, taken))
            return;
    }
    Deliver(buffer);
}

void StreamEngine::Send(EventKind kind, const FrameTicket& ticket, uint64_t timestampNs) {
    if (kind == EventKind::FrameEnd && ticket.plan.faults.SendsError(ticket.frameId))
        m_camera.Send({EventKind::Error, ticket.frameId, timestampNs,
                       static_cast<uint32_t>(ticket.plan.faults.errorCode)});
    if (ticket.plan.signals && kind == EventKind::FrameStart)
        m_camera.Happen(Signal::FrameStart);
    if (ticket.plan.signals && kind == EventKind::ExposureEnd)
        m_camera.Happen(Signal::ExposureEnd);
    if ((ticket.plan.events & MaskOf(kind)) != 0)
        m_camera.Send({kind, ticket.frameId, timestampNs, 0});
}

BufferModule& StreamEngine::TakeNext() {
    BufferModule* buffer = m_pool.First(Place::Input);
    if (buffer == nullptr) {
        buffer = m_pool.First(Place::Output);
        buffer->SetFrame(FrameInfo());
        ++m_counters.underrun;
    }
    m_pool.Move(*buffer, Place::Filling);
    m_current = buffer;
    return *buffer;
}

void StreamEngine::Deliver(BufferModule& buffer) {
    if (m_handling == BufferHandling::NewestOnly) {
        m_counters.underrun += m_pool.Count(Place::Output);
        Requeue(Place::Output);
    }
    m_pool.Move(buffer, Place::Output);
    m_current = nullptr;
    ++m_counters.delivered;
    ++m_counters.queuedForDelivery;
    if (m_remaining != GENTL_INFINITE && --m_remaining == 0)
        m_running = false;
    if (m_gate != nullptr)
        m_gate->NotifyData();
    m_settled.notify_all();
}

} // namespace zqgentl
