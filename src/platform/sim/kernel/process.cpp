// Starting programs on the simulated machine: the command line is recorded on the machine, the
// program is not run, and it reports success.
#include "platform/process.h"

#include <string>

#include "hostkit/sim/machine.h"

namespace Hostkit::platform {

std::intptr_t SpawnAndWait(const char* const* argv) {
  if (argv == nullptr || argv[0] == nullptr) {
    return -1;
  }
  try {
    std::string line = argv[0];
    for (const char* const* arg = argv + 1; *arg != nullptr; ++arg) {
      line += ' ';
      line += *arg;
    }
    sim::ActiveMachine()->startedPrograms().push_back(line);
    return 0;
  } catch (...) {
    return -1;
  }
}

}  // namespace Hostkit::platform
