#include "ZqSDKCommon/Error.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqSDKCommon/Error";

// strerror_r returns the text in one C library and a code in another.
[[maybe_unused]] const char* TextOf(const char* text, const char*) {
    return text;
}
[[maybe_unused]] const char* TextOf(int code, const char* buffer) {
    return code == 0 ? buffer : "";
}

[[noreturn]] void ThrowOutOfRange(const char* unit, int line, const char* format, const char* name,
                                  int64_t value, int64_t limit) {
    throw ReportError<GenICam::OutOfRangeException>(unit, line, format, name, value, limit);
}

} // namespace

CZqGenTLErrorException::CZqGenTLErrorException(GC_ERROR error, const char* functionName,
                                               const char* description, const char* sourceFileName,
                                               int sourceLine, const char* exceptionType)
    : GenericException(description, sourceFileName, sourceLine, exceptionType), m_FunctionName(functionName),
      m_Error(error) {}

CZqGenTLErrorException::~CZqGenTLErrorException() noexcept = default;

gcstring CZqGenTLErrorException::GetFunctionName() const {
    return ConvertBadAlloc(UNIT, __LINE__, [this] { return m_FunctionName; });
}

GC_ERROR CZqGenTLErrorException::GetError() const {
    return m_Error;
}

CZqLinuxErrorException::CZqLinuxErrorException(int error, const char* functionName, const char* description,
                                               const char* sourceFileName, int sourceLine,
                                               const char* exceptionType)
    : GenericException(description, sourceFileName, sourceLine, exceptionType), m_FunctionName(functionName),
      m_Error(error) {}

CZqLinuxErrorException::~CZqLinuxErrorException() noexcept = default;

gcstring CZqLinuxErrorException::GetFunctionName() const {
    return ConvertBadAlloc(UNIT, __LINE__, [this] { return m_FunctionName; });
}

int CZqLinuxErrorException::GetError() const {
    return m_Error;
}

int CZqLinuxErrorExceptionReporter::CurrentSystemError() {
    return errno;
}

CZqLinuxErrorException CZqLinuxErrorExceptionReporter::Build(int error, int systemError,
                                                             const char* functionName,
                                                             std::string message) const {
    if (message.size() > MaximalMessageLength)
        message.resize(MaximalMessageLength);
    // Kept: one quotation mark opens the text and none closes it.
    message += Format(" ErrorCode=0x%08x \" \"%s", error, SystemErrorText(systemError));
    return CZqLinuxErrorException(error, functionName, message.c_str(), m_SourceFileName, m_SourceLine,
                                  m_ExceptionType);
}

std::string SystemErrorText(int error) {
    char buffer[256] = "";
    return TextOf(strerror_r(error, buffer, sizeof(buffer)), buffer);
}

void CheckAbove(const char* unit, int line, const char* name, int64_t value, int64_t min) {
    if (value <= min)
        ThrowOutOfRange(unit, line, "%s = %lld must be greater than Min = %lld", name, value, min);
}

void CheckMin(const char* unit, int line, const char* name, int64_t value, int64_t min) {
    if (value < min)
        ThrowOutOfRange(unit, line, "%s = %lld must be equal or greater than Min = %lld", name, value, min);
}

void CheckMax(const char* unit, int line, const char* name, int64_t value, int64_t max) {
    if (value > max)
        ThrowOutOfRange(unit, line, "%s = %lld must be equal or smaller than Max = %lld", name, value, max);
}

void CheckBelow(const char* unit, int line, const char* name, int64_t value, int64_t max) {
    if (value >= max)
        ThrowOutOfRange(unit, line, "%s = %lld must be smaller than Max = %lld", name, value, max);
}

void CheckIncrement(const char* unit, int line, const char* name, int64_t value, int64_t min,
                    int64_t increment) {
    if (increment == 0)
        throw ReportError<GenICam::LogicalErrorException>(unit, line, "Increment must not equal 0!");
    // Unsigned, because the difference of two signed numbers may not fit.
    const uint64_t distance = value < min ? static_cast<uint64_t>(min) - static_cast<uint64_t>(value)
                                          : static_cast<uint64_t>(value) - static_cast<uint64_t>(min);
    const uint64_t step =
        increment < 0 ? 0 - static_cast<uint64_t>(increment) : static_cast<uint64_t>(increment);
    if (distance % step != 0)
        throw ReportError<GenICam::OutOfRangeException>(
            unit, line,
            "The difference between %s = %lld and Min = %lld must be dividable without rest by Inc = %lld",
            name, value, min, increment);
}

void AssertionFailed(const char* unit, int line, const char* expression) noexcept {
    std::fprintf(stderr, "%s:%d: assertion failed: %s\n", unit, line, expression);
    std::fflush(stderr);
    std::abort();
}

} // namespace ZqApi
