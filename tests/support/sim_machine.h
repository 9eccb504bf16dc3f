// Direct access to the simulated machine, for the tests that run on the simulation only
// (files named *_sim_test.cpp).
#pragma once

#include <memory>

#include "hostkit/sim/machine.h"
#include "support/test_machine.h"

namespace hostkit_test {

// Activates and returns a fresh machine of `release`: its registry holds only the predefined
// roots.
std::shared_ptr<Hostkit::sim::Machine> UseFreshMachine(Release release);

// A fixture parameterised by release that also hands the test its simulated machine.
class SimPerRelease : public PerRelease {
 protected:
  void SetUp() override {
    PerRelease::SetUp();
    machine_ = Hostkit::sim::ActiveMachine();
  }

  std::shared_ptr<Hostkit::sim::Machine> machine_;
};

}  // namespace hostkit_test
