#include "ZqGenTLCommon/ZqGenTLError.h"

#include <cstring>
#include <vector>

#include "ZqGenTLCommon/ZqGenTLLib.h"

namespace ZqApi {
namespace {

// No producer explains itself at such length; a larger size is a broken answer.
constexpr size_t LARGEST_TEXT = 65536;

bool IsLastError(GC_ERROR result, GC_ERROR reported, GC_ERROR error) {
    return result == GC_ERR_SUCCESS && reported == error;
}

/// A blank and the producer's text for `error`, or nothing when its last error is another one or can't be
/// read.
std::string LastErrorSuffix(const CZqGenTLLib& genTL, GC_ERROR error) {
    if (genTL.GCGetLastError == nullptr)
        return "";
    // Preset before each call: a producer may leave the code unwritten.
    GC_ERROR reported = GC_ERR_SUCCESS;
    size_t size = 0;
    GC_ERROR result = CallProducer(genTL.GCGetLastError, &reported, static_cast<char*>(nullptr), &size);
    if (!IsLastError(result, reported, error) || size > LARGEST_TEXT)
        return "";
    std::vector<char> text(size + 1);
    reported = GC_ERR_SUCCESS;
    const size_t capacity = size;
    result = CallProducer(genTL.GCGetLastError, &reported, text.data(), &size);
    if (!IsLastError(result, reported, error))
        return "";
    text[capacity] = '\0';
    return (" " + std::string(text.data())).substr(0, MaximalMessageLength);
}

} // namespace

CZqGenTLErrorException CZqGenTLErrorExceptionReporter::Build(const CZqGenTLLib* pGenTL, GC_ERROR error,
                                                             const char* functionName,
                                                             std::string message) const {
    if (message.size() > MaximalMessageLength)
        message.resize(MaximalMessageLength);
    if (pGenTL != nullptr)
        message += LastErrorSuffix(*pGenTL, error);
    return CZqGenTLErrorException(error, functionName, message.c_str(), m_SourceFileName, m_SourceLine,
                                  m_ExceptionType);
}

} // namespace ZqApi
