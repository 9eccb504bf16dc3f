// Version, language, module and path facts of kernel32, and the thread's last error.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

// Accepts the basic (148-byte) and the extended (156-byte) record, chosen by
// dwOSVersionInfoSize, as Windows does.
BOOL GetVersionExA(OSVERSIONINFOA* info);
LANGID GetSystemDefaultLangID();
DWORD GetModuleFileNameA(HMODULE module, char* fileName, DWORD size);
DWORD GetShortPathNameA(const char* longPath, char* shortPath, DWORD size);
DWORD GetLastError();
void SetLastError(DWORD error);

}  // namespace Hostkit::platform
