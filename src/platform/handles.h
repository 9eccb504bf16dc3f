// Kernel object handles: the pseudo handles of the running process and thread, and closing.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

HANDLE GetCurrentProcess();
HANDLE GetCurrentThread();
BOOL CloseHandle(HANDLE handle);

}  // namespace Hostkit::platform
