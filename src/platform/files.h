// The C runtime's file open, as the library uses it to test files and write text files.
#pragma once

#include <cstdio>

#include "hostkit/win_types.h"

namespace Hostkit::platform {

// Windows paths ("C:\\dir\\file"). A directory cannot be opened.
std::FILE* fopen(const char* path, const char* mode);
std::FILE* _wfopen(const WCHAR* path, const WCHAR* mode);
int fclose(std::FILE* file);

}  // namespace Hostkit::platform
