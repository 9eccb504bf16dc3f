// A processor fault raised on purpose: a simulated one on the simulated machine, a real one
// (an illegal instruction) on Windows.
#pragma once

namespace hostkit_test {

void RaiseProcessorFault();

}  // namespace hostkit_test
