#pragma once

#include <ZqApi/Image.h>

namespace ZqApi {

// Synthetic pictures for images without a camera. Each draws nothing and returns false unless the
// initialisation is ZqMemoryInitialization_TestChart. `capacity` is what the image's memory holds, in bytes;
// nothing is written behind it, whatever the image's size. They throw std::bad_alloc.

/// Eleven grey steps, two ramps and the steps the other way round, on a grey ground.
template <class Sample>
bool MakeChartMono(IZqImage& image, size_t capacity, _EZqMemoryInitialization_t initialization);

/// Twenty-four patches of colour on black, in red, green, blue or the other way round. An alpha sample keeps
/// in the patches what the memory held.
template <class Sample>
bool MakeChartBGR(IZqImage& image, size_t capacity, _EZqMemoryInitialization_t initialization, bool rgbOrder);

} // namespace ZqApi
