// Version, language, module and path facts forwarded to kernel32.
#include "platform/system_info.h"

namespace Hostkit::platform {

BOOL GetVersionExA(OSVERSIONINFOA* info) { return ::GetVersionExA(info); }
LANGID GetSystemDefaultLangID() { return ::GetSystemDefaultLangID(); }
DWORD GetModuleFileNameA(HMODULE module, char* fileName, DWORD size) {
  return ::GetModuleFileNameA(module, fileName, size);
}
DWORD GetShortPathNameA(const char* longPath, char* shortPath, DWORD size) {
  return ::GetShortPathNameA(longPath, shortPath, size);
}
DWORD GetLastError() { return ::GetLastError(); }
void SetLastError(DWORD error) { ::SetLastError(error); }

}  // namespace Hostkit::platform
