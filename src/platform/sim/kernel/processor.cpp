// The simulated processor: GetSystemInfo, the flags, CPUID and the time-stamp counter from the
// machine's processor facts; the counter runs at the machine's clock rate on its virtual time.
#include "platform/processor.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "hostkit/sim/machine.h"
#include "platform/sim/kernel/machine_time.h"
#include "platform/sim/kernel/processor_fault.h"

namespace Hostkit::sim {

namespace {

constexpr DWORD kIdFlag = 1U << 21;
constexpr DWORD kAlignmentCheckFlag = 1U << 18;
constexpr DWORD kTimeStampCounterBit = 1U << 4;

// Clock cycles one bit scan of 0x80000000 takes, by processor family.
std::uint64_t BitScanCycles(DWORD family) {
  if (family >= 6) {
    return 38;
  }
  constexpr std::uint64_t kCycles[] = {0, 0, 0, 115, 47, 43};
  return kCycles[family];
}

}  // namespace

}  // namespace Hostkit::sim

namespace Hostkit::platform {

void GetSystemInfo(SYSTEM_INFO* info) {
  auto machine = sim::ActiveMachine();
  const sim::ProcessorFacts& cpu = machine->facts().processor;
  std::memset(info, 0, sizeof *info);
  info->dwOemId = PROCESSOR_ARCHITECTURE_INTEL;
  info->dwPageSize = 4096;
  info->dwAllocationGranularity = 65536;
  info->dwActiveProcessorMask = cpu.affinityMask;
  info->dwNumberOfProcessors = static_cast<DWORD>(std::popcount(cpu.affinityMask));
  info->dwProcessorType = cpu.family <= 3   ? PROCESSOR_INTEL_386
                          : cpu.family == 4 ? PROCESSOR_INTEL_486
                                            : PROCESSOR_INTEL_PENTIUM;
  // Windows 9x leaves the level unset.
  info->wProcessorLevel = machine->isWin9x() ? 0 : static_cast<WORD>(cpu.family);
}

DWORD ToggleableProcessorFlags(DWORD mask) {
  const sim::ProcessorFacts& cpu = sim::ActiveMachine()->facts().processor;
  DWORD toggleable = 0;
  if (cpu.hasCpuid) {
    toggleable |= sim::kIdFlag;
  }
  if (cpu.family >= 4) {
    toggleable |= sim::kAlignmentCheckFlag;
  }
  return mask & toggleable;
}

BOOL Cpuid(DWORD leaf, DWORD registers[4]) {
  const sim::ProcessorFacts& cpu = sim::ActiveMachine()->facts().processor;
  std::fill(registers, registers + 4, 0);
  if (!cpu.hasCpuid) {
    return FALSE;
  }
  if (leaf == 0) {
    char vendor[12] = {};
    cpu.vendor.copy(vendor, sizeof vendor);  // twelve characters, not a C string
    registers[0] = 1;
    std::memcpy(&registers[1], vendor, 4);      // EBX
    std::memcpy(&registers[3], vendor + 4, 4);  // EDX
    std::memcpy(&registers[2], vendor + 8, 4);  // ECX
  } else if (leaf == 1) {
    registers[0] = std::min<DWORD>(cpu.family, 15) << 8;
    registers[3] = cpu.hasTimeStampCounter ? sim::kTimeStampCounterBit : 0;
  }
  return TRUE;
}

std::uint64_t ReadTimeStampCounter() {
  auto machine = sim::ActiveMachine();
  const sim::ProcessorFacts& cpu = machine->facts().processor;
  if (!cpu.hasTimeStampCounter) {
    return 0;
  }
  if (cpu.timeStampCounterFaults) {
    sim::RaiseProcessorFault("RDTSC");
  }
  return sim::ScaleTime(machine->clock().now(), std::uint64_t{cpu.mhz} * 1000000);
}

void BitScanForwardLoop(DWORD iterations) {
  auto machine = sim::ActiveMachine();
  const sim::ProcessorFacts& cpu = machine->facts().processor;
  if (cpu.mhz == 0) {
    return;
  }
  const std::uint64_t cycles = std::uint64_t{iterations} * sim::BitScanCycles(cpu.family);
  machine->clock().advance(sim::TimeOfCount(cycles, std::uint64_t{cpu.mhz} * 1000000));
}

}  // namespace Hostkit::platform
