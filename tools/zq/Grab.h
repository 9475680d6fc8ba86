#pragma once

#include "tools/zq/Camera.h"
#include "tools/zq/ImageFile.h"

#include <cstdint>
#include <string>

namespace ZqTool {

struct GrabOptions {
    CameraChoice camera;
    uint64_t frames = 1;
    std::string folder; ///< empty: no files
    FileOptions files;
    bool chunks = false; ///< have the camera send chunks, and write them beside the pictures
    uint32_t timeoutMs = 5000;
};

/// Acquires frames, writes each complete one to a file and prints one line of result.
int Grab(const Library& library, const GrabOptions& options, const Console& console);

} // namespace ZqTool
