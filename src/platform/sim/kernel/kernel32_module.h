// "kernel32.dll" as LoadLibraryA finds it on the simulated machine.
#pragma once

#include "hostkit/sim/machine.h"

namespace Hostkit::sim {

// Adds the module with GetDiskFreeSpaceExA, except on Windows 95, whose first release lacks
// the call.
void AddKernel32Module(Machine& machine);

}  // namespace Hostkit::sim
