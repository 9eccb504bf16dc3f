// Directory creation and search of kernel32.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

// Creates one folder; an existing one fails with ERROR_ALREADY_EXISTS, a missing parent with
// ERROR_PATH_NOT_FOUND.
BOOL CreateDirectoryA(const char* path, SECURITY_ATTRIBUTES* security);

// Searches a folder for the names matching the pattern after its last "\" ("*" and "?"
// wildcards). INVALID_HANDLE_VALUE when nothing matches or the folder cannot be listed.
HANDLE FindFirstFileA(const char* pattern, WIN32_FIND_DATAA* found);
// FALSE with ERROR_NO_MORE_FILES past the last match.
BOOL FindNextFileA(HANDLE search, WIN32_FIND_DATAA* found);
BOOL FindClose(HANDLE search);

}  // namespace Hostkit::platform
