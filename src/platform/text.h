// Code-page conversions of kernel32.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

int MultiByteToWideChar(UINT codePage, DWORD flags, const char* source, int sourceLength,
                        WCHAR* target, int targetLength);
int WideCharToMultiByte(UINT codePage, DWORD flags, const WCHAR* source, int sourceLength,
                        char* target, int targetLength, const char* defaultChar,
                        BOOL* usedDefaultChar);

}  // namespace Hostkit::platform
