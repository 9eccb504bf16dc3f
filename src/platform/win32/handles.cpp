// Kernel object handles forwarded to kernel32.
#include "platform/handles.h"

namespace Hostkit::platform {

HANDLE GetCurrentProcess() { return ::GetCurrentProcess(); }
HANDLE GetCurrentThread() { return ::GetCurrentThread(); }
BOOL CloseHandle(HANDLE handle) { return ::CloseHandle(handle); }

}  // namespace Hostkit::platform
