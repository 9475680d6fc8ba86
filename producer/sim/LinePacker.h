#pragma once

#include "producer/sim/PixelFormat.h"
#include "producer/sim/Scene.h"

namespace zqgentl {

/// Puts a line of one value per pixel (mono and Bayer) into the bytes of a format.
void PackSingle(const PixelFormat& format, const uint16_t* values, size_t width, uint8_t* target);

/// Takes from each pixel the colour that a Bayer filter lets through.
void MixBayer(const PixelFormat& format, const ColourLine& line, size_t width, uint32_t row, uint16_t* mixed);

/// The luma of a line for mono formats.
void MixMono(const ColourLine& line, uint32_t bits, size_t width, uint16_t* mixed);

/// Puts a line of three colours into the bytes of a format that interleaves them.
void PackColour(const PixelFormat& format, const ColourLine& line, size_t width, uint8_t* target);

} // namespace zqgentl
