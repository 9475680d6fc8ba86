#pragma once

#include <ZqApi/ZqApi.h>

#include <optional>
#include <string>
#include <vector>

namespace ZqTool {

/// Every format that the library knows, in the catalogue's order.
const std::vector<ZqApi::EZqPixelFormatNamingConvention_t>& AllPixelFormats();

/// By its name, "BayerRG12p"; nothing when there is none. The library must be initialised.
std::optional<ZqApi::EZqPixelFormatNamingConvention_t> FindPixelFormat(const std::string& name);

} // namespace ZqTool
