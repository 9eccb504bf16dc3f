// Windows forwarded to user32. GetWindowTextW is looked up when called: Windows 95 need not
// export it (the library reads narrow titles there).
#include "platform/windows.h"

#include "platform/win32/late_binding.h"

namespace Hostkit::platform {

BOOL EnumWindows(WNDENUMPROC callback, LPARAM parameter) {
  return ::EnumWindows(callback, parameter);
}
HWND GetWindow(HWND window, UINT command) { return ::GetWindow(window, command); }
int GetWindowTextW(HWND window, WCHAR* text, int maxCount) {
  return win32::CallEntry<decltype(&::GetWindowTextW)>(win32::kUser32, "GetWindowTextW", 0, window,
                                                       text, maxCount);
}
int GetWindowTextA(HWND window, char* text, int maxCount) {
  return ::GetWindowTextA(window, text, maxCount);
}
int GetDlgCtrlID(HWND window) { return ::GetDlgCtrlID(window); }
BOOL IsWindow(HWND window) { return ::IsWindow(window); }
BOOL IsWindowVisible(HWND window) { return ::IsWindowVisible(window); }
BOOL PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return ::PostMessageA(window, message, wParam, lParam);
}

}  // namespace Hostkit::platform
