#pragma once

#include "tools/zq/Camera.h"

namespace ZqTool {

/// A camera that acquires, as fast as its settings say and without end: the stream starts first, then the
/// camera; they stop the other way round.
class Acquisition {
public:
    /// Opens and starts; throws Failure and leaves nothing running.
    explicit Acquisition(const Camera& camera);
    Acquisition(const Acquisition&) = delete;
    Acquisition& operator=(const Acquisition&) = delete;
    /// Stops, without a word of what fails in it.
    ~Acquisition();

    [[nodiscard]] ZqApi::IZqDataStream& Stream() const { return *m_stream; }
    /// Throws Failure.
    void Stop();

private:
    const Camera& m_camera;
    Held<ZqApi::IZqDataStreamReleasable> m_stream;
    bool m_running = false;
};

} // namespace ZqTool
