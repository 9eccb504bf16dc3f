// Code-page conversions forwarded to kernel32.
#include "platform/text.h"

namespace Hostkit::platform {

int MultiByteToWideChar(UINT codePage, DWORD flags, const char* source, int sourceLength,
                        WCHAR* target, int targetLength) {
  return ::MultiByteToWideChar(codePage, flags, source, sourceLength, target, targetLength);
}
int WideCharToMultiByte(UINT codePage, DWORD flags, const WCHAR* source, int sourceLength,
                        char* target, int targetLength, const char* defaultChar,
                        BOOL* usedDefaultChar) {
  return ::WideCharToMultiByte(codePage, flags, source, sourceLength, target, targetLength,
                               defaultChar, usedDefaultChar);
}

}  // namespace Hostkit::platform
