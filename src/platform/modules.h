// Run-time binding of modules: LoadLibraryA, GetProcAddress, FreeLibrary.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

HMODULE LoadLibraryA(const char* fileName);
FARPROC GetProcAddress(HMODULE module, const char* procName);
BOOL FreeLibrary(HMODULE module);

// Entry points as their real function types and back, through the generic function type that
// the compilers accept a cast from and to without warning.
template <class F>
F ProcAs(FARPROC proc) {
  return reinterpret_cast<F>(reinterpret_cast<void (*)()>(proc));
}
template <class F>
FARPROC AsProc(F function) {
  return reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(function));
}

}  // namespace Hostkit::platform
