// Restart and power-down requests of user32 and advapi32.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

BOOL ExitWindowsEx(UINT flags, DWORD reserved);
BOOL InitiateSystemShutdownA(char* machine, char* message, DWORD timeout, BOOL forceAppsClosed,
                             BOOL rebootAfterShutdown);

}  // namespace Hostkit::platform
