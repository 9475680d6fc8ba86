#pragma once

#include "tools/zq/Camera.h"

#include <cstdint>
#include <string>
#include <vector>

namespace ZqTool {

struct EventOptions {
    CameraChoice camera;
    std::vector<std::string> names; ///< none: all that the camera has
    uint64_t count = 0;             ///< end after that many; 0: go on until interrupted
    uint32_t timeoutMs = 0;         ///< how long to wait for one; 0: without limit
    bool jsonLines = false;
    bool acquire = false;             ///< have the camera acquire meanwhile; the frames are dropped
    std::vector<std::string> execute; ///< commands to execute once the events are on
};

/// Switches events of the camera on, prints them as they come and switches them back.
int Events(const Library& library, const EventOptions& options, const Console& console);

} // namespace ZqTool
