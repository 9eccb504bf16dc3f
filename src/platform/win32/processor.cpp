// The processor: GetSystemInfo forwarded to kernel32, the instructions through the compiler's
// intrinsics.
#include "platform/processor.h"

#include <cpuid.h>
#include <x86intrin.h>

namespace Hostkit::platform {

void GetSystemInfo(SYSTEM_INFO* info) { ::GetSystemInfo(info); }

DWORD ToggleableProcessorFlags(DWORD mask) {
#if defined(__i386__)
  // Flip the bits in a copy of the flags, load it, read the flags back and restore them.
  DWORD before = 0;
  DWORD after = 0;
  asm volatile(
      "pushfl\n\t"
      "popl %0\n\t"
      "movl %0, %1\n\t"
      "xorl %2, %1\n\t"
      "pushl %1\n\t"
      "popfl\n\t"
      "pushfl\n\t"
      "popl %1\n\t"
      "pushl %0\n\t"
      "popfl"
      : "=&r"(before), "=&r"(after)
      : "r"(mask)
      : "cc");
  return (before ^ after) & mask;
#else
  // Every x86-64 processor has CPUID and the alignment-check flag.
  constexpr DWORD kIdFlag = 1U << 21;
  constexpr DWORD kAlignmentCheckFlag = 1U << 18;
  return mask & (kIdFlag | kAlignmentCheckFlag);
#endif
}

BOOL Cpuid(DWORD leaf, DWORD registers[4]) {
  unsigned int a = 0;
  unsigned int b = 0;
  unsigned int c = 0;
  unsigned int d = 0;
  const BOOL present = __get_cpuid_max(0, nullptr) != 0 ? TRUE : FALSE;
  if (present) {
    __cpuid(leaf, a, b, c, d);
  }
  registers[0] = a;
  registers[1] = b;
  registers[2] = c;
  registers[3] = d;
  return present;
}

std::uint64_t ReadTimeStampCounter() { return __rdtsc(); }

void BitScanForwardLoop(DWORD iterations) {
  volatile DWORD value = 0x80000000;
  volatile int sink = 0;
  for (DWORD i = 0; i < iterations; ++i) {
    sink = __builtin_ctz(value);
  }
  (void)sink;
}

}  // namespace Hostkit::platform
