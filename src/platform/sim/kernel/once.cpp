// One-time initialisation on the simulated machine: the record's lock word taken with host
// atomics, the same protocol as on Windows.
#include "platform/once.h"

#include <atomic>
#include <thread>

namespace Hostkit::platform {

BOOL ExecuteOnce(INIT_ONCE_RECORD* once, PINIT_ONCE_ROUTINE routine, void* parameter) {
  std::atomic_ref<LONG> lock(once->lock);
  while (lock.exchange(1, std::memory_order_acquire) != 0) {
    std::this_thread::yield();
  }
  BOOL result = TRUE;
  if (once->done == 0) {
    result = routine(parameter);
    once->done = result != FALSE ? 1 : 0;
  }
  lock.store(0, std::memory_order_release);
  return result;
}

}  // namespace Hostkit::platform
