#pragma once

#include <string>

#include <ZqApi/Export.h>
#include <ZqApi/Types.h>

namespace ZqApi {

/// A narrow text made of a narrow or a wide one.
class ZQAPI_API CZqString {
public:
    /// Copies the text, which must not be null.
    CZqString(const char* text);
    /// Converts by the current locale. Kept: only a text whose every character converts to four bytes
    /// counts as converted, all others throw GenICam::RuntimeException "Unable to convert string."; the
    /// empty text is empty.
    CZqString(const wchar_t* text);
    ~CZqString();
    CZqString(const CZqString&) = default;
    CZqString& operator=(const CZqString&) = default;

    /// Valid as long as the object.
    const char* c_str() const { return m_Text.c_str(); }

private:
    std::string m_Text;
};

/// Creates the last directory of `path`, or with `removeLastElement` that of what stands before its last "/"
/// (one at the very start does not count), with permissions 0775 less the umask. Missing parents are not
/// created, and no failure of the system is reported. Any thread.
ZQAPI_API void MakePath(const gcstring& path, bool removeLastElement);

} // namespace ZqApi
