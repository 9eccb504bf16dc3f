// The registry calls of advapi32, narrow and wide, shaped as Win32 declares them.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

LONG RegOpenKeyExA(HKEY key, const char* subKey, DWORD options, REGSAM access, HKEY* result);
LONG RegOpenKeyExW(HKEY key, const WCHAR* subKey, DWORD options, REGSAM access, HKEY* result);
LONG RegCreateKeyExA(HKEY key, const char* subKey, DWORD reserved, char* keyClass, DWORD options,
                     REGSAM access, void* security, HKEY* result, DWORD* disposition);
LONG RegCreateKeyExW(HKEY key, const WCHAR* subKey, DWORD reserved, WCHAR* keyClass, DWORD options,
                     REGSAM access, void* security, HKEY* result, DWORD* disposition);
LONG RegCloseKey(HKEY key);

LONG RegQueryValueExA(HKEY key, const char* name, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* size);
LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* size);
LONG RegSetValueExA(HKEY key, const char* name, DWORD reserved, DWORD type, const BYTE* data,
                    DWORD size);
LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                    DWORD size);
LONG RegDeleteValueA(HKEY key, const char* name);
LONG RegDeleteValueW(HKEY key, const WCHAR* name);
LONG RegDeleteKeyA(HKEY key, const char* subKey);
LONG RegDeleteKeyW(HKEY key, const WCHAR* subKey);

// `nameSize` is in characters: the buffer size on input, the name length without its
// terminator on output.
LONG RegEnumKeyExA(HKEY key, DWORD index, char* name, DWORD* nameSize, DWORD* reserved,
                   char* keyClass, DWORD* classSize, FILETIME* lastWrite);
LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* nameSize, DWORD* reserved,
                   WCHAR* keyClass, DWORD* classSize, FILETIME* lastWrite);
LONG RegEnumValueA(HKEY key, DWORD index, char* name, DWORD* nameSize, DWORD* reserved, DWORD* type,
                   BYTE* data, DWORD* dataSize);
LONG RegEnumValueW(HKEY key, DWORD index, WCHAR* name, DWORD* nameSize, DWORD* reserved,
                   DWORD* type, BYTE* data, DWORD* dataSize);

}  // namespace Hostkit::platform
