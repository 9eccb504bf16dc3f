// Restart and power-down requests forwarded to user32 and advapi32. InitiateSystemShutdownA is
// the NT family's alone and is looked up when called.
#include "platform/shutdown.h"

#include "platform/win32/late_binding.h"

namespace Hostkit::platform {

BOOL ExitWindowsEx(UINT flags, DWORD reserved) { return ::ExitWindowsEx(flags, reserved); }
BOOL InitiateSystemShutdownA(char* machine, char* message, DWORD timeout, BOOL forceAppsClosed,
                             BOOL rebootAfterShutdown) {
  return win32::CallEntry<decltype(&::InitiateSystemShutdownA)>(
      win32::kAdvapi32, "InitiateSystemShutdownA", BOOL{FALSE}, machine, message, timeout,
      forceAppsClosed, rebootAfterShutdown);
}

}  // namespace Hostkit::platform
