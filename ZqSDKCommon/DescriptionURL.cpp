#include "ZqSDKCommon/DescriptionURL.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "ZqSDKCommon/Error.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqSDKCommon/ZqXMLFile";

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool EqualNoCase(const char* left, const char* right, size_t count) {
    return std::equal(left, left + count, right, [](char a, char b) { return Lower(a) == Lower(b); });
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    const char lower = Lower(c);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// No digits give 0; a number too large for 64 bits gives the largest one.
uint64_t ParseHex(const std::string& text, size_t position) {
    while (position < text.size() && (text[position] == ' ' || text[position] == '\t'))
        ++position;
    const bool prefixed =
        position + 1 < text.size() && text[position] == '0' && Lower(text[position + 1]) == 'x';
    if (prefixed)
        position += 2;
    uint64_t value = 0;
    for (; position < text.size() && HexDigit(text[position]) >= 0; ++position) {
        if (value >> 60 != 0)
            return UINT64_MAX;
        value = value << 4 | static_cast<uint64_t>(HexDigit(text[position]));
    }
    return value;
}

/// The number behind the n-th ';', counted from 1; 0 when there is none.
uint64_t NumberAfterSemicolon(const gcstring& url, int n) {
    const std::string text(url.c_str(), url.length());
    size_t position = 0;
    for (; n > 0; --n) {
        position = text.find(';', position);
        if (position == std::string::npos)
            return 0;
        ++position;
    }
    return ParseHex(text, position);
}

} // namespace

int ParseURLLocation(const gcstring& url) {
    constexpr const char* SCHEMES[] = {"local:", "http:", "file:"};
    for (int location = 0; location < 3; ++location) {
        const size_t length = std::strlen(SCHEMES[location]);
        if (url.length() >= length && EqualNoCase(url.c_str(), SCHEMES[location], length))
            return location;
    }
    return 0;
}

gcstring ParseURLFilePath(const gcstring& url) {
    const std::string text(url.c_str(), url.length());
    const size_t end = std::min(text.find(';'), text.size());
    const size_t colon = text.find(':');
    const size_t begin = colon == std::string::npos ? 0 : colon + 1;
    return begin >= end ? gcstring() : gcstring(text.c_str() + begin, end - begin);
}

uint64_t ParseURLLocalAddress(const gcstring& url) {
    return NumberAfterSemicolon(url, 1);
}

uint64_t ParseURLLocalLength(const gcstring& url) {
    return NumberAfterSemicolon(url, 2);
}

gcstring ParseURLFileName(const gcstring& path) {
    const std::string text(path.c_str(), path.length());
    const size_t backslash = text.rfind('\\');
    return backslash == std::string::npos ? path : gcstring(text.c_str() + backslash + 1);
}

bool IsZipFileName(const gcstring& fileName) {
    if (fileName.length() < 3)
        throw ReportError<GenICam::OutOfRangeException>(UNIT, __LINE__, "The file name \"%s\" is too short.",
                                                        fileName.c_str());
    return EqualNoCase(fileName.c_str() + fileName.length() - 3, "zip", 3);
}

} // namespace ZqApi
