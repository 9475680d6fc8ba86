#pragma once

#include "tools/zq/Camera.h"

#include <string>
#include <vector>

namespace ZqTool {

/// Writes a camera's settings into a file of lines "feature, tab, value".
int Save(const Library& library, const std::string& file, const CameraChoice& choice, const Console& console);

/// Writes a file's settings into a camera and prints those that did not stick, with the reason.
int Load(const Library& library, const std::string& file, const CameraChoice& choice, const Console& console);

/// Prints what differs between two settings, each those of a file or, where there is no such file, of a
/// camera.
int Diff(const Library& library, const std::string& left, const std::string& right, const Console& console);

/// The settings of a camera as the text of a file.
std::string SettingsOf(ZqApi::INodeMap& features, const std::string& device);

/// What did not stick; empty when all did. Throws Failure for a text that is no settings file; `name` says
/// where it is from.
std::vector<std::string> ApplySettings(const std::string& text, const std::string& name,
                                       ZqApi::INodeMap& features, const std::string& device);

} // namespace ZqTool
