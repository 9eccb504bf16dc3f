// Tweaks where Wine's registry cannot hold the case: a machine without the keys the writes need,
// and the current configuration's Internet Settings.
#include <gtest/gtest.h>

#include "hostkit/broadband_tweak.h"
#include "hostkit/lan_switch.h"
#include "hostkit/regwiz.h"
#include "support/sim_machine.h"

namespace {

using Hostkit::sim::Release;
using hostkit_test::UseFreshMachine;

TEST(TweaksSim, WritesThatFindNoKeyAreNotReported) {
  for (const Release release : {Release::Win98, Release::WinNT4, Release::Win2000}) {
    UseFreshMachine(release);
    EXPECT_TRUE(Hostkit::BroadbandPerformanceTweak().TweakForPureEthernet());
    std::vector<std::string> roots;
    Hostkit::RegWiz().GetSubKeyNames(HKEY_LOCAL_MACHINE, "", roots);
    EXPECT_EQ(roots, std::vector<std::string>{}) << "no key is created";
    EXPECT_FALSE(Hostkit::EnableLAN(false));
    EXPECT_TRUE(Hostkit::IsLANEnabled());
  }
}

TEST(TweaksSim, OneSuccessfulWriteIsEnough) {
  UseFreshMachine(Release::Win98);
  Hostkit::RegWiz reg;
  const char* settings = "Software\\Microsoft\\windows\\CurrentVersion\\Internet Settings";
  ASSERT_TRUE(reg.CreateKey(HKEY_CURRENT_CONFIG, settings));
  EXPECT_TRUE(Hostkit::EnableLAN(false));
  unsigned long autodial = 0;
  EXPECT_TRUE(reg.GetDwordKeyVal(HKEY_CURRENT_CONFIG, settings, "EnableAutodial", autodial));
  EXPECT_EQ(autodial, 1UL);
  // The switch reads only the user's and the machine's value.
  EXPECT_TRUE(Hostkit::IsLANEnabled());
  Hostkit::sim::ActivateMachine(nullptr);
}

}  // namespace
