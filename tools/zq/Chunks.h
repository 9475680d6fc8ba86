#pragma once

#include "tools/zq/SelectedSwitch.h"

#include <string>

namespace ZqTool {

/// Has the camera send all its chunks while it lives. Make it before the acquisition starts and end it after
/// that has stopped.
class ChunkMode {
public:
    /// Throws Failure for a camera without chunks, with all as it was.
    explicit ChunkMode(const Camera& camera);

    /// Throws Failure when something can't be put back.
    void PutBack();

private:
    /// ChunkModeActive, switched on; put back at the end, without a word of what fails in it.
    class Active {
    public:
        explicit Active(const Camera& camera);
        Active(const Active&) = delete;
        Active& operator=(const Active&) = delete;
        ~Active();
        void PutBack();

    private:
        const Camera& m_camera;
        std::string m_before;
    };

    // The chunks can be chosen while the mode is active only.
    Active m_active;
    SelectedSwitch m_enable;
};

/// Reads what came with frames.
class ChunkReader {
public:
    /// The values of the buffer's chunks, as a JSON object by the names of their features.
    std::string Values(ZqApi::IZqStreamBuffer& buffer);

private:
    std::vector<GenICam::gcstring> m_names; ///< the same for every buffer of a camera
};

} // namespace ZqTool
