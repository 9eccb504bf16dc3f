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

// Holds a critical section for a scope, also when an allocation throws inside it. (The calls are
// qualified: on Windows the record is the system's, whose own functions would also be found.)
class CriticalSectionLock {
 public:
  explicit CriticalSectionLock(CRITICAL_SECTION& section) : section_(section) {
    platform::EnterCriticalSection(&section_);
  }
  ~CriticalSectionLock() { platform::LeaveCriticalSection(&section_); }
  CriticalSectionLock(const CriticalSectionLock&) = delete;
  CriticalSectionLock& operator=(const CriticalSectionLock&) = delete;

 private:
  CRITICAL_SECTION& section_;
};

}  // namespace Hostkit::platform
