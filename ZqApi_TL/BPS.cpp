#include "ZqApi_TL/BPS.h"

namespace ZqApi {

void CBPS::Rcv(unsigned long bytes) {
    const GenApi::AutoLock lock(m_Lock);
    m_Bytes[Record()] = bytes;
}

double CBPS::GetBPS() const {
    const GenApi::AutoLock lock(m_Lock);
    const Span span = Measure();
    if (span.samples < 2 || span.elapsedMs <= 0)
        return 0;
    // The bytes of the oldest delivery came before the interval began.
    uint64_t bytes = 0;
    size_t slot = span.oldest;
    for (size_t sample = 1; sample < span.samples; ++sample) {
        slot = Next(slot);
        bytes += m_Bytes[slot];
    }
    return 1000.0 * static_cast<double>(bytes) / span.elapsedMs;
}

} // namespace ZqApi
