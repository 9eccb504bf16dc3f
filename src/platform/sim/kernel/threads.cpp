// Threads of the simulated process. A thread is a real host thread that serves the seam from
// the machine of the thread that created it, leashed to that machine's virtual clock: waiting
// for it with a time-out is deterministic however fast the host runs it.
#include "platform/threads.h"

#include <atomic>
#include <memory>
#include <thread>
#include <utility>

#include "hostkit/sim/machine.h"
#include "platform/handles.h"
#include "platform/sim/kernel/handle_table.h"
#include "platform/system_info.h"

namespace Hostkit::sim {

namespace {

struct ThreadState {
  std::shared_ptr<Machine> machine;
  std::shared_ptr<VirtualClock::Leash> leash;
  std::atomic<int> priority{THREAD_PRIORITY_NORMAL};
};

// What a thread handle refers to. When its last handle closes, a worker still held back by the
// clock runs free, as an unwaited thread does on Windows.
class ThreadObject : public KernelObject, public Waitable {
 public:
  explicit ThreadObject(std::shared_ptr<ThreadState> state) : state_(std::move(state)) {}
  ~ThreadObject() override { state_->machine->clock().release(*state_->leash); }

  bool Wait(DWORD milliseconds) override {
    return state_->machine->clock().waitFor(*state_->leash, milliseconds);
  }
  ThreadState& state() { return *state_; }

 private:
  std::shared_ptr<ThreadState> state_;
};

// The state of the calling thread when the simulated process created it.
thread_local ThreadState* currentThread = nullptr;
// The priority of any other thread (the host program's own).
thread_local int hostThreadPriority = THREAD_PRIORITY_NORMAL;

std::atomic<DWORD> nextThreadId{0x100};

std::shared_ptr<ThreadObject> FindThread(HANDLE handle) {
  auto thread = FindHandleAs<ThreadObject>(handle);
  if (!thread) {
    platform::SetLastError(ERROR_INVALID_HANDLE);
  }
  return thread;
}

bool IsValidPriority(int priority) {
  return (priority >= -2 && priority <= 2) || priority == -15 || priority == 15;
}

}  // namespace

}  // namespace Hostkit::sim

namespace Hostkit::platform {

HANDLE CreateThread(SECURITY_ATTRIBUTES* /*security*/, SIZE_T /*stackSize*/,
                    LPTHREAD_START_ROUTINE start, void* parameter, DWORD flags, DWORD* threadId) {
  if (start == nullptr || (flags & CREATE_SUSPENDED) != 0) {
    SetLastError(start == nullptr ? ERROR_INVALID_PARAMETER : ERROR_NOT_SUPPORTED);
    return nullptr;
  }
  try {
    auto state = std::make_shared<sim::ThreadState>();
    state->machine = sim::ActiveMachine();
    state->leash = state->machine->clock().newLeash();
    HANDLE handle = sim::AddHandle(std::make_shared<sim::ThreadObject>(state));
    if (handle == nullptr) {
      SetLastError(ERROR_NOT_ENOUGH_MEMORY);
      return nullptr;
    }
    std::thread([state, start, parameter] {
      sim::ScopedMachine scope(state->machine);
      sim::currentThread = state.get();
      sim::VirtualClock& clock = state->machine->clock();
      clock.bindCurrentThread(state->leash);
      clock.finish(*state->leash, start(parameter));
    }).detach();
    if (threadId != nullptr) {
      *threadId = sim::nextThreadId.fetch_add(4);
    }
    return handle;
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
  }
}

BOOL TerminateThread(HANDLE thread, DWORD exitCode) {
  auto found = sim::FindThread(thread);
  if (!found) {
    return FALSE;
  }
  found->state().machine->clock().kill(*found->state().leash, exitCode);
  return TRUE;
}

BOOL GetExitCodeThread(HANDLE thread, DWORD* exitCode) {
  auto found = sim::FindThread(thread);
  if (!found || exitCode == nullptr) {
    return FALSE;
  }
  DWORD code = 0;
  *exitCode =
      found->state().machine->clock().finished(*found->state().leash, code) ? code : STILL_ACTIVE;
  return TRUE;
}

BOOL SetThreadPriority(HANDLE thread, int priority) {
  if (!sim::IsValidPriority(priority)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  if (thread == GetCurrentThread()) {
    if (sim::currentThread != nullptr) {
      sim::currentThread->priority = priority;
    } else {
      sim::hostThreadPriority = priority;
    }
    return TRUE;
  }
  auto found = sim::FindThread(thread);
  if (!found) {
    return FALSE;
  }
  found->state().priority = priority;
  return TRUE;
}

int GetThreadPriority(HANDLE thread) {
  if (thread == GetCurrentThread()) {
    return sim::currentThread != nullptr ? sim::currentThread->priority.load()
                                         : sim::hostThreadPriority;
  }
  auto found = sim::FindThread(thread);
  return found ? found->state().priority.load() : THREAD_PRIORITY_ERROR_RETURN;
}

BOOL GetProcessAffinityMask(HANDLE process, DWORD_PTR* processMask, DWORD_PTR* systemMask) {
  if (process != GetCurrentProcess() || processMask == nullptr || systemMask == nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  const ULONG_PTR mask = sim::ActiveMachine()->facts().processor.affinityMask;
  *processMask = mask;
  *systemMask = mask;
  return TRUE;
}

}  // namespace Hostkit::platform
