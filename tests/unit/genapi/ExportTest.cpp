#include "Camera.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>

namespace {

/// The library's own exports, as nm lists them.
std::vector<std::string> ExportedSymbols() {
    Dl_info info{};
    void* const known = reinterpret_cast<void*>(&GenApi::ReleaseNodeMap);
    if (dladdr(known, &info) == 0)
        return {};
    const std::string command = "'" ZQ_NM "' -D --defined-only '" + std::string(info.dli_fname) + "'";
    FILE* const pipe = popen(command.c_str(), "r");
    std::vector<std::string> symbols;
    char line[4096];
    while (pipe && std::fgets(line, sizeof line, pipe)) {
        const std::string text(line);
        const size_t name = text.rfind(' ');
        if (name != text.npos)
            symbols.push_back(text.substr(name + 1, text.size() - name - 2));
    }
    if (pipe)
        pclose(pipe);
    return symbols;
}

} // namespace

TEST(Exports, OnlyTheInterfaceLeavesTheLibrary) {
    const std::vector<std::string> symbols = ExportedSymbols();
    if (symbols.empty())
        GTEST_SKIP() << "nm is not available";
    EXPECT_GT(symbols.size(), 300u);
    for (const std::string& symbol : symbols) {
        const bool ours =
            symbol.find("GenICam_3_0_ZQ") != symbol.npos || symbol.find("GenApi_3_0_ZQ") != symbol.npos;
        EXPECT_TRUE(ours) << symbol;
        EXPECT_EQ(symbol.find("6inside"), symbol.npos) << symbol;
    }
    EXPECT_NE(std::find(symbols.begin(), symbols.end(), "_ZTIN14GenICam_3_0_ZQ15AccessExceptionE"),
              symbols.end());
    EXPECT_NE(std::find(symbols.begin(), symbols.end(), "_ZTVN14GenICam_3_0_ZQ16GenericExceptionE"),
              symbols.end());
}
