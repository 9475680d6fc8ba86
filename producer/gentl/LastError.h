#pragma once

#include "gentl/GenTL.h"

namespace zqgentl {

/// The last error of the calling thread. It stays until the next error: successes don't clear it.
void SetLastError(const char* function, GenTL::GC_ERROR code, const char* text) noexcept;
[[nodiscard]] GenTL::GC_ERROR LastErrorCode() noexcept;
[[nodiscard]] const char* LastErrorText() noexcept;

} // namespace zqgentl
