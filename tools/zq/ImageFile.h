#pragma once

#include "tools/zq/Picture.h"

#include <filesystem>
#include <optional>

namespace ZqTool {

enum class FileFormat { Png, Tiff, Pgm, Raw, Npy };

struct FileOptions {
    FileFormat format = FileFormat::Png;
    bool demosaic = false; ///< mosaics become colour pictures
};

/// "png", "tiff", "pgm", "raw", "npy"; nothing for other words. Of file names, "tif", "ppm" too.
std::optional<FileFormat> FileFormatOf(const std::string& word);

/// Writes one frame to that file; a .json beside it has the frame's format, for NPY, and its chunks, if it
/// has any. Throws Failure. Any thread while the library is initialised.
void WriteImageFile(const Frame& frame, const std::filesystem::path& path, const FileOptions& options);

/// Writes one frame into the folder, as 000001.png, 000001.tiff, 000001.pgm (colours: .ppm), 000001.npy or
/// 000001_640x480_Mono8.raw with the lines as they lie in memory.
void WriteNumberedFile(const Frame& frame, const std::filesystem::path& folder, const FileOptions& options);

} // namespace ZqTool
