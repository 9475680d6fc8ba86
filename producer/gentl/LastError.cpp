#include "producer/gentl/LastError.h"

#include <cstdio>

namespace zqgentl {

namespace {

// Of fixed size and without a destructor: recording an error can't fail, and a thread that ends after the
// library was unloaded leaves nothing to run.
struct LastError {
    GenTL::GC_ERROR code = GenTL::GC_ERR_SUCCESS;
    char text[512] = "No Error";
};

thread_local LastError lastError;

} // namespace

void SetLastError(const char* function, GenTL::GC_ERROR code, const char* text) noexcept {
    lastError.code = code;
    std::snprintf(lastError.text, sizeof lastError.text, "%s: %s", function, text);
}

GenTL::GC_ERROR LastErrorCode() noexcept {
    return lastError.code;
}

const char* LastErrorText() noexcept {
    return lastError.text;
}

} // namespace zqgentl
