#pragma once

#include <ZqApi/Error.h>

#include "ZqSDKCommon/Error.h"

namespace ZqApi {

class CZqGenTLLib;

/// Builds the report of a failed producer call; the caller throws it.
class CZqGenTLErrorExceptionReporter {
public:
    CZqGenTLErrorExceptionReporter(const char* sourceFileName, int sourceLine, const char* exceptionType)
        : m_SourceFileName(sourceFileName), m_SourceLine(sourceLine), m_ExceptionType(exceptionType) {}

    /// With a loader the producer's last-error text follows the message, if its code is the same. The last
    /// error belongs to the calling thread and to the latest call: report directly after the failure, and
    /// throw later if something has to be cleaned up first.
    template <class... Arguments>
    CZqGenTLErrorException Report(const CZqGenTLLib* pGenTL, GC_ERROR error, const char* functionName,
                                  const char* format, const Arguments&... arguments) const {
        return Build(pGenTL, error, functionName, Format(format, arguments...));
    }

private:
    CZqGenTLErrorException Build(const CZqGenTLLib* pGenTL, GC_ERROR error, const char* functionName,
                                 std::string message) const;

    const char* m_SourceFileName;
    int m_SourceLine;
    const char* m_ExceptionType;
};

/// The report of one failed call: `format` is the log of the call, `arguments` what it names, the result
/// first. Throws GenICam::BadAllocException when there is no memory for it.
template <class... Arguments>
CZqGenTLErrorException ProducerError(const CZqGenTLLib* pGenTL, const char* unit, int line, GC_ERROR error,
                                     const char* functionName, const char* format,
                                     const Arguments&... arguments) {
    return ConvertBadAlloc(unit, line, [&] {
        return CZqGenTLErrorExceptionReporter(unit, line, KindOf<CZqGenTLErrorException>())
            .Report(pGenTL, error, functionName, format, arguments...);
    });
}

/// Throws that report unless `result` is GC_ERR_SUCCESS.
template <class... Arguments>
void CheckProducer(const CZqGenTLLib* pGenTL, const char* unit, int line, GC_ERROR result,
                   const char* functionName, const char* format, const Arguments&... arguments) {
    if (result != GC_ERR_SUCCESS)
        throw ProducerError(pGenTL, unit, line, result, functionName, format, arguments...);
}

} // namespace ZqApi
