#pragma once

#include <ZqApi/ZqApi.h>

#include <atomic>
#include <thread>

namespace ZqTool {

/// Takes the frames of a running stream and gives them back unseen, on a thread of its own, so that the
/// camera always has a buffer to fill.
class FrameDrain {
public:
    explicit FrameDrain(ZqApi::IZqDataStream& stream);
    FrameDrain(const FrameDrain&) = delete;
    FrameDrain& operator=(const FrameDrain&) = delete;
    ~FrameDrain();

private:
    void Run();

    ZqApi::IZqDataStream& m_stream;
    std::atomic<bool> m_ends{false};
    std::thread m_thread;
};

} // namespace ZqTool
