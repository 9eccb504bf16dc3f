// A real processor fault: the undefined instruction UD2.
#include "support/processor_fault.h"

namespace hostkit_test {

void RaiseProcessorFault() { __builtin_trap(); }

}  // namespace hostkit_test
