#pragma once

#include "tools/zq/Picture.h"

namespace ZqTool {

/// The numbers that the camera sent, or scaled to the whole of 8 or 16 bits: more than 8 bits fill the upper
/// bits of 16, fewer than 8 are spread from 0 to 255.
enum class SampleRange { AsSent, Whole };

enum class ByteOrder { Little, Big };

/// One line of a picture as the bytes of a file.
class SampleLine {
public:
    SampleLine(const Picture& picture, SampleRange range, ByteOrder order)
        : m_picture(picture),
          m_shift(range == SampleRange::Whole && picture.bits > 8 ? 16 - picture.bits : 0),
          m_factor(range == SampleRange::Whole && picture.bits < 8 ? 255U / ((1U << picture.bits) - 1) : 1),
          m_order(order), m_bytes(picture.width * picture.channels * picture.BytesPerSample()) {}

    /// Valid until the next call. `channels` leaves out those behind.
    const std::vector<uint8_t>& At(size_t y, size_t channels);
    const std::vector<uint8_t>& At(size_t y) { return At(y, m_picture.channels); }

private:
    const Picture& m_picture;
    size_t m_shift;
    unsigned m_factor;
    ByteOrder m_order;
    std::vector<uint8_t> m_bytes;
};

} // namespace ZqTool
