#include "ZqApi_TL/FPS.h"

namespace ZqApi {

void CFPS::Rcv() {
    const GenApi::AutoLock lock(m_Lock);
    Record();
}

double CFPS::GetFPS() const {
    const GenApi::AutoLock lock(m_Lock);
    const Span span = Measure();
    if (span.samples < 2 || span.elapsedMs <= 0)
        return 0;
    return (1000.0 * static_cast<double>(span.samples) - 1000.0) / span.elapsedMs;
}

} // namespace ZqApi
