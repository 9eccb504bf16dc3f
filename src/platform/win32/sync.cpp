// Events and waits forwarded to kernel32.
#include "platform/sync.h"

namespace Hostkit::platform {

HANDLE CreateEventA(void* security, BOOL manualReset, BOOL initialState, const char* name) {
  return ::CreateEventA(static_cast<SECURITY_ATTRIBUTES*>(security), manualReset, initialState,
                        name);
}
BOOL SetEvent(HANDLE event) { return ::SetEvent(event); }
BOOL ResetEvent(HANDLE event) { return ::ResetEvent(event); }
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
  return ::WaitForSingleObject(handle, milliseconds);
}

}  // namespace Hostkit::platform
