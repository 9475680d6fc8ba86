#pragma once

#include "tools/zq/Commands.h"
#include "tools/zq/ImageFile.h"
#include "tools/zq/Library.h"

#include <cstdint>
#include <string>

namespace ZqTool {

struct GrabOptions {
    std::string device; ///< identifier, serial number or user-defined name; empty: the first available one
    uint64_t frames = 1;
    std::string folder; ///< empty: no files
    FileFormat format = FileFormat::Png;
    uint32_t timeoutMs = 5000;
};

/// Acquires frames, writes each complete one to a file and prints one line of result.
int Grab(const Library& library, const GrabOptions& options, const Console& console);

} // namespace ZqTool
