// Run-time binding of modules: LoadLibraryA, GetProcAddress, FreeLibrary.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

HMODULE LoadLibraryA(const char* fileName);
FARPROC GetProcAddress(HMODULE module, const char* procName);
BOOL FreeLibrary(HMODULE module);

}  // namespace Hostkit::platform
