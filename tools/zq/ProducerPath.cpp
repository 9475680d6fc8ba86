#include "tools/zq/ProducerPath.h"

#include <cstdlib>

namespace ZqTool {

namespace {

constexpr const char* variable = "GENICAM_GENTL64_PATH";
constexpr const char* producerFile = "libzqgentl.cti";

} // namespace

std::filesystem::path FolderOfThisProgram() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

void SetProducerPathWhenUnset(const std::filesystem::path& programFolder) {
    if (std::getenv(variable) != nullptr)
        return;
    for (const char* place : {"../lib/zqapi", "../lib"}) {
        const auto folder = (programFolder / place).lexically_normal();
        std::error_code error;
        if (std::filesystem::exists(folder / producerFile, error)) {
            setenv(variable, folder.c_str(), 0);
            return;
        }
    }
}

} // namespace ZqTool
