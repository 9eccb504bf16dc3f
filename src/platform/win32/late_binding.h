// Entries of system DLLs that some release the library serves lacks (Windows 95's ADVAPI32 has
// no service control manager, tokens or wide registry calls, for instance). They are looked up by
// name when called, so that the DLL's import table names only what every release exports and the
// DLL loads everywhere; a missing entry fails as Windows 9x's own stubs do.
#pragma once

#include <windows.h>

#include "platform/modules.h"

namespace Hostkit::platform::win32 {

inline constexpr const char* kAdvapi32 = "ADVAPI32.DLL";
inline constexpr const char* kUser32 = "USER32.DLL";

// The entry `name` of `module`, loading the module when the process has not yet (it then stays
// loaded); null when either is missing.
FARPROC FindEntry(const char* module, const char* name);

// Calls the entry `name` of `module`, of type `Proc`, with `args`. When the entry is missing,
// the last error is ERROR_CALL_NOT_IMPLEMENTED and the result `missing`.
template <class Proc, class Result, class... Args>
Result CallEntry(const char* module, const char* name, Result missing, Args... args) {
  const FARPROC entry = FindEntry(module, name);
  if (entry == nullptr) {
    ::SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
    return missing;
  }
  return ProcAs<Proc>(entry)(args...);
}

}  // namespace Hostkit::platform::win32
