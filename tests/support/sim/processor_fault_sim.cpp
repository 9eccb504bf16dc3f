// The simulated machine's processor fault, as its faulting instructions raise it.
#include "platform/sim/kernel/processor_fault.h"
#include "support/processor_fault.h"

namespace hostkit_test {

void RaiseProcessorFault() { Hostkit::sim::RaiseProcessorFault("test"); }

}  // namespace hostkit_test
