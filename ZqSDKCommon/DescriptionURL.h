#pragma once

#include <ZqApi/Types.h>

namespace ZqApi {

/// Where a description file lies: scheme:path;address;length, as in "local:camera.zip;10000;3A2F".
///
/// Producers write these texts in many ways, so the parsing is loose: whatever is missing counts as empty or
/// 0.

/// 0 in the module's registers ("local:" and every unknown scheme), 1 "http:", 2 "file:"; upper and lower
/// case alike.
int ParseURLLocation(const gcstring& url);
/// The text between the first ':' and the first ';'.
gcstring ParseURLFilePath(const gcstring& url);
/// The hexadecimal number after the first ';'.
uint64_t ParseURLLocalAddress(const gcstring& url);
/// The hexadecimal number after the second ';', in bytes; saturates.
uint64_t ParseURLLocalLength(const gcstring& url);
/// The text after the last backslash; forward slashes stay.
gcstring ParseURLFileName(const gcstring& path);
/// Whether the name's last three letters are "zip", upper and lower case alike. Throws
/// GenICam::OutOfRangeException for names of less than three characters.
bool IsZipFileName(const gcstring& fileName);

} // namespace ZqApi
