// Restart and power-down requests forwarded to user32 and advapi32.
#include "platform/shutdown.h"

namespace Hostkit::platform {

BOOL ExitWindowsEx(UINT flags, DWORD reserved) { return ::ExitWindowsEx(flags, reserved); }
BOOL InitiateSystemShutdownA(char* machine, char* message, DWORD timeout, BOOL forceAppsClosed,
                             BOOL rebootAfterShutdown) {
  return ::InitiateSystemShutdownA(machine, message, timeout, forceAppsClosed, rebootAfterShutdown);
}

}  // namespace Hostkit::platform
