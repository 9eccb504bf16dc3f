// Critical sections of the simulated machine: a recursive host mutex per record, as a thread
// that holds a critical section may enter it again.
#include "platform/critical_section.h"

#include <mutex>

namespace Hostkit::platform {

namespace {
std::recursive_mutex* Lock(CRITICAL_SECTION* section) {
  return static_cast<std::recursive_mutex*>(section->lock);
}
}  // namespace

// Windows raises a structured exception when the lock cannot be made; here the record is left
// without one and entering it does nothing.
void InitializeCriticalSection(CRITICAL_SECTION* section) {
  section->lock = new (std::nothrow) std::recursive_mutex;
}
void EnterCriticalSection(CRITICAL_SECTION* section) {
  if (Lock(section) != nullptr) {
    Lock(section)->lock();
  }
}
void LeaveCriticalSection(CRITICAL_SECTION* section) {
  if (Lock(section) != nullptr) {
    Lock(section)->unlock();
  }
}
void DeleteCriticalSection(CRITICAL_SECTION* section) {
  delete Lock(section);
  section->lock = nullptr;
}

}  // namespace Hostkit::platform
