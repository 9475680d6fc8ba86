#pragma once

#include "producer/gentl/LastError.h"
#include "producer/gentl/Library.h"
#include "producer/sim/Failure.h"

#include <exception>
#include <new>

namespace zqgentl {

/// Runs the body of an entry point: whatever leaves it becomes a result code and the thread's last error.
template <class Body>
GenTL::GC_ERROR GuardAlways(const char* function, Body&& body) noexcept {
    try {
        body();
        return GenTL::GC_ERR_SUCCESS;
    } catch (const Failure& failure) {
        SetLastError(function, failure.Code(), failure.what());
        return failure.Code();
    } catch (const std::bad_alloc&) {
        SetLastError(function, GenTL::GC_ERR_OUT_OF_MEMORY, "out of memory");
        return GenTL::GC_ERR_OUT_OF_MEMORY;
    } catch (const std::exception& exception) {
        SetLastError(function, GenTL::GC_ERR_ERROR, exception.what());
        return GenTL::GC_ERR_ERROR;
    } catch (...) {
        SetLastError(function, GenTL::GC_ERR_ERROR, "unknown exception");
        return GenTL::GC_ERR_ERROR;
    }
}

/// The same for every function but GCInitLib: refuses before the library is initialised.
template <class Body>
GenTL::GC_ERROR Guard(const char* function, Body&& body) noexcept {
    return GuardAlways(function, [&] {
        Library::RequireInitialised();
        body();
    });
}

} // namespace zqgentl
