// The computer's NetBIOS name (kernel32): the name in use, and the name the next start uses.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

// `size` is in characters: the buffer size on input (with room for the terminator), the
// name's length on success, and the size needed on ERROR_BUFFER_OVERFLOW.
BOOL GetComputerNameA(char* name, DWORD* size);
// Takes effect at the next start of Windows: the name in use does not change.
BOOL SetComputerNameA(const char* name);

}  // namespace Hostkit::platform
