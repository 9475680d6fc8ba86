#pragma once

#include "producer/sim/PixelFormat.h"
#include "producer/sim/Scene.h"
#include "producer/sim/ToneCurve.h"

#include <vector>

namespace zqgentl {

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

    void PrepareLevels(const PixelFormat& format, const ToneCurve& tone);

    /// Draws a line that consists of equal pieces by drawing one; false for every other.
    bool DrawPeriod(const Scene& scene, const PixelFormat& format, const ToneCurve& tone, uint64_t frameId,
                    uint32_t row, uint8_t* target);

    std::vector<uint16_t> m_values;
    std::vector<uint16_t> m_mixed;
    std::vector<uint8_t> m_line;
    ByteLevels m_levels{};
};

} // namespace zqgentl
