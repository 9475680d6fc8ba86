#pragma once

#include <ZqApi/ZqApi.h>

#include <vector>

/// What a picture of an image must hold, by the library's pixel components: grey, or red, green, blue (and
/// alpha), as the camera sent them. Luma and chroma are converted by the formulas of the standards.
struct Expected {
    size_t channels = 0;
    unsigned bits = 0;
    bool converted = false; ///< a sample may differ by 1
    std::vector<unsigned> samples;

    /// As in PNG and TIFF: more than 8 bits in the upper bits of 16, fewer than 8 spread over 8.
    [[nodiscard]] unsigned Scaled(size_t index) const;
};

Expected ExpectedOf(ZqApi::IZqImage& image);

/// "RG"; empty for formats that are no mosaic.
std::string PhaseOf(const std::string& pixelFormat);
