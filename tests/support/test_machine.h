// The machine a test runs on, in both builds.
//
// On the simulated machine every test gets a fresh machine of the release it is about. Under
// Wine the release is the one the Wine prefix emulates for the whole run: a test about another
// release skips, and the registry keys tests write are cleared around every test.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hostkit/sim/machine.h"

namespace hostkit_test {

using Hostkit::sim::Release;

// The six Windows releases, oldest first.
std::vector<Release> AllReleases();
bool IsWin9x(Release release);
// "win95", "win98", "winme", "nt40", "win2k", "winxp": Wine's names for them.
std::string ReleaseTag(Release release);

// Test-name suffix for tests parameterised by release.
std::string ReleaseParamName(const testing::TestParamInfo<Release>& info);

// Whether the tests run against a real Win32 implementation (Wine) instead of the simulation.
bool OnRealWindows();

// Prepares the running test for `release`. False, with the reason, when the test cannot run on
// it here (under Wine: another release is emulated).
bool UseRelease(Release release, std::string& whyNot);
// Undoes what UseRelease and the test left behind.
void FinishRelease();

// A test fixture parameterised by release.
class PerRelease : public testing::TestWithParam<Release> {
 protected:
  void SetUp() override {
    std::string whyNot;
    if (!UseRelease(GetParam(), whyNot)) {
      GTEST_SKIP() << whyNot;
    }
  }
  void TearDown() override { FinishRelease(); }
  bool isWin9x() const { return IsWin9x(GetParam()); }
};

// Skips the current test under Wine, naming what Wine does differently or lacks.
#define HOSTKIT_SKIP_ON_WINE(reason)                  \
  do {                                                \
    if (::hostkit_test::OnRealWindows()) {            \
      GTEST_SKIP() << "not under Wine: " << (reason); \
    }                                                 \
  } while (false)

}  // namespace hostkit_test
