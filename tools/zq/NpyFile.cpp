#include "tools/zq/Formats.h"

#include "tools/zq/OutputFile.h"
#include "tools/zq/SampleLine.h"

namespace ZqTool {

namespace {

/// Magic, version 1.0, the length of the text, the text; together a multiple of 64 bytes, so that the array
/// is aligned.
std::string HeaderOf(const Picture& picture) {
    std::string text = std::string("{'descr': '") + (picture.BytesPerSample() == 1 ? "|u1" : "<u2") +
                       "', 'fortran_order': False, 'shape': (" + std::to_string(picture.height) + ", " +
                       std::to_string(picture.width) +
                       (picture.channels == 1 ? "" : ", " + std::to_string(picture.channels)) + "), }";
    constexpr size_t before = 10;
    while ((before + text.size() + 1) % 64 != 0)
        text += ' ';
    text += '\n';
    std::string header("\x93NUMPY\x01\x00", 8);
    header += static_cast<char>(text.size() & 0xFF);
    header += static_cast<char>(text.size() >> 8);
    return header + text;
}

} // namespace

void WriteNpy(const Picture& picture, const std::filesystem::path& path) {
    OutputFile file(path);
    file.Write(HeaderOf(picture));
    SampleLine line(picture, SampleRange::AsSent, ByteOrder::Little);
    for (size_t y = 0; y < picture.height; ++y) {
        const auto& bytes = line.At(y);
        file.Write(bytes.data(), bytes.size());
    }
    file.Close();
}

} // namespace ZqTool
