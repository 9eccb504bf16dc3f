// The DLL's entry point. Process-wide state (the pattern lock) is created by static
// initialisation, so loading only declines thread notifications.
#include "hostkit/win_types.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) {
    DisableThreadLibraryCalls(instance);
  }
  return TRUE;
}
