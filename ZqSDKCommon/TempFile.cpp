#include "ZqSDKCommon/TempFile.h"

#include <cstdlib>

#include <unistd.h>

namespace ZqApi {
namespace {

// A program with a changed identity doesn't trust the environment of who started it.
const char* Folder() {
    const bool ownIdentity = getuid() == geteuid() && static_cast<int>(getuid()) >= 0;
    const char* const folder = ownIdentity ? std::getenv("TMPDIR") : nullptr;
    return folder != nullptr ? folder : "/tmp";
}

} // namespace

FILE* openTempFile(const char* prefix) {
    // A path that is cut here has lost its XXXXXX, which mkstemp refuses.
    char path[255];
    std::snprintf(path, sizeof(path), "%s/%s.XXXXXX", Folder(), prefix);
    const int descriptor = mkstemp(path);
    if (descriptor < 0)
        return nullptr;
    unlink(path);
    FILE* const file = fdopen(descriptor, "wb");
    if (file == nullptr)
        close(descriptor);
    return file;
}

} // namespace ZqApi
