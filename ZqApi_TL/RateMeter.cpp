#include "ZqApi_TL/RateMeter.h"

#include <chrono>

namespace ZqApi {
namespace {

constexpr uint64_t LARGEST_COUNT = 0xFFFFFFFF;

// Kept: whole microseconds first, so that less than one counts as none.
double Milliseconds(int64_t nanoseconds) {
    return static_cast<double>(nanoseconds / 1000) / 1000.0;
}

} // namespace

CRateMeter::CRateMeter(Clock clock) : m_Clock(clock) {}

int64_t CRateMeter::SteadyNanoseconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
}

void CRateMeter::Reset() {
    const GenApi::AutoLock lock(m_Lock);
    m_Index = 0;
    m_Count = 0;
}

double CRateMeter::GetCurrentMSec() const {
    return Milliseconds(m_Clock());
}

size_t CRateMeter::Record() {
    if (m_Count != 0)
        m_Index = Next(m_Index);
    m_Timestamps[m_Index] = m_Clock();
    if (m_Count < LARGEST_COUNT)
        ++m_Count;
    return m_Index;
}

CRateMeter::Span CRateMeter::Measure() const {
    const bool full = m_Count >= N;
    const size_t oldest = full ? Next(m_Index) : 0;
    return {full ? N : static_cast<size_t>(m_Count), oldest,
            Milliseconds(m_Timestamps[m_Index] - m_Timestamps[oldest])};
}

} // namespace ZqApi
