// Critical sections of kernel32: a lock one thread may enter again while it holds it.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

#ifdef _WIN32
using CRITICAL_SECTION = ::CRITICAL_SECTION;
#else
// On the simulated machine the record only points at the host lock that stands for it.
struct CRITICAL_SECTION {
  void* lock;
};
#endif

void InitializeCriticalSection(CRITICAL_SECTION* section);
void EnterCriticalSection(CRITICAL_SECTION* section);
void LeaveCriticalSection(CRITICAL_SECTION* section);
void DeleteCriticalSection(CRITICAL_SECTION* section);

}  // namespace Hostkit::platform
