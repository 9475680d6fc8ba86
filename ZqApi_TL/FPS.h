#pragma once

#include "ZqApi_TL/RateMeter.h"

namespace ZqApi {

/// Frames a second over the last 500 deliveries.
class CFPS final : public CRateMeter {
public:
    explicit CFPS(Clock clock = &CRateMeter::SteadyNanoseconds) : CRateMeter(clock) {}

    /// Records a frame now.
    void Rcv();
    /// The same; the size doesn't matter here.
    void Rcv(unsigned long) { Rcv(); }
    /// 0 until two frames have come.
    double GetFPS() const;
};

} // namespace ZqApi
