// Windows of user32: enumerating top-level windows and walking their children, reading window
// texts, dialog identifiers and visibility, and posting messages.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

BOOL EnumWindows(WNDENUMPROC callback, LPARAM parameter);
// The first child (GW_CHILD) or the next sibling (GW_HWNDNEXT) of `window`; null when none.
HWND GetWindow(HWND window, UINT command);
// The window's title, at most `maxCount` - 1 characters and a terminator; its length, 0 when
// there is none or it cannot be read.
int GetWindowTextW(HWND window, WCHAR* text, int maxCount);
int GetWindowTextA(HWND window, char* text, int maxCount);
int GetDlgCtrlID(HWND window);
BOOL IsWindow(HWND window);
// Whether the window and every window above it are shown.
BOOL IsWindowVisible(HWND window);
BOOL PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace Hostkit::platform
