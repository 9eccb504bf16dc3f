// Reading a window's title for matching.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit {

// The window's title, at most 499 characters: its wide text, or its narrow text converted when
// the wide one reads empty (Windows 9x, windows that keep only narrow text).
wstring WindowTitle(HWND window);

}  // namespace Hostkit
