// Starting programs forwarded to the C run-time.
#include "platform/process.h"

#include <process.h>

namespace Hostkit::platform {

std::intptr_t SpawnAndWait(const char* const* argv) { return ::_spawnvp(_P_WAIT, argv[0], argv); }

}  // namespace Hostkit::platform
