#include "tools/zq/FrameWriter.h"

#include <utility>

namespace ZqTool {

FrameWriter::FrameWriter(Write write, size_t capacity) : m_write(std::move(write)), m_frames(capacity) {
    for (auto& frame : m_frames)
        m_free.push_back(&frame);
    m_thread = std::thread([this] { Run(); });
}

FrameWriter::~FrameWriter() {
    {
        const std::lock_guard lock(m_mutex);
        m_ends = true;
    }
    m_changed.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

Frame* FrameWriter::Take() {
    std::unique_lock lock(m_mutex);
    const auto usable = [this] { return !m_free.empty() || m_failure != nullptr; };
    if (!usable()) {
        ++m_waits;
        m_changed.wait(lock, usable);
    }
    Throw();
    Frame* frame = m_free.front();
    m_free.pop_front();
    return frame;
}

void FrameWriter::Put(Frame* frame) {
    {
        const std::lock_guard lock(m_mutex);
        m_filled.push_back(frame);
    }
    m_changed.notify_all();
}

void FrameWriter::Finish() {
    {
        const std::lock_guard lock(m_mutex);
        m_ends = true;
    }
    m_changed.notify_all();
    if (m_thread.joinable())
        m_thread.join();
    Throw();
}

void FrameWriter::Throw() {
    if (m_failure != nullptr)
        std::rethrow_exception(m_failure);
}

void FrameWriter::Run() {
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_ends || !m_filled.empty(); });
        if (m_filled.empty())
            return;
        Frame* frame = m_filled.front();
        m_filled.pop_front();
        lock.unlock();
        std::exception_ptr failure;
        try {
            m_write(*frame);
        } catch (...) {
            failure = std::current_exception();
        }
        lock.lock();
        m_free.push_back(frame);
        m_failure = failure;
        m_changed.notify_all();
        if (failure != nullptr)
            return;
    }
}

} // namespace ZqTool
