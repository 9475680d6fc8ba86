#pragma once

#include <ZqApi/ZqApi.h>

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace ZqTool {

/// The value node of that name. Throws Failure (nothing found) when `device` has none.
GenApi::IValue& FindFeature(ZqApi::INodeMap& features, const std::string& name, const std::string& device);

/// The value as text, read from the camera; `name` and `device` are for the Failure.
std::string ReadFeature(GenApi::IValue& feature, const std::string& name, const std::string& device);

/// Writes a value given as text, and executes a command for any text. Throws Failure, which says what the
/// feature would take.
void SetFeature(ZqApi::INodeMap& features, const std::string& name, const std::string& value,
                const std::string& device);

/// "Integer", "Enumeration", "Command"...
std::string TypeOf(GenApi::INode& node);

/// "Hz", "us"; empty for features without one.
std::string UnitOf(GenApi::INode& node);

/// Numbers and switches as such, everything else as text.
nlohmann::ordered_json JsonOf(GenApi::IValue& value);

} // namespace ZqTool
