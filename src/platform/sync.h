// Events and waits of kernel32.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

HANDLE CreateEventA(void* security, BOOL manualReset, BOOL initialState, const char* name);
BOOL SetEvent(HANDLE event);
BOOL ResetEvent(HANDLE event);
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);

}  // namespace Hostkit::platform
