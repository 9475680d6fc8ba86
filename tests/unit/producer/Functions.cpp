#include "Functions.h"

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

namespace {

void* Resolve(void* library, const char* name) {
    void* symbol = library == nullptr ? nullptr : dlsym(library, name);
    if (symbol == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        std::exit(1);
    }
    return symbol;
}

Functions Load() {
    void* library = dlopen(ZQGENTL_FILE, RTLD_NOW | RTLD_LOCAL);
    Functions functions{};
#define X(name) functions.name = reinterpret_cast<GenTL::P##name>(Resolve(library, #name));
    ZQ_FOR_EACH_FUNCTION(X)
#undef X
    return functions;
}

} // namespace

const Functions& Producer() {
    static const Functions functions = Load();
    return functions;
}
