// Time on the simulated machine: everything reads the machine's virtual clock. Sleeping moves
// it forward; so does each read of the performance counter, which takes the clock to the next
// tick, as polling a counter costs time on a real machine. That is what lets a loop that waits
// for the counter to advance end.
#include "platform/time.h"

#include "hostkit/sim/machine.h"
#include "platform/sim/kernel/machine_time.h"
#include "platform/system_info.h"

namespace Hostkit::sim {

std::uint64_t ScaleTime(std::uint64_t nanoseconds, std::uint64_t perSecond) {
  using Wide = unsigned __int128;
  return static_cast<std::uint64_t>(static_cast<Wide>(nanoseconds) * perSecond / kNsPerSecond);
}

std::uint64_t TimeOfCount(std::uint64_t count, std::uint64_t perSecond) {
  using Wide = unsigned __int128;
  const Wide scaled = static_cast<Wide>(count) * kNsPerSecond;
  return static_cast<std::uint64_t>((scaled + perSecond - 1) / perSecond);
}

}  // namespace Hostkit::sim

namespace Hostkit::platform {

void Sleep(DWORD milliseconds) {
  if (milliseconds == INFINITE) {
    return;  // a sleep that never ends would hang the host program
  }
  sim::ActiveMachine()->clock().advance(std::uint64_t{milliseconds} * 1000000);
}

// The machine starts at 2005-01-01 00:00:00 UTC on the seconds clock.
std::time_t time(std::time_t* seconds) {
  constexpr std::time_t kStart = 1104537600;
  const auto elapsed =
      static_cast<std::time_t>(sim::ActiveMachine()->clock().now() / sim::kNsPerSecond);
  if (seconds != nullptr) {
    *seconds = kStart + elapsed;
  }
  return kStart + elapsed;
}

DWORD GetTickCount() { return static_cast<DWORD>(sim::ActiveMachine()->clock().now() / 1000000); }

BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency) {
  const std::uint64_t perSecond = sim::ActiveMachine()->facts().performanceFrequency;
  if (frequency == nullptr || perSecond == 0) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  frequency->QuadPart = static_cast<std::int64_t>(perSecond);
  return TRUE;
}

BOOL QueryPerformanceCounter(LARGE_INTEGER* count) {
  auto machine = sim::ActiveMachine();
  const std::uint64_t perSecond = machine->facts().performanceFrequency;
  if (count == nullptr || perSecond == 0) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  sim::VirtualClock& clock = machine->clock();
  const std::uint64_t now = clock.now();
  const std::uint64_t nextTick = sim::TimeOfCount(sim::ScaleTime(now, perSecond) + 1, perSecond);
  clock.advance(nextTick - now);
  count->QuadPart = static_cast<std::int64_t>(sim::ScaleTime(clock.now(), perSecond));
  return TRUE;
}

}  // namespace Hostkit::platform
