// Processor faults on the simulated machine: the handler is a depth count on the thread, and a
// fault under it unwinds the routine as a C++ exception of its own type.
#include "platform/fault_guard.h"

#include <cstdio>
#include <cstdlib>

#include "platform/sim/kernel/processor_fault.h"

namespace Hostkit::sim {

namespace {

thread_local int guardDepth = 0;

}  // namespace

void RaiseProcessorFault(const char* instruction) {
  if (guardDepth > 0) {
    throw ProcessorFault{instruction};
  }
  std::fprintf(stderr, "unhandled processor fault in %s: the process ends\n", instruction);
  std::abort();
}

}  // namespace Hostkit::sim

namespace Hostkit::platform {

BOOL CallWithFaultHandler(LPTHREAD_START_ROUTINE routine, void* parameter, DWORD* result) {
  struct Depth {
    Depth() { ++sim::guardDepth; }
    ~Depth() { --sim::guardDepth; }
  } depth;
  try {
    const DWORD value = routine(parameter);
    if (result != nullptr) {
      *result = value;
    }
    return TRUE;
  } catch (const sim::ProcessorFault&) {
    return FALSE;
  }
}

}  // namespace Hostkit::platform
