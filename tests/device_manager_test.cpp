// DeviceManager against the running system (the simulation's empty machine or Wine's SetupAPI
// and registry): whatever each class lists is a described device, and the free interrupts and
// DMA channels are ascending numbers of the controller's range without the cascade lines.
#include "hostkit/device_manager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/test_machine.h"

namespace {

using Hostkit::DeviceManager;

class DeviceManagerTest : public hostkit_test::PerRelease {};

void ExpectFreeNumbers(const std::vector<int>& free, int count, int cascade) {
  EXPECT_TRUE(std::is_sorted(free.begin(), free.end()));
  EXPECT_EQ(std::adjacent_find(free.begin(), free.end()), free.end());
  for (int number : free) {
    EXPECT_TRUE(number >= 0 && number < count && number != cascade) << number;
  }
}

TEST_P(DeviceManagerTest, ListsWhatTheSystemReports) {
  DeviceManager manager;
  for (int c = Hostkit::DEVICE_CLASS_NETWORK; c <= Hostkit::DEVICE_CLASS_CDROM; ++c) {
    for (const auto& device : manager.GetDevices(static_cast<Hostkit::DEVICE_CLASS>(c))) {
      EXPECT_FALSE(device.name.empty() && device.driver.empty()) << "class " << c;
      for (int irq : device.resources.irqs) {
        EXPECT_GE(irq, 0);
      }
    }
  }
  ExpectFreeNumbers(manager.GetFreeIRQs(), 16, 2);
  ExpectFreeNumbers(manager.GetFreeDMAChannels(), 8, 4);
}

INSTANTIATE_TEST_SUITE_P(Releases, DeviceManagerTest,
                         testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
