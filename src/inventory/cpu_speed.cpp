// Measuring the processor's clock speed: time-stamp counter cycles over a stretch of the
// performance counter, or, without a time-stamp counter, the time of a loop of instructions of
// known cost.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>

#include "inventory/inventory_impl.h"
#include "platform/handles.h"
#include "platform/processor.h"
#include "platform/threads.h"
#include "platform/time.h"

namespace Hostkit {

namespace {

constexpr DWORD kIdFlag = 1U << 21;
constexpr DWORD kAlignmentCheckFlag = 1U << 18;
constexpr DWORD kTimeStampCounterBit = 1U << 4;
constexpr int kMaxPasses = 20;
constexpr std::int64_t kStartTicks = 50;
constexpr std::int64_t kEndTicks = 1000;
constexpr DWORD kBitScanIterations = 4000;
constexpr int kBitScanRuns = 10;

struct ProcessorKind {
  int family = 0;
  bool hasTimeStampCounter = false;
};

ProcessorKind DetectProcessor() {
  ProcessorKind kind;
  if (platform::ToggleableProcessorFlags(kIdFlag) != 0) {
    DWORD registers[4] = {};
    platform::Cpuid(1, registers);
    kind.family = static_cast<int>((registers[0] >> 8) & 0xF);
    kind.hasTimeStampCounter = (registers[3] & kTimeStampCounterBit) != 0;
  } else {
    kind.family = platform::ToggleableProcessorFlags(kAlignmentCheckFlag) != 0 ? 4 : 3;
  }
  return kind;
}

std::int64_t Counter() {
  LARGE_INTEGER count{};
  platform::QueryPerformanceCounter(&count);
  return count.QuadPart;
}

// Microseconds of `ticks` of a counter running at `frequency`.
std::int64_t TicksToMicroseconds(std::int64_t ticks, std::int64_t frequency) {
  const std::int64_t divisor = frequency / 10;
  std::int64_t microseconds = ticks * 100000 / divisor;
  if (ticks * 100000 % divisor > frequency / 2) {
    ++microseconds;
  }
  return microseconds;
}

// a / b, rounded up when the remainder exceeds half of b; 0 when b is 0.
std::int64_t RoundedQuotient(std::int64_t a, std::int64_t b) {
  if (b == 0) {
    return 0;
  }
  return a / b + (a % b > b / 2 ? 1 : 0);
}

// The frequency figure of each pass so far. Kept on the stack: a processor fault abandons the
// measurement's frames without destroying what they hold.
struct PassFigures {
  std::array<std::int64_t, kMaxPasses> figures{};
  int count = 0;

  // Whether each of the last three figures lies within 4/3 of their mean.
  bool LastThreeAgree() const {
    if (count < 3) {
      return false;
    }
    const auto end = figures.begin() + count;
    const std::int64_t sum = end[-3] + end[-2] + end[-1];
    return std::all_of(end - 3, end,
                       [sum](std::int64_t figure) { return std::llabs(3 * figure - sum) < 4; });
  }
};

SpeedFigures CounterMethod(std::int64_t frequency) {
  std::int64_t totalCycles = 0;
  std::int64_t totalMicroseconds = 0;
  PassFigures passes;
  HANDLE self = platform::GetCurrentThread();
  for (int pass = 0; pass < kMaxPasses && !passes.LastThreeAgree(); ++pass) {
    // The timed stretch runs at the highest priority, so that little else runs inside it.
    const int priority = platform::GetThreadPriority(self);
    const bool raised = priority != THREAD_PRIORITY_ERROR_RETURN &&
                        platform::SetThreadPriority(self, THREAD_PRIORITY_TIME_CRITICAL) != FALSE;
    const std::int64_t origin = Counter();
    std::int64_t now = origin;
    while (now - origin < kStartTicks) {
      now = Counter();
    }
    const std::uint64_t startStamp = platform::ReadTimeStampCounter();
    const std::int64_t startCount = now;
    while (now - origin < kEndTicks) {
      now = Counter();
    }
    const std::uint64_t endStamp = platform::ReadTimeStampCounter();
    if (raised) {
      platform::SetThreadPriority(self, priority);
    }
    const std::int64_t microseconds = TicksToMicroseconds(now - startCount, frequency);
    const auto cycles = static_cast<std::int64_t>(endStamp - startStamp);
    passes.figures[static_cast<std::size_t>(passes.count++)] =
        RoundedQuotient(cycles, microseconds);
    totalCycles += cycles;
    totalMicroseconds += microseconds;
  }
  if (totalMicroseconds == 0) {
    return {};
  }
  const std::int64_t truncated = totalCycles / totalMicroseconds;
  const std::int64_t firstDecimal = totalCycles * 10 / totalMicroseconds % 10;
  return {static_cast<int>(truncated), static_cast<int>(truncated + (firstDecimal >= 6 ? 1 : 0))};
}

// Clock cycles one bit scan of 0x80000000 takes, by processor family.
std::int64_t BitScanCycles(int family) {
  switch (family) {
    case 3:
      return 115;
    case 4:
      return 47;
    case 5:
      return 43;
    case 6:
    case 7:
      return 38;
    default:
      return 0;
  }
}

SpeedFigures InstructionTimingMethod(std::int64_t frequency, int family) {
  std::int64_t fewestTicks = -1;
  for (int run = 0; run < kBitScanRuns; ++run) {
    const std::int64_t before = Counter();
    platform::BitScanForwardLoop(kBitScanIterations);
    const std::int64_t ticks = Counter() - before;
    if (fewestTicks < 0 || ticks < fewestTicks) {
      fewestTicks = ticks;
    }
  }
  const std::int64_t microseconds = TicksToMicroseconds(fewestTicks, frequency);
  if (microseconds == 0) {
    return {};
  }
  const std::int64_t cycles = kBitScanIterations * BitScanCycles(family);
  return {static_cast<int>(cycles / microseconds),
          static_cast<int>(RoundedQuotient(cycles, microseconds))};
}

}  // namespace

SpeedFigures MeasureProcessorSpeed() {
  const ProcessorKind kind = DetectProcessor();
  if (!kind.hasTimeStampCounter && kind.family < 3) {
    return {};
  }
  LARGE_INTEGER frequency{};
  // A counter slower than 10 ticks a second cannot time microseconds.
  if (platform::QueryPerformanceFrequency(&frequency) == FALSE || frequency.QuadPart < 10) {
    return {};
  }
  SpeedFigures figures = kind.hasTimeStampCounter
                             ? CounterMethod(frequency.QuadPart)
                             : InstructionTimingMethod(frequency.QuadPart, kind.family);
  figures.truncated = std::max(figures.truncated, 0);
  figures.rounded = std::max(figures.rounded, 0);
  return figures;
}

}  // namespace Hostkit
