#pragma once

#include "producer/gentl/BufferPool.h"
#include "producer/gentl/EventGate.h"
#include "producer/gentl/FrameWriter.h"
#include "producer/sim/Camera.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

namespace zqgentl {

/// Numbered as the enumeration StreamBufferHandlingMode numbers them. OldestFirst: a frame that finds no
/// queued buffer is lost. The other two give up filled buffers that wait for delivery: OldestFirstOverwrite
/// the oldest, when no other is left, and NewestOnly all of them for each new frame.
enum class BufferHandling : int64_t { OldestFirst, OldestFirstOverwrite, NewestOnly };

/// What a stream has to tell of a frame that has been written into a buffer.
struct TransferNews {
    uint64_t frameId;
    bool tooSmall;  ///< the buffer, for the frame
    bool discarded; ///< filled buffers have been given up for it or for one before
};

/// Who wants to know of it. Called without the engine's lock, on its thread.
class StreamListener {
public:
    virtual void OnTransferEnd(BufferModule& buffer, const TransferNews& news) = 0;
    /// A frame has come into the output queue, if that is wanted to be told; from a kill on the thread of its
    /// caller.
    [[nodiscard]] virtual bool WantsNewBuffers() const = 0;
    virtual void OnNewBuffer(uint64_t frameId) = 0;

protected:
    ~StreamListener() = default;
};

/// How many buffers a stream needs to start.
constexpr size_t buffersMin = 1;

/// Moves frames from a camera into a stream's buffers, on a thread of its own. Frames flow while the stream
/// is started and the camera is acquiring. A paced camera exposes by the clock and loses the frame when no
/// buffer is queued; a camera without pace waits for one. Any thread may call any member.
class StreamEngine {
public:
    struct Counters {
        uint64_t delivered = 0; ///< since the last start
        uint64_t underrun = 0;  ///< since the stream was opened, like the rest
        uint64_t started = 0;
        uint64_t queuedForDelivery = 0;
    };
    struct Counts {
        Counters counters;
        size_t announced;
        size_t queued;
        size_t awaiting;
        bool grabbing;
    };

    /// The listener outlives the engine's thread, which Shutdown ends.
    StreamEngine(Camera& camera, StreamListener& listener);
    StreamEngine(const StreamEngine&) = delete;
    StreamEngine& operator=(const StreamEngine&) = delete;
    ~StreamEngine();

    void Announce(std::shared_ptr<BufferModule> buffer);
    std::shared_ptr<BufferModule> Revoke(BufferModule& buffer);
    [[nodiscard]] std::shared_ptr<BufferModule> BufferAt(uint32_t index) const;
    [[nodiscard]] std::vector<std::shared_ptr<BufferModule>> Buffers() const;
    /// GC_ERR_INVALID_HANDLE for a buffer of another stream or none.
    void RequireAnnounced(const BufferModule& buffer) const;
    void Queue(BufferModule& buffer);
    void Flush(GenTL::ACQ_QUEUE_TYPE operation);

    /// What happens to frames while no buffer is queued; not to be changed while started.
    void SetHandling(BufferHandling handling);
    [[nodiscard]] BufferHandling Handling() const noexcept { return m_handling; }

    void Start(uint64_t frames);
    void Stop(GenTL::ACQ_STOP_FLAGS flags);
    [[nodiscard]] Counts Count() const;

    /// To be called after any change of the camera, so that the thread looks at it again.
    void Wake();
    /// The camera is gone: everything stops where it is and every buffer is idle.
    void Lose();
    /// Ends the thread; nothing is written into any buffer afterwards.
    void Shutdown();

    /// The consumer's side of the output queue, waited for through the gate of its registration.
    void Attach(EventGate& gate);
    void Detach(EventGate& gate);
    void KillWait(EventGate& gate);
    void TakeFilled(EventGate& gate, void* buffer, size_t* size, uint64_t timeoutMs);
    void DiscardOutput();

private:
    using Lock = std::unique_lock<std::mutex>;
    using Clock = std::chrono::steady_clock;
    class Pause;

    void Run();
    void FreeFrame(Lock& lock, FrameTicket& ticket);
    void PacedFrame(Lock& lock, FrameTicket& ticket);
    [[nodiscard]] bool AwaitDue(Lock& lock, const FrameTicket& ticket);
    void Schedule(const FrameTicket& ticket);
    /// Called without the lock. Costs nothing while the event is off.
    void Send(EventKind kind, const FrameTicket& ticket, uint64_t timestampNs);
    /// Lets go of the lock meanwhile; false when the buffer has been taken away since.
    bool SendMeanwhile(Lock& lock, EventKind kind, const BufferModule& buffer, const FrameTicket& ticket,
                       uint64_t timestampNs);
    void TriggeredFrame(Lock& lock, FrameTicket& ticket);
    /// Called without the lock.
    void Fill(BufferModule& buffer, const FrameTicket& ticket, uint64_t timestampNs);
    void Expose(Lock& lock, FrameTicket& ticket, Clock::time_point exposed);
    /// Waits for a buffer as long as this thread was late itself.
    void MakeUpForDelay(Lock& lock, const FrameTicket& ticket, Clock::time_point exposed);
    /// Begins a frame; the buffer for it, or null where there is none to fill.
    BufferModule* BeginExposure(Lock& lock, FrameTicket& ticket, Clock::time_point exposed);
    BufferModule& TakeNext();
    /// Fills a buffer that the thread has taken, and delivers it unless it is taken away.
    void Write(Lock& lock, BufferModule& buffer, const FrameTicket& ticket, uint64_t timestampNs);
    /// Delivers a frame that has been written, late if it is to be.
    void Finish(Lock& lock, BufferModule& buffer, const FrameTicket& ticket);
    void Deliver(BufferModule& buffer);
    /// Lets go of the lock meanwhile.
    void TellDelivered(Lock& lock, uint64_t frameId);
    void DeliverUnfinished();
    /// GC_ERR_INVALID_HANDLE after Shutdown: a thread may still be in a call when another closes the stream.
    void RequireOpen() const;
    void CancelCurrent(Place to);
    void Requeue(Place from);
    [[nodiscard]] bool Flowing() const;
    [[nodiscard]] bool Disturbed(const FrameTicket& ticket) const;
    [[nodiscard]] bool MayTake() const;

    Camera& m_camera;
    StreamListener& m_listener;
    mutable std::mutex m_lock;
    std::condition_variable m_wake;    // the thread waits on it
    std::condition_variable m_settled; // callers that need the thread to be out of a buffer wait on it
    BufferPool m_pool;
    EventGate* m_gate = nullptr;
    Counters m_counters;
    uint64_t m_remaining = 0;
    BufferModule* m_current = nullptr; // taken by the thread
    FrameInfo m_currentFrame;          // what is known of its frame before it is delivered
    bool m_currentWhole = false;       // it has been written, and only its event is still to be sent
    std::atomic<BufferHandling> m_handling{BufferHandling::OldestFirst};
    Painter m_painter;
    bool m_beginning = false;             // a frame has its id, and no buffer yet
    std::atomic<bool> m_discarded{false}; // filled buffers were given up, which has not been told yet
    bool m_writing = false;               // the thread writes into it, without the lock
    unsigned m_pauses = 0;                // callers that want no new buffer taken
    std::atomic<bool> m_free{false};      // frames flow as fast as they are fetched
    bool m_threadIdle = false;
    bool m_running = false;
    bool m_stopOwed = false;
    bool m_quit = false;
    bool m_rescheduled = true;
    uint64_t m_run = 0;
    Clock::time_point m_due;
    std::thread m_thread;
};

} // namespace zqgentl
