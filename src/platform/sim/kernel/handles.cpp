// Kernel-object handles of the simulated process: the table, the pseudo handles, CloseHandle.
#include "platform/handles.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <utility>

#include "platform/sim/kernel/handle_table.h"
#include "platform/system_info.h"

namespace Hostkit::sim {

namespace {

// Handle values as Windows hands them out: multiples of 4, starting at 4. Values are never
// reused, so a stale handle can never reach a newer object.
class HandleTable {
 public:
  HANDLE Add(std::shared_ptr<KernelObject> object) {
    std::lock_guard lock(mutex_);
    next_ += 4;
    auto handle = reinterpret_cast<HANDLE>(next_);  // NOLINT(performance-no-int-to-ptr)
    objects_.emplace(handle, std::move(object));
    return handle;
  }

  std::shared_ptr<KernelObject> Find(HANDLE handle) {
    std::lock_guard lock(mutex_);
    auto found = objects_.find(handle);
    return found != objects_.end() ? found->second : nullptr;
  }

  // The object leaves the table under the lock but is released outside it, so that an object
  // whose destructor closes other handles cannot deadlock.
  bool Remove(HANDLE handle) {
    std::shared_ptr<KernelObject> removed;
    {
      std::lock_guard lock(mutex_);
      auto found = objects_.find(handle);
      if (found == objects_.end()) {
        return false;
      }
      removed = std::move(found->second);
      objects_.erase(found);
    }
    return true;
  }

 private:
  std::mutex mutex_;
  std::uintptr_t next_ = 0;
  std::map<HANDLE, std::shared_ptr<KernelObject>> objects_;
};

// Built on first use, so that static initialisers of other files (the pattern lock) can create
// handles whatever the order of initialisation.
HandleTable& Table() {
  static HandleTable table;
  return table;
}

}  // namespace

// NOLINTBEGIN(performance-no-int-to-ptr): handle values are numbers by nature.
HANDLE CurrentProcessPseudoHandle() { return reinterpret_cast<HANDLE>(LONG_PTR{-1}); }
HANDLE CurrentThreadPseudoHandle() { return reinterpret_cast<HANDLE>(LONG_PTR{-2}); }
// NOLINTEND(performance-no-int-to-ptr)

HANDLE AddHandle(std::shared_ptr<KernelObject> object) {
  try {
    return Table().Add(std::move(object));
  } catch (...) {
    return nullptr;
  }
}

std::shared_ptr<KernelObject> FindHandle(HANDLE handle) { return Table().Find(handle); }

bool RemoveHandle(HANDLE handle) { return Table().Remove(handle); }

}  // namespace Hostkit::sim

namespace Hostkit::platform {

HANDLE GetCurrentProcess() { return sim::CurrentProcessPseudoHandle(); }
HANDLE GetCurrentThread() { return sim::CurrentThreadPseudoHandle(); }

BOOL CloseHandle(HANDLE handle) {
  if (handle == sim::CurrentProcessPseudoHandle() || handle == sim::CurrentThreadPseudoHandle()) {
    return TRUE;
  }
  if (!sim::RemoveHandle(handle)) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  return TRUE;
}

}  // namespace Hostkit::platform
