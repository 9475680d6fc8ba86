#pragma once

#include "producer/sim/CameraModel.h"

#include <cstddef>
#include <cstdint>

namespace zqgentl {

enum class Packing { Whole, Bits, Gvsp, Word32, Planar };
enum class LumaMatrix { None, Full, Bt601, Bt709 };

/// One row of the table of pixel formats; the file PixelFormats.def says what the columns are.
struct PixelFormat {
    const char* name;
    uint32_t code;
    Packing packing;
    uint32_t bits;
    const char* order;
    LumaMatrix matrix;
    uint32_t cxpCode;

    [[nodiscard]] uint32_t BitsPerPixel() const noexcept { return (code >> 16) & 0xFF; }
    [[nodiscard]] bool Mono() const noexcept { return order[0] == 'M'; }
    [[nodiscard]] bool Bayer() const noexcept { return order[1] != '\0' && order[2] == '\0'; }
    [[nodiscard]] uint32_t Planes() const noexcept { return packing == Packing::Planar ? 3 : 1; }
    /// All planes together; every width that the cameras allow makes lines of whole bytes.
    [[nodiscard]] size_t ImageSize(size_t width, size_t height) const noexcept {
        return width * BitsPerPixel() / 8 * height;
    }
};

/// The format with a code, or null when the cameras of this technology don't have it.
[[nodiscard]] const PixelFormat* FindPixelFormat(Technology technology, int64_t code);

/// The table itself; `count` gets its length.
[[nodiscard]] const PixelFormat* PixelFormats(size_t& count);

} // namespace zqgentl
