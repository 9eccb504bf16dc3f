// The tests' machines on the simulation: a fresh machine of the asked release for every test.
#include "support/sim_machine.h"

namespace hostkit_test {

std::shared_ptr<Hostkit::sim::Machine> UseFreshMachine(Release release) {
  auto machine = std::make_shared<Hostkit::sim::Machine>(release);
  Hostkit::sim::ActivateMachine(machine);
  return machine;
}

bool OnRealWindows() { return false; }

bool UseRelease(Release release, std::string& /*whyNot*/) {
  UseFreshMachine(release);
  return true;
}

void FinishRelease() { Hostkit::sim::ActivateMachine(nullptr); }

}  // namespace hostkit_test
