// OS on each release as it is installed: the simulated machine's typical version records and
// the releases Wine emulates must give the same answers.
#include "hostkit/os.h"

#include <gtest/gtest.h>

#include "support/test_machine.h"

namespace {

using Hostkit::OS;
using hostkit_test::PerRelease;
using hostkit_test::Release;

struct Expected {
  OS::TYPE type;
  OS::EXACT_TYPE exact;
  int major;
  int minor;
  double version;
  int servicePack;
};

Expected ExpectedFor(Release release) {
  switch (release) {
    case Release::Win95:
      return {OS::TYPE_WIN95, OS::EXACT_WIN95, 4, 0, 4.0, -1};
    case Release::Win98:  // Second Edition: " A " in the service text
      return {OS::TYPE_WIN98, OS::EXACT_WIN98_A, 4, 10, 4.1, -1};
    case Release::WinME:
      return {OS::TYPE_WINME, OS::EXACT_WINME, 4, 90, 4.9, -1};
    case Release::WinNT4:  // "Service Pack 6a"
      return {OS::TYPE_WINNT4, OS::EXACT_WINNT4_SP6, 4, 0, 4.0, 6};
    case Release::Win2000:  // service pack 4 is past the last one the table names
      return {OS::TYPE_WIN2000, OS::EXACT_WIN2000_PRO_SPX, 5, 0, 5.0, 4};
    case Release::WinXP:
      return {OS::TYPE_WINXP, OS::EXACT_WINXP_PRO, 5, 1, 5.1, 3};
    case Release::Unknown:
      break;
  }
  return {OS::TYPE_UNKNOWN, OS::EXACT_UNKNOWN, -1, -1, -1.0, -1};
}

class OSOnRelease : public PerRelease {};

TEST_P(OSOnRelease, ReportsTheReleaseItRunsOn) {
  const Expected expected = ExpectedFor(GetParam());
  OS os;
  EXPECT_EQ(os.Type(), expected.type);
  EXPECT_EQ(os.ExactType(), expected.exact);
  EXPECT_EQ(os.MajorVersion(), expected.major);
  EXPECT_EQ(os.MinorVersion(), expected.minor);
  EXPECT_DOUBLE_EQ(os.Version(), expected.version);
  EXPECT_EQ(os.NTSP(), expected.servicePack);
  EXPECT_EQ(os.IsWin9x(), isWin9x());
  EXPECT_EQ(os.IsWinNT(), !isWin9x());
  // The test program runs as an administrator in both builds; Windows 9x always answers yes.
  EXPECT_TRUE(os.IsUserAdministrator());
}

INSTANTIATE_TEST_SUITE_P(Releases, OSOnRelease, testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
