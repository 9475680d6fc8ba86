#pragma once

#include "producer/sim/CameraModel.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace zqgentl {

/// How many cameras each interface has; an interface without a number isn't there at all.
using Population = std::array<std::optional<uint32_t>, busCount>;

constexpr uint32_t camerasMax = 256;

/// One camera on every interface.
[[nodiscard]] Population DefaultPopulation();

/// Reads a text like "U3V=2,GEV=4,CXP=1"; an interface may have 0 cameras. Throws GC_ERR_INVALID_VALUE for
/// anything else, for an interface named twice and for more than 256 cameras in all.
[[nodiscard]] Population ParsePopulation(const std::string& text);

/// What the environment variable ZQGENTL_SIM says, or the default without it.
[[nodiscard]] Population PopulationOfEnvironment();

} // namespace zqgentl
