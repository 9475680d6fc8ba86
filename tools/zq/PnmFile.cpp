#include "tools/zq/Formats.h"

#include "tools/zq/OutputFile.h"
#include "tools/zq/SampleLine.h"

namespace ZqTool {

void WritePnm(const Picture& picture, const std::filesystem::path& path) {
    const size_t channels = picture.channels == 1 ? 1 : 3;
    OutputFile file(path);
    file.Write((channels == 1 ? "P5\n# " : "P6\n# ") + picture.Description() + "\n" +
               std::to_string(picture.width) + " " + std::to_string(picture.height) + "\n" +
               std::to_string((1U << picture.bits) - 1) + "\n");
    SampleLine line(picture, SampleRange::AsSent, ByteOrder::Big);
    for (size_t y = 0; y < picture.height; ++y) {
        const auto& bytes = line.At(y, channels);
        file.Write(bytes.data(), bytes.size());
    }
    file.Close();
}

} // namespace ZqTool
