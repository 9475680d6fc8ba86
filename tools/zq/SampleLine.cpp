#include "tools/zq/SampleLine.h"

namespace ZqTool {

const std::vector<uint8_t>& SampleLine::At(size_t y, size_t channels) {
    const uint16_t* line = m_picture.Line(y);
    m_bytes.resize(m_picture.width * channels * m_picture.BytesPerSample());
    uint8_t* out = m_bytes.data();
    const size_t low = m_order == ByteOrder::Little ? 0 : 1;
    for (size_t x = 0; x < m_picture.width; ++x) {
        for (size_t i = 0; i < channels; ++i) {
            const unsigned sample = line[x * m_picture.channels + i] * m_factor << m_shift;
            if (m_picture.BytesPerSample() == 1) {
                *out++ = static_cast<uint8_t>(sample);
            } else {
                out[low] = static_cast<uint8_t>(sample);
                out[1 - low] = static_cast<uint8_t>(sample >> 8);
                out += 2;
            }
        }
    }
    return m_bytes;
}

} // namespace ZqTool
