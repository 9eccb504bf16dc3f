// Processor faults on the simulated machine. A simulated instruction that faults calls
// RaiseProcessorFault: inside CallWithFaultHandler the fault unwinds to it; anywhere else the
// process ends, as a fault no handler takes ends a Windows process.
#pragma once

namespace Hostkit::sim {

// What unwinds a faulting routine to its handler; nothing else may catch it.
struct ProcessorFault {
  const char* instruction;
};

[[noreturn]] void RaiseProcessorFault(const char* instruction);

}  // namespace Hostkit::sim
