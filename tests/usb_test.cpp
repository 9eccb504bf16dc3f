// USB port counts on each release, as the machine reports them: the sim's machines and Wine
// have no USB host controllers, so this checks that the walk runs and that its answers agree.
#include "hostkit/usb.h"

#include <gtest/gtest.h>

#include "support/test_machine.h"

namespace {

using hostkit_test::PerRelease;
using hostkit_test::Release;

class UsbCounts : public PerRelease {};

TEST_P(UsbCounts, AgreeWithEachOtherAndWithSupport) {
  Hostkit::Usb usb;
  const int existing = usb.NumberOfPortsExisting();
  const int open = usb.NumberOfPortsOpen();
  if (GetParam() == Release::Win95 || GetParam() == Release::WinNT4) {
    EXPECT_EQ(existing, -1);
    EXPECT_EQ(open, -1);
    return;
  }
  EXPECT_GE(existing, 0);
  EXPECT_GE(open, 0);
  EXPECT_LE(open, existing);
  EXPECT_EQ(usb.DoesSupportUsb(), existing >= 1);
  // A copy walks afresh and finds the same.
  Hostkit::Usb copy = usb;
  EXPECT_EQ(copy.NumberOfPortsExisting(), existing);
}

INSTANTIATE_TEST_SUITE_P(Releases, UsbCounts, testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
