#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

/// What a stream of a camera that waits for triggers must do, told in a few numbers: the reference that the
/// library is compared with.
class CallModel {
public:
    enum class Retrieval { Frame, Null, TimedOut, Lost };

    bool streaming = false; ///< between the stream's start and stop
    bool acquiring = false; ///< between the camera's start and stop
    bool lost = false;
    bool everStarted = false;
    size_t count = 6;     ///< buffers of the next start
    size_t announced = 0; ///< buffers of the last one
    size_t held = 0;      ///< in the application's hands
    uint64_t underrun = 0;
    std::deque<uint64_t> waiting; ///< frame ids
    uint64_t nextFrame = 0;
    uint64_t framesLeft = 0; ///< that the stream still delivers

    void StartStream(uint64_t frames) {
        if (streaming)
            return;
        streaming = true;
        everStarted = true;
        announced = count;
        waiting.clear();
        framesLeft = frames;
    }

    void StopStream() { streaming = false; }

    void StartCamera() {
        if (!acquiring)
            nextFrame = 0;
        acquiring = true;
    }

    bool Flows() const { return streaming && acquiring && !lost && framesLeft > 0; }

    /// One trigger while frames flow; true when a frame is delivered, false when it is lost.
    bool Trigger() {
        const uint64_t frame = nextFrame++;
        if (held + waiting.size() >= announced) {
            ++underrun;
            return false;
        }
        waiting.push_back(frame);
        --framesLeft;
        return true;
    }

    /// A retrieval that doesn't wait.
    Retrieval Retrieve() const {
        if (!waiting.empty())
            return Retrieval::Frame;
        if (!streaming)
            return Retrieval::Null;
        return lost ? Retrieval::Lost : Retrieval::TimedOut;
    }
};
