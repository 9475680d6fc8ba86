#include <cstdlib>
#include <cwchar>
#include <vector>

#include <ZqApi/Text.h>

#include "ZqSDKCommon/Error.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqString";
constexpr size_t BYTES_PER_CHARACTER = 4;

std::string Converted(const wchar_t* text) {
    const size_t capacity = BYTES_PER_CHARACTER * std::wcslen(text);
    // One more, so that the bytes always end.
    std::vector<char> buffer(capacity + 1);
    if (std::wcstombs(buffer.data(), text, capacity) != capacity)
        throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "Unable to convert string.");
    return buffer.data();
}

} // namespace

CZqString::CZqString(const char* text)
    : m_Text((ZQ_ASSERT(UNIT, text != NULL),
              ConvertBadAlloc(UNIT, __LINE__, [&] { return std::string(text); }))) {}

CZqString::CZqString(const wchar_t* text)
    : m_Text((ZQ_ASSERT(UNIT, text != NULL),
              ConvertBadAlloc(UNIT, __LINE__, [&] { return Converted(text); }))) {}

CZqString::~CZqString() = default;

} // namespace ZqApi
