#pragma once

#include "ZqApi_TL/RateMeter.h"

namespace ZqApi {

/// Bytes a second over the last 500 deliveries.
class CBPS final : public CRateMeter {
public:
    explicit CBPS(Clock clock = &CRateMeter::SteadyNanoseconds) : CRateMeter(clock) {}

    /// Records a delivery now.
    void Rcv(unsigned long bytes);
    /// 0 until two deliveries have come.
    double GetBPS() const;

private:
    std::array<uint64_t, N> m_Bytes{};
};

} // namespace ZqApi
