#pragma once

#include "tools/zq/Picture.h"

#include <filesystem>

namespace ZqTool {

// One writer a file format; all throw Failure.

/// Samples fill the whole of 8 or 16 bits; sBIT says how many bits were sent, tEXt the pixel format and the
/// phase of a mosaic.
void WritePng(const Picture& picture, const std::filesystem::path& path);

/// Samples as in PNG; the ImageDescription has pixel format and phase. Not compressed.
void WriteTiff(const Picture& picture, const std::filesystem::path& path);

/// Binary PGM, or PPM for colours (alpha is left out), with the numbers that the camera sent: the maximum
/// says how many bits they have. A comment has pixel format and phase.
void WritePnm(const Picture& picture, const std::filesystem::path& path);

/// An array of the numbers that the camera sent: height x width, or height x width x channels, of uint8 or
/// little-endian uint16.
void WriteNpy(const Picture& picture, const std::filesystem::path& path);

} // namespace ZqTool
