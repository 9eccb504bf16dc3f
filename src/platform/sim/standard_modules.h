// The modules every simulated machine starts with; a profile or a test may take entries away.
#pragma once

#include "hostkit/sim/machine.h"

namespace Hostkit::sim {

// "shell32.dll" with SHGetSpecialFolderPathA.
void AddStandardModules(Machine& machine);

// "setupapi.dll" with the device-information calls (Windows 98 and later, 2000 and XP).
void AddSetupApiModule(Machine& machine);

}  // namespace Hostkit::sim
