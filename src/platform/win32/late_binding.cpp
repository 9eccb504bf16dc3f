// Run-time lookup of system entries some release lacks.
#include "platform/win32/late_binding.h"

namespace Hostkit::platform::win32 {

FARPROC FindEntry(const char* module, const char* name) {
  HMODULE handle = ::GetModuleHandleA(module);
  if (handle == nullptr) {
    handle = ::LoadLibraryA(module);
  }
  return handle != nullptr ? ::GetProcAddress(handle, name) : nullptr;
}

}  // namespace Hostkit::platform::win32
