// The machine's virtual clock and the leash on the worker threads it runs.
#include <chrono>
#include <limits>

#include "hostkit/sim/machine.h"

namespace Hostkit::sim {

namespace {

// The leash of the calling thread when it is a worker of `clock`.
thread_local VirtualClock::Leash* currentLeash = nullptr;
thread_local const VirtualClock* currentLeashClock = nullptr;

constexpr std::uint64_t kNanosecondsPerMillisecond = 1000000;

}  // namespace

std::uint64_t VirtualClock::now() const {
  std::lock_guard lock(mutex_);
  return now_;
}

void VirtualClock::advance(std::uint64_t nanoseconds) {
  std::unique_lock lock(mutex_);
  const std::uint64_t target = now_ + nanoseconds;
  if (currentLeash != nullptr && currentLeashClock == this) {
    Leash& leash = *currentLeash;
    // A terminated worker stays parked for good, as a killed thread never runs again.
    while (leash.killed || (!leash.free && target > leash.limit)) {
      leash.parked = true;
      leash.wanted = target;
      changed_.notify_all();
      changed_.wait(lock);
    }
    leash.parked = false;
  }
  if (target > now_) {
    now_ = target;
  }
  changed_.notify_all();
}

std::shared_ptr<VirtualClock::Leash> VirtualClock::newLeash() { return std::make_shared<Leash>(); }

void VirtualClock::bindCurrentThread(const std::shared_ptr<Leash>& leash) {
  currentLeash = leash.get();
  currentLeashClock = this;
}

void VirtualClock::finish(Leash& leash, DWORD exitCode) {
  std::lock_guard lock(mutex_);
  if (!leash.killed) {
    leash.finished = true;
    leash.exitCode = exitCode;
  }
  changed_.notify_all();
}

bool VirtualClock::waitFor(Leash& leash, DWORD milliseconds) {
  std::unique_lock lock(mutex_);
  const bool unlimited = milliseconds == INFINITE;
  const std::uint64_t deadline = unlimited ? std::numeric_limits<std::uint64_t>::max()
                                           : now_ + milliseconds * kNanosecondsPerMillisecond;
  if (deadline > leash.limit) {
    leash.limit = deadline;
    changed_.notify_all();
  }
  auto settled = [&] { return leash.finished || (leash.parked && leash.wanted > deadline); };
  if (unlimited) {
    changed_.wait(lock, settled);
  } else {
    changed_.wait_until(
        lock, std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds), settled);
  }
  if (leash.finished) {
    return true;
  }
  if (!unlimited && deadline > now_) {
    now_ = deadline;
  }
  return false;
}

void VirtualClock::kill(Leash& leash, DWORD exitCode) {
  std::lock_guard lock(mutex_);
  if (!leash.finished) {
    leash.killed = true;
    leash.finished = true;
    leash.exitCode = exitCode;
  }
  changed_.notify_all();
}

void VirtualClock::release(Leash& leash) {
  std::lock_guard lock(mutex_);
  leash.free = true;
  changed_.notify_all();
}

bool VirtualClock::finished(const Leash& leash, DWORD& exitCode) const {
  std::lock_guard lock(mutex_);
  exitCode = leash.exitCode;
  return leash.finished;
}

}  // namespace Hostkit::sim
