// Events and waits of the simulated process. Waits block the calling thread for real, so that
// several threads contending for one event behave as they would on Windows.
#include "platform/sync.h"

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "platform/sim/kernel/handle_table.h"
#include "platform/system_info.h"

namespace Hostkit::sim {

namespace {

// An event: manual-reset events stay signalled until reset; auto-reset events let exactly one
// waiter through per signal and reset themselves.
class Event : public KernelObject, public Waitable {
 public:
  Event(bool manualReset, bool signalled) : manualReset_(manualReset), signalled_(signalled) {}

  void Set() {
    {
      std::lock_guard lock(mutex_);
      signalled_ = true;
    }
    if (manualReset_) {
      changed_.notify_all();
    } else {
      changed_.notify_one();
    }
  }

  void Reset() {
    std::lock_guard lock(mutex_);
    signalled_ = false;
  }

  bool Wait(DWORD milliseconds) override {
    std::unique_lock lock(mutex_);
    auto isSignalled = [this] { return signalled_; };
    if (milliseconds == INFINITE) {
      changed_.wait(lock, isSignalled);
    } else if (!changed_.wait_for(lock, std::chrono::milliseconds(milliseconds), isSignalled)) {
      return false;
    }
    if (!manualReset_) {
      signalled_ = false;
    }
    return true;
  }

 private:
  const bool manualReset_;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool signalled_;
};

// Named events: a second CreateEventA of a name opens the existing event while any handle to it
// is open.
class EventNames {
 public:
  // The event of `name`, or a new one made by `make`; `existed` tells which.
  template <class Make>
  std::shared_ptr<Event> FindOrAdd(const std::string& name, Make make, bool& existed) {
    std::lock_guard lock(mutex_);
    auto event = names_[name].lock();
    existed = event != nullptr;
    if (!existed) {
      event = make();
      names_[name] = event;
    }
    return event;
  }

 private:
  std::mutex mutex_;
  std::map<std::string, std::weak_ptr<Event>> names_;
};

EventNames& Names() {
  static EventNames names;
  return names;
}

std::shared_ptr<Event> FindEvent(HANDLE handle) {
  auto event = FindHandleAs<Event>(handle);
  if (!event) {
    platform::SetLastError(ERROR_INVALID_HANDLE);
  }
  return event;
}

}  // namespace

}  // namespace Hostkit::sim

namespace Hostkit::platform {

HANDLE CreateEventA(void* /*security*/, BOOL manualReset, BOOL initialState, const char* name) {
  try {
    auto make = [&] {
      return std::make_shared<sim::Event>(manualReset != FALSE, initialState != FALSE);
    };
    bool existed = false;
    auto event =
        name != nullptr && *name != '\0' ? sim::Names().FindOrAdd(name, make, existed) : make();
    HANDLE handle = sim::AddHandle(event);
    if (handle == nullptr) {
      SetLastError(ERROR_NOT_ENOUGH_MEMORY);
      return nullptr;
    }
    SetLastError(existed ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return handle;
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
  }
}

BOOL SetEvent(HANDLE event) {
  auto found = sim::FindEvent(event);
  if (!found) {
    return FALSE;
  }
  found->Set();
  return TRUE;
}

BOOL ResetEvent(HANDLE event) {
  auto found = sim::FindEvent(event);
  if (!found) {
    return FALSE;
  }
  found->Reset();
  return TRUE;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
  auto waitable = sim::FindHandleAs<sim::Waitable>(handle);
  if (!waitable) {
    SetLastError(ERROR_INVALID_HANDLE);
    return WAIT_FAILED;
  }
  try {
    return waitable->Wait(milliseconds) ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
  } catch (...) {
    SetLastError(ERROR_INVALID_HANDLE);
    return WAIT_FAILED;
  }
}

}  // namespace Hostkit::platform
