#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zqgentl {

/// A picture in memory, three colours of 16 bits each for every pixel.
struct PictureFile {
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint16_t> red;
    std::vector<uint16_t> green;
    std::vector<uint16_t> blue;
    bool grey = false; ///< the others are like red, and may be missing
};

/// Pictures that are larger than this on a side are refused.
constexpr uint32_t pictureSideMax = 16384;

/// Reads a picture from the bytes of a file: PNG, PGM and PPM (binary), TIFF (grey or RGB of
/// 8 or 16 bits, in strips). Throws Failure, GC_ERR_INVALID_VALUE, for anything else.
[[nodiscard]] PictureFile DecodePicture(const std::vector<uint8_t>& bytes);

/// The three kinds, each from bytes that begin as its files do.
[[nodiscard]] PictureFile DecodePng(const std::vector<uint8_t>& bytes);
[[nodiscard]] PictureFile DecodePnm(const std::vector<uint8_t>& bytes);
[[nodiscard]] PictureFile DecodeTiff(const std::vector<uint8_t>& bytes);

[[noreturn]] void RefusePicture(const std::string& why);
/// A picture of this size with room for its pixels.
[[nodiscard]] PictureFile MakePicture(uint64_t width, uint64_t height);

} // namespace zqgentl
