#pragma once

#include "tools/zq/Commands.h"
#include "tools/zq/ImageFile.h"
#include "tools/zq/Library.h"

#include <string>

namespace ZqTool {

struct ChartOptions {
    std::string pixelFormat;
    size_t width = 0;
    size_t height = 0;
    std::string file; ///< its ending says the file format
};

/// Writes the library's test chart of a pixel format into an image file.
int Chart(const Library& library, const ChartOptions& options, const Console& console);

} // namespace ZqTool
