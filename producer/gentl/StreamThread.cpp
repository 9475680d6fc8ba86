// What the thread of a stream does: it waits for the next frame to be due, takes a buffer, fills and delivers
// it.

#include "producer/gentl/FrameWriter.h"
#include "producer/gentl/Spin.h"
#include "producer/gentl/StreamEngine.h"

#include <algorithm>

namespace zqgentl {

namespace {

// A thread that was held up this long starts a new beat instead of catching up.
constexpr std::chrono::seconds maxBacklog(1);

uint64_t Nanoseconds(std::chrono::steady_clock::time_point time) {
    return static_cast<uint64_t>(std::chrono::nanoseconds(time.time_since_epoch()).count());
}

} // namespace

bool StreamEngine::Flowing() const {
    return m_running && m_camera.Acquiring() && !m_camera.Armed();
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
        m_free.store(Flowing() && !ticket.plan.paced && !ticket.plan.triggered, std::memory_order_release);
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
    m_beginning = true;
    lock.unlock();
    const bool begun = m_camera.BeginFrame(ticket);
    const bool dropped = begun && ticket.plan.faults.Drops(ticket.frameId);
    const auto timestampNs = static_cast<uint64_t>(SteadyNow());
    if (begun)
        Send(EventKind::FrameStart, ticket, timestampNs);
    if (dropped)
        for (const EventKind kind : {EventKind::ExposureEnd, EventKind::FrameEnd})
            Send(kind, ticket, timestampNs);
    lock.lock();
    m_beginning = false;
    m_settled.notify_all();
    if (m_current != &buffer)
        return;
    if (!begun || dropped) {
        m_pool.MoveToFront(buffer, Place::Input);
        m_current = nullptr;
        return;
    }
    ++m_counters.started;
    if (SendMeanwhile(lock, EventKind::ExposureEnd, buffer, ticket, timestampNs))
        Write(lock, buffer, ticket, timestampNs);
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

void StreamEngine::MakeUpForDelay(Lock& lock, const FrameTicket& ticket, Clock::time_point exposed) {
    // The host has had less time to give buffers back than the camera would have left it: a thread that was
    // held up makes the frames that are overdue in one go. Less than a period for each lets it catch up even
    // if none comes.
    const Clock::time_point now = Clock::now();
    const auto patience = std::min<Clock::duration>(now - exposed, ticket.plan.period * 3 / 4);
    m_threadIdle = true;
    m_wake.wait_until(lock, now + patience, [this] { return m_quit || !m_running || MayTake(); });
    m_threadIdle = false;
}

BufferModule* StreamEngine::BeginExposure(Lock& lock, FrameTicket& ticket, Clock::time_point exposed) {
    lock.unlock();
    const bool begun = m_camera.BeginFrame(ticket);
    if (begun)
        Send(EventKind::FrameStart, ticket, Nanoseconds(exposed));
    lock.lock();
    if (!begun)
        return nullptr;
    const bool dropped = ticket.plan.faults.Drops(ticket.frameId);
    if (!dropped)
        MakeUpForDelay(lock, ticket, exposed);
    m_wake.wait(lock, [this] { return m_quit || m_pauses == 0; });
    if (m_quit)
        return nullptr;
    if (dropped || !MayTake()) {
        m_counters.underrun += dropped ? 0 : 1;
        lock.unlock();
        Send(EventKind::ExposureEnd, ticket, Nanoseconds(exposed));
        lock.lock();
        return nullptr;
    }
    return &TakeNext();
}

void StreamEngine::Expose(Lock& lock, FrameTicket& ticket, Clock::time_point exposed) {
    // A stop that comes from here on waits, so that a frame that has its id is delivered or counted.
    m_beginning = true;
    BufferModule* const taken = BeginExposure(lock, ticket, exposed);
    m_beginning = false;
    m_settled.notify_all();
    if (taken == nullptr)
        return;
    BufferModule& buffer = *taken;
    ++m_counters.started;
    m_currentFrame = DescribeFrame(ticket, Nanoseconds(exposed));
    // A frame once begun is finished, unless it is taken away by a flush, a kill or a loss.
    if (m_wake.wait_until(lock, exposed + ticket.plan.exposure,
                          [&] { return m_quit || m_current != &buffer; }))
        return;
    if (SendMeanwhile(lock, EventKind::ExposureEnd, buffer, ticket, Nanoseconds(exposed)))
        Write(lock, buffer, ticket, Nanoseconds(exposed));
}

void StreamEngine::Write(Lock& lock, BufferModule& buffer, const FrameTicket& ticket, uint64_t timestampNs) {
    // No event is sent meanwhile: who tells of a loss waits for the end of this, and nobody else can tell
    // anything until then.
    m_writing = true;
    lock.unlock();
    Fill(buffer, ticket, timestampNs);
    lock.lock();
    m_writing = false;
    m_currentWhole = true;
    m_settled.notify_all();
    if (SendMeanwhile(lock, EventKind::FrameEnd, buffer, ticket, timestampNs))
        Finish(lock, buffer, ticket);
}

bool StreamEngine::SendMeanwhile(Lock& lock, EventKind kind, const BufferModule& buffer,
                                 const FrameTicket& ticket, uint64_t timestampNs) {
    const FramePlan& plan = ticket.plan;
    if (!plan.signals && plan.events == 0 && !plan.faults.SendsError(ticket.frameId))
        return true;
    // What a kill delivers in its stead.
    m_currentFrame = DescribeFrame(ticket, timestampNs);
    lock.unlock();
    Send(kind, ticket, timestampNs);
    lock.lock();
    return !m_quit && m_current == &buffer;
}

void StreamEngine::Fill(BufferModule& buffer, const FrameTicket& ticket, uint64_t timestampNs) {
    const bool tooSmall = !WriteFrame(m_painter, buffer, ticket, timestampNs);
    m_listener.OnTransferEnd(buffer, {ticket.frameId, tooSmall, m_discarded.exchange(false)});
}

void StreamEngine::Finish(Lock& lock, BufferModule& buffer, const FrameTicket& ticket) {
    const std::chrono::milliseconds delay = ticket.plan.faults.Delay(ticket.frameId);
    if (delay.count() != 0) {
        // What a kill delivers in its stead.
        m_currentFrame = DescribeFrame(ticket, buffer.Frame().timestampNs);
        m_currentWhole = false;
        const auto taken = [&] { return m_quit || m_current != &buffer; };
        if (m_wake.wait_until(lock, Clock::now() + delay, taken))
            return;
    }
    Deliver(buffer);
    TellDelivered(lock, ticket.frameId);
}

void StreamEngine::TellDelivered(Lock& lock, uint64_t frameId) {
    if (!m_listener.WantsNewBuffers())
        return;
    lock.unlock();
    m_listener.OnNewBuffer(frameId);
    lock.lock();
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
        m_discarded = true;
    }
    m_pool.Move(*buffer, Place::Filling);
    m_current = buffer;
    m_currentWhole = false;
    return *buffer;
}

void StreamEngine::Deliver(BufferModule& buffer) {
    if (m_handling == BufferHandling::NewestOnly) {
        m_counters.underrun += m_pool.Count(Place::Output);
        m_discarded = m_discarded || m_pool.Count(Place::Output) > 0;
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
