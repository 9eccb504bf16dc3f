// Starting programs: the C run-time's _spawnvp in wait mode.
#pragma once

#include <cstdint>

namespace Hostkit::platform {

// Starts the program argv[0] (searched along PATH) with the null-terminated argument list `argv`
// and waits for it to end. The program's exit code, or -1 when it could not be started.
std::intptr_t SpawnAndWait(const char* const* argv);

}  // namespace Hostkit::platform
