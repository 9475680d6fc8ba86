#pragma once

#include <cstdint>
#include <new>
#include <utility>

#include <ZqApi/Error.h>

#include "ZqSDKCommon/Format.h"

namespace ZqApi {

/// The name that an exception class carries as its kind.
template <class E>
const char* KindOf();
template <>
inline const char* KindOf<GenICam::BadAllocException>() {
    return "BadAllocException";
}
template <>
inline const char* KindOf<GenICam::InvalidArgumentException>() {
    return "InvalidArgumentException";
}
template <>
inline const char* KindOf<GenICam::OutOfRangeException>() {
    return "OutOfRangeException";
}
template <>
inline const char* KindOf<GenICam::RuntimeException>() {
    return "RuntimeException";
}
template <>
inline const char* KindOf<GenICam::LogicalErrorException>() {
    return "LogicalErrorException";
}
template <>
inline const char* KindOf<GenICam::AccessException>() {
    return "AccessException";
}
template <>
inline const char* KindOf<GenICam::TimeoutException>() {
    return "TimeoutException";
}
template <>
inline const char* KindOf<CZqGenTLErrorException>() {
    return "ZqGenTLErrorException";
}
template <>
inline const char* KindOf<CZqLinuxErrorException>() {
    return "ZqLinuxErrorException";
}

/// Builds the report of a failed system call from the current errno.
class CZqLinuxErrorExceptionReporter {
public:
    CZqLinuxErrorExceptionReporter(const char* sourceFileName, int sourceLine, const char* exceptionType)
        : m_SourceFileName(sourceFileName), m_SourceLine(sourceLine), m_ExceptionType(exceptionType) {}

    /// `error` is what GetError returns and what the message names as a number; the text behind it is that of
    /// errno as it stands when Report is entered. The formatted part is cut at 1023 characters.
    template <class... Arguments>
    CZqLinuxErrorException Report(int error, const char* functionName, const char* format,
                                  const Arguments&... arguments) const {
        const int systemError = CurrentSystemError();
        return Build(error, systemError, functionName, Format(format, arguments...));
    }

private:
    static int CurrentSystemError();
    CZqLinuxErrorException Build(int error, int systemError, const char* functionName,
                                 std::string message) const;

    const char* m_SourceFileName;
    int m_SourceLine;
    const char* m_ExceptionType;
};

/// Messages of calls that failed are cut here, before anything is appended.
constexpr size_t MaximalMessageLength = 1023;

/// The system's text for an error number; any thread.
std::string SystemErrorText(int error);

/// The range checks: each throws GenICam::OutOfRangeException with the parameter's declared name. Numbers are
/// compared and printed as signed 64 bits, so an unsigned "minus one" is below every minimum.
void CheckAbove(const char* unit, int line, const char* name, int64_t value, int64_t min);
void CheckMin(const char* unit, int line, const char* name, int64_t value, int64_t min);
void CheckMax(const char* unit, int line, const char* name, int64_t value, int64_t max);
void CheckBelow(const char* unit, int line, const char* name, int64_t value, int64_t max);
/// At least 0, then below `count`. Pixels are checked by it, so what holds is seen without a call.
inline void CheckIndex(const char* unit, int line, const char* name, int64_t index, int64_t count) {
    if (index >= 0 && index < count)
        return;
    CheckMin(unit, line, name, index, 0);
    CheckBelow(unit, line, name, index, count);
}
/// Throws GenICam::LogicalErrorException for an increment of 0.
void CheckIncrement(const char* unit, int line, const char* name, int64_t value, int64_t min,
                    int64_t increment);

/// Runs `function` and returns its result; a failed allocation in it becomes GenICam::BadAllocException with
/// the allocator's text.
template <class Function>
auto ConvertBadAlloc(const char* unit, int line, Function&& function) -> decltype(function()) {
    try {
        return std::forward<Function>(function)();
    } catch (const std::bad_alloc& failure) {
        throw GenICam::BadAllocException(failure.what(), unit, line, KindOf<GenICam::BadAllocException>());
    }
}

/// Builds a GenICam exception that names `unit` ("ZqApi_TL/ZqSystem") as its source; the caller throws it.
/// Throws GenICam::BadAllocException when there is no memory for its text.
template <class E, class... Arguments>
E ReportError(const char* unit, int line, const char* format, const Arguments&... arguments) {
    return ConvertBadAlloc(unit, line,
                           [&] { return E(Format(format, arguments...).c_str(), unit, line, KindOf<E>()); });
}

/// Prints "<unit>:<line>: assertion failed: <expression>" to the standard error stream and stops the process.
[[noreturn]] void AssertionFailed(const char* unit, int line, const char* expression) noexcept;

} // namespace ZqApi

/// Stops the process in every build type when the expression is false; usable inside expressions.
#define ZQ_ASSERT(unit, expression)                                                                          \
    ((expression) ? static_cast<void>(0) : ::ZqApi::AssertionFailed((unit), __LINE__, #expression))
