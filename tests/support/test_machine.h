// Machines for the tests: every test runs on a fresh machine of the release it is about.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "hostkit/sim/machine.h"

namespace hostkit_test {

using Hostkit::sim::Release;

// The six Windows releases, oldest first.
std::vector<Release> AllReleases();

// Activates and returns a fresh machine of `release`: its registry holds only the predefined
// roots.
std::shared_ptr<Hostkit::sim::Machine> UseFreshMachine(Release release);

// Test-name suffix for tests parameterised by release ("win95", "nt40", ...).
std::string ReleaseParamName(const testing::TestParamInfo<Release>& info);

// A test fixture parameterised by release, with a fresh machine of that release active.
class PerRelease : public testing::TestWithParam<Release> {
 protected:
  void SetUp() override { machine_ = UseFreshMachine(GetParam()); }
  void TearDown() override { Hostkit::sim::ActivateMachine(nullptr); }
  bool isWin9x() const { return Hostkit::sim::IsWin9xFamily(GetParam()); }

  std::shared_ptr<Hostkit::sim::Machine> machine_;
};

}  // namespace hostkit_test
