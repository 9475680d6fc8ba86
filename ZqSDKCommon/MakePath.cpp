#include <string>

#include <sys/stat.h>

#include <ZqApi/Text.h>

#include "ZqSDKCommon/Error.h"

namespace ZqApi {

void MakePath(const gcstring& path, bool removeLastElement) {
    ConvertBadAlloc("ZqSDKCommon/MakePath", __LINE__, [&] {
        std::string folder = path.c_str();
        const size_t slash = folder.rfind('/');
        if (removeLastElement && slash != std::string::npos && slash >= 1)
            folder.resize(slash);
        // Whether it existed, or could not be made, shows when something is opened in it.
        ::mkdir(folder.c_str(), 0775);
    });
}

} // namespace ZqApi
