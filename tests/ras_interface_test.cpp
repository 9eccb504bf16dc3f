// RasInterface against the running Remote Access API (the simulation's or Wine's): operations
// on an entry that does not exist fail with the library's failure values and do not crash,
// whatever the API answers.
#include "hostkit/ras_interface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/test_machine.h"

namespace {

using Hostkit::RasInterface;

constexpr const char* kMissing = "hostkit test entry that does not exist";

class RasInterfaceTest : public hostkit_test::PerRelease {};

TEST_P(RasInterfaceTest, MissingEntryFailsEverywhere) {
  RasInterface rasInterface;
  const auto entries = rasInterface.GetEntries();
  EXPECT_EQ(std::count(entries.begin(), entries.end(), kMissing), 0);
  RasInterface::EntryInfo info;
  EXPECT_FALSE(rasInterface.GetEntry(kMissing, info));
  EXPECT_TRUE(info.name.empty());
  EXPECT_FALSE(rasInterface.Dial(kMissing, 2000));
  EXPECT_FALSE(rasInterface.HangUp(kMissing));
  EXPECT_FALSE(rasInterface.DeleteEntry(kMissing));
  EXPECT_FALSE(rasInterface.CreateEntry("", kMissing, ""));
  for (const auto& connection : rasInterface.GetConnections()) {
    EXPECT_NE(connection.entry, kMissing);
  }
  for (const auto& device : rasInterface.GetDevices()) {
    EXPECT_FALSE(device.name.empty());
  }
  const RasInterface copy = rasInterface;
  EXPECT_EQ(copy.GetLastRasError(), rasInterface.GetLastRasError());
}

INSTANTIATE_TEST_SUITE_P(Releases, RasInterfaceTest, testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
