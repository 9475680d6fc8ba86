#pragma once

#include <cstdio>

namespace ZqApi {

/// Opens an anonymous temporary file for writing: "<folder>/<prefix>.XXXXXX", unlinked at once. The folder is
/// TMPDIR, or "/tmp" when that is unset or the program runs with a changed identity. The caller closes the
/// stream. Null when the file can't be created or its path is longer than 254 characters.
FILE* openTempFile(const char* prefix);

} // namespace ZqApi
