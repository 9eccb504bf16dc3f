// Run-time binding of modules forwarded to kernel32.
#include "platform/modules.h"

namespace Hostkit::platform {

HMODULE LoadLibraryA(const char* fileName) { return ::LoadLibraryA(fileName); }
FARPROC GetProcAddress(HMODULE module, const char* procName) {
  return ::GetProcAddress(module, procName);
}
BOOL FreeLibrary(HMODULE module) { return ::FreeLibrary(module); }

}  // namespace Hostkit::platform
