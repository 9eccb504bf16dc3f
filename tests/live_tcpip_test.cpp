// LiveTcpipInfo against the running system: under Wine the real IP Helper reports this host's
// interfaces, which must be exactly the addresses `ip -4 -o addr` shows, loopback left out.
#include "hostkit/live_tcpip.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/host_ipv4.h"
#include "support/test_machine.h"

namespace {

class LiveHostAddresses : public hostkit_test::PerRelease {};

TEST_P(LiveHostAddresses, AdaptersHoldTheHostsAddresses) {
  std::vector<std::string> expected;
  std::string whyNot;
  if (!hostkit_test::HostIpv4Addresses(expected, whyNot)) {
    GTEST_SKIP() << whyNot;
  }
  std::vector<Hostkit::LiveTcpipInfo::AdapterInfo> adapters;
  ASSERT_TRUE(Hostkit::LiveTcpipInfo().GetAdapterInfo(adapters));
  std::vector<std::string> found;
  for (auto& adapter : adapters) {
    EXPECT_EQ(adapter.Cookie(), adapter.HardwareAddress());
    EXPECT_NE(adapter.IpAddrress().rfind("127.", 0), 0U) << "loopback listed";
    if (adapter.IpAddrress() != "0.0.0.0") {
      found.push_back(adapter.IpAddrress());
      EXPECT_NE(adapter.SubnetMask(), "0.0.0.0") << adapter.IpAddrress();
    }
  }
  std::sort(found.begin(), found.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(found, expected);
}

INSTANTIATE_TEST_SUITE_P(AllReleases, LiveHostAddresses,
                         testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
