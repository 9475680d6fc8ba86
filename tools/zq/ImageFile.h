#pragma once

#include <ZqApi/ZqApi.h>

#include <filesystem>

namespace ZqTool {

enum class FileFormat { Png, Raw };

/// Writes one image into the folder and returns the file's path: 000001.png, or 000001_640x480_Mono8.raw with
/// the lines as they lie in memory. Throws Failure for formats that PNG can't hold and for files that can't
/// be written.
std::filesystem::path WriteImage(ZqApi::IZqImage& image, const std::filesystem::path& folder, uint64_t number,
                                 FileFormat format);

} // namespace ZqTool
