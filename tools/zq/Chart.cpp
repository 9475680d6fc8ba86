#include "tools/zq/Chart.h"

#include "tools/zq/Failure.h"
#include "tools/zq/PixelFormats.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <ostream>

namespace ZqTool {

namespace {

using namespace ZqApi;

EZqPixelFormatNamingConvention_t FormatNamed(const std::string& name) {
    const auto format = FindPixelFormat(name);
    if (!format)
        throw Failure("drawing a chart in " + name, "there is no pixel format of that name",
                      "Mono8, Mono12, BGR8 or another name of the Pixel Format Naming Convention", Usage);
    return *format;
}

FileFormat FileFormatOfName(const std::string& file) {
    std::string ending = std::filesystem::path(file).extension();
    const auto format = FileFormatOf(ending.empty() ? ending : ending.substr(1));
    if (!format)
        throw Failure("writing " + file, "its ending names no file format",
                      "end it with .png, .tiff, .pgm, .ppm, .npy or .raw", Usage);
    return *format;
}

} // namespace

int Chart(const Library&, const ChartOptions& options, const Console& console) {
    const FileOptions files{FileFormatOfName(options.file), false};
    const auto format = FormatNamed(options.pixelFormat);
    Frame frame;
    Doing("drawing a chart in " + options.pixelFormat, [&] {
        const Held<IZqImageBufferReleasable> buffer(CreateIZqImageBuffer(nullptr));
        // Charts leave the alpha of their patches as the memory had it: opaque.
        buffer->CreateBuffer(options.width, options.height, format, ZqMemoryInitialization_FFFill);
        buffer->CreateBuffer(options.width, options.height, format, ZqMemoryInitialization_TestChart);
        // The image fills memory of its own, as much as it needs.
        frame.CopyFrom(*buffer->GetIZqImage(), std::numeric_limits<size_t>::max());
    });
    if (std::all_of(frame.bytes.begin(), frame.bytes.end(), [](uint8_t byte) { return byte == 0; }))
        console.err << "zq: " << options.pixelFormat << " has no chart; the picture is black\n";
    WriteImageFile(frame, options.file, files);
    return Done;
}

} // namespace ZqTool
