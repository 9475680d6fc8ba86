#pragma once

#include <ZqApi/ZqApi.h>

#include <cstdint>
#include <string>
#include <vector>

namespace ZqTool {

/// The bytes of one image as the camera sent them, the tool's own copy.
struct Frame {
    uint64_t number = 0;
    ZqApi::EZqPixelFormatNamingConvention_t format = ZqApi::ZqPixelFormat_Unknown;
    size_t width = 0;
    size_t height = 0;
    size_t linePitch = 0;
    size_t planePitch = 0;
    size_t size = 0; ///< of the image; the bytes behind it are spare
    std::vector<uint8_t> bytes;
    std::string chunks; ///< the values that came with it, as JSON; empty without chunks

    /// Copies an image of which `readable` bytes may be read; the memory of the last copy is used again.
    /// Throws Failure for an image that needs more.
    void CopyFrom(ZqApi::IZqImage& image, size_t readable);
};

/// Samples, not packed: grey (1 channel), red, green, blue (3), or those with alpha (4), pixel by pixel.
struct Picture {
    size_t width = 0;
    size_t height = 0;
    size_t channels = 1;
    size_t bits = 8;         ///< of a sample; values lie below 2^bits
    std::string pixelFormat; ///< what the camera sent
    std::string bayerPhase;  ///< colours of the first two pixels, "RG"; empty when it is no mosaic
    std::vector<uint16_t> samples;

    [[nodiscard]] const uint16_t* Line(size_t y) const { return samples.data() + y * width * channels; }
    [[nodiscard]] size_t BytesPerSample() const { return bits > 8 ? 2 : 1; }
    /// "PixelFormat=BayerRG12p BayerPhase=RG"
    [[nodiscard]] std::string Description() const;
};

/// The samples of a frame in any of the library's pixel formats: planes are interleaved, blue-first formats
/// become red-first, luma and chroma become red, green and blue. Any thread while the library is initialised.
Picture Unpack(const Frame& frame);

} // namespace ZqTool
