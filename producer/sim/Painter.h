#pragma once

#include "producer/sim/PixelFormat.h"
#include "producer/sim/Scene.h"

#include <memory>
#include <vector>

namespace zqgentl {

/// What happens to every value on its way from the sensor: gain, black level, gamma and look-up table in one.
/// The table has one entry for each of 16 bits; none at all leaves values as they are.
using ToneCurve = std::shared_ptr<const std::vector<uint16_t>>;

/// Draws pictures of a scene in a pixel format. Keeps the room that it needs for a line, so a thread that
/// draws has one of its own.
class Painter {
public:
    /// Draws at most `size` bytes and returns how many.
    size_t Draw(const Scene& scene, const PixelFormat& format, const ToneCurve& tone, uint64_t frameId,
                uint8_t* target, size_t size);

private:
    [[nodiscard]] ColourLine Look(const Scene& scene, const PixelFormat& format, const ToneCurve& tone,
                                  uint64_t frameId, uint32_t row);
    void DrawLine(const Scene& scene, const PixelFormat& format, const ToneCurve& tone, uint64_t frameId,
                  uint32_t row, uint8_t* target);

    std::vector<uint16_t> m_values;
    std::vector<uint16_t> m_mixed;
    std::vector<uint8_t> m_line;
};

} // namespace zqgentl
