// Environment variables of kernel32.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

// Copies `source` into `destination` with every %NAME% of a known variable replaced by its value
// (names match without regard to case; unknown names stay as written). Returns the size the
// whole expansion needs, terminator included; when that exceeds `size` the buffer holds as much
// of it as fits, terminated. 0 on failure.
DWORD ExpandEnvironmentStringsA(const char* source, char* destination, DWORD size);

}  // namespace Hostkit::platform
