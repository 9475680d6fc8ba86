#pragma once

#include <filesystem>

namespace ZqTool {

/// The folder that this program's file lies in.
std::filesystem::path FolderOfThisProgram();

/// Where GENICAM_GENTL64_PATH is unset, points it at the producer that was installed or built with the
/// program:
/// ../lib/zqapi or ../lib, seen from the program's folder. Leaves it unset when neither holds the producer.
void SetProducerPathWhenUnset(const std::filesystem::path& programFolder);

} // namespace ZqTool
