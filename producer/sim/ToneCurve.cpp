#include "producer/sim/ToneCurve.h"

#include <algorithm>
#include <cmath>

namespace zqgentl {

namespace {

constexpr size_t curveSize = 65536;
constexpr double curveMax = curveSize - 1;

double Develop(const ToneSettings& settings, double factor, double value) {
    const double exposed = std::clamp(value * factor + settings.blackLevel / 255, 0.0, 1.0);
    return settings.gamma == 1.0 ? exposed : std::pow(exposed, settings.gamma);
}

} // namespace

ToneCurve MakeToneCurve(const ToneSettings& settings) {
    const bool straight = settings.gainDb == 0 && settings.blackLevel == 0 && settings.gamma == 1;
    if (straight && settings.lutEnable == 0)
        return nullptr;
    auto curve = std::make_shared<std::vector<uint16_t>>(curveSize);
    const double factor = std::pow(10.0, settings.gainDb / 20);
    for (size_t i = 0; i < curveSize; ++i) {
        const double value = Develop(settings, factor, static_cast<double>(i) / curveMax);
        const auto level = static_cast<size_t>(std::lround(value * curveMax));
        (*curve)[i] =
            static_cast<uint16_t>(settings.lutEnable != 0 ? settings.lut[level >> 8] * 257U : level);
    }
    return curve;
}

} // namespace zqgentl
