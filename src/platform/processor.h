// The processor: what GetSystemInfo reports of it, and the instructions the speed and vendor
// queries execute (flag toggling, CPUID, the time-stamp counter, a timed instruction loop).
#pragma once

#include <cstdint>

#include "platform/hardware_types.h"

namespace Hostkit::platform {

void GetSystemInfo(SYSTEM_INFO* info);

// The bits of `mask` that software can toggle in the flags register: bit 21 (ID) exactly when
// the CPUID instruction exists, bit 18 (AC) on 486-class processors and later.
DWORD ToggleableProcessorFlags(DWORD mask);
// CPUID of `leaf`: EAX, EBX, ECX, EDX into `registers`. FALSE, with zeros, when the processor
// has no CPUID instruction.
BOOL Cpuid(DWORD leaf, DWORD registers[4]);
// The time-stamp counter (RDTSC); only valid when CPUID reports one.
std::uint64_t ReadTimeStampCounter();
// Executes `iterations` bit-scan-forward instructions of 0x80000000 back to back.
void BitScanForwardLoop(DWORD iterations);

}  // namespace Hostkit::platform
