#pragma once

#include "tools/zq/ImageFile.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace ZqTool {

/// Writes frames on a thread of its own, so that the thread that retrieves them need not wait for the disk.
/// A fixed number of frames waits; their memory is used over and over. One thread puts frames in.
class FrameWriter {
public:
    using Write = std::function<void(const Frame&)>;

    /// `write` is called on the writer's thread, for each frame in turn.
    explicit FrameWriter(Write write, size_t capacity = 8);
    FrameWriter(const FrameWriter&) = delete;
    FrameWriter& operator=(const FrameWriter&) = delete;
    /// Writes what still waits, without a word of what fails in it.
    ~FrameWriter();

    /// A frame to fill and give to Put. Waits while all are in use. Throws what writing threw.
    Frame* Take();
    void Put(Frame* frame);
    /// Returns when all is written. Throws what writing threw.
    void Finish();

    /// How often Take has had to wait.
    [[nodiscard]] uint64_t Waits() const { return m_waits; }

private:
    void Run();
    void Throw();

    Write m_write;
    std::deque<Frame> m_frames;
    std::deque<Frame*> m_free;
    std::deque<Frame*> m_filled;
    uint64_t m_waits = 0;
    bool m_ends = false;
    std::exception_ptr m_failure;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::thread m_thread;
};

} // namespace ZqTool
