// DHCP release and renewal on every release of the simulation: the request goes to the family's
// DHCP client, the server model answers, and the verdict follows the live state read afterwards.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "hostkit/dhcp_release_renew.h"
#include "hostkit/live_tcpip.h"
#include "hostkit/sim/machine.h"
#include "support/sim_machine.h"

namespace {

using Hostkit::DhcpReleaseRenew;
using Hostkit::LiveTcpipInfo;
using Hostkit::sim::DhcpRequest;
using Hostkit::sim::LiveInterface;

constexpr const char* kCard = "00-0c-76-3a-5e-21";    // on DHCP, its server answers
constexpr const char* kStatic = "00-60-08-ab-cd-01";  // a fixed address
constexpr const char* kLonely = "00-e0-4c-39-01-02";  // on DHCP, no server answers
constexpr std::uint64_t kMs = 1000000;                // virtual clock ticks per millisecond

class DhcpReleaseRenewSim : public hostkit_test::SimPerRelease {
 protected:
  void SetUp() override {
    SimPerRelease::SetUp();
    auto& network = machine_->liveNetwork();
    network.interfaces = {
        Interface(2, "{6A2B4C1E-8F3D-4E2A-9B7C-1D5E3F7A9C2B}", {0x00, 0x0c, 0x76, 0x3a, 0x5e, 0x21},
                  "192.168.1.10", true),
        Interface(3, "{7E9A0B12-C3D4-4E5F-8061-72A3B4C5D6E7}", {0x00, 0x60, 0x08, 0xab, 0xcd, 0x01},
                  "10.0.0.5", false),
        Interface(4, "{91A2B3C4-D5E6-47F8-9A0B-1C2D3E4F5061}", {0x00, 0xe0, 0x4c, 0x39, 0x01, 0x02},
                  "", true),
    };
    network.interfaces[0].dhcpServer = "192.168.1.1";
    network.interfaces[0].server = {"192.168.1.1", "192.168.1.20", "255.255.255.0", "192.168.1.1",
                                    ""};
    network.routes = {{"0.0.0.0", "0.0.0.0", "192.168.1.1", 2}};
  }

  LiveInterface Interface(DWORD index, const std::string& name, std::vector<BYTE> hardware,
                          const std::string& address, bool dhcp) {
    LiveInterface interface;
    interface.index = index;
    interface.name = machine_->isWin9x() ? "000" + std::to_string(index) : name;
    interface.description = "Adapter " + std::to_string(index);
    interface.hardwareAddress = std::move(hardware);
    interface.address = address;
    interface.mask = address.empty() ? "" : "255.255.255.0";
    interface.dhcp = dhcp;
    return interface;
  }

  // The live record with this hardware address; fails the test when there is none.
  LiveTcpipInfo::AdapterInfo Live(const std::string& hardware) {
    std::vector<LiveTcpipInfo::AdapterInfo> adapters;
    EXPECT_TRUE(LiveTcpipInfo().GetAdapterInfo(adapters));
    for (auto& adapter : adapters) {
      if (adapter.HardwareAddress() == hardware) {
        return adapter;
      }
    }
    ADD_FAILURE() << "no live adapter " << hardware;
    return {};
  }

  std::uint64_t Now() const { return machine_->clock().now(); }
  const std::vector<DhcpRequest>& Requests() { return machine_->liveNetwork().dhcpRequests; }
  std::string Via() const { return machine_->isWin9x() ? "vxd" : "iphlpapi"; }

  DhcpReleaseRenew dhcp_;
};

TEST_P(DhcpReleaseRenewSim, ReleaseThenRenewFollowTheLease) {
  std::uint64_t start = Now();
  EXPECT_TRUE(dhcp_.Release(kCard));
  EXPECT_EQ(Now() - start, 1000 * kMs);
  EXPECT_EQ(Live(kCard).IpAddrress(), "0.0.0.0");
  EXPECT_EQ(Live(kCard).DefaultGateway(), "");
  ASSERT_EQ(Requests().size(), 1U);
  EXPECT_EQ(Requests()[0].kind, DhcpRequest::Kind::Release);
  EXPECT_EQ(Requests()[0].via, Via());
  EXPECT_EQ(Requests()[0].interfaceIndex, 2U);

  start = Now();
  EXPECT_TRUE(dhcp_.RenewUsingCookie(Live(kCard).Cookie()));
  // Windows 9x renews by a release, a pause and a renewal.
  EXPECT_EQ(Now() - start, (machine_->isWin9x() ? 3900 : 3700) * kMs);
  EXPECT_EQ(Live(kCard).IpAddrress(), "192.168.1.20");
  EXPECT_EQ(Live(kCard).DefaultGateway(), "192.168.1.1");
  ASSERT_EQ(Requests().size(), machine_->isWin9x() ? 3U : 2U);
  EXPECT_EQ(Requests().back().kind, DhcpRequest::Kind::Renew);
  EXPECT_EQ(Requests().back().via, Via());
}

// A renewal no server answers leaves an automatic private address: not usable, so false.
TEST_P(DhcpReleaseRenewSim, RenewalWithoutServerFails) {
  EXPECT_FALSE(dhcp_.Renew(kLonely));
  EXPECT_EQ(Live(kLonely).IpAddrress().substr(0, 8), "169.254.");
  EXPECT_EQ(Live(kLonely).SubnetMask(), "255.255.0.0");
}

// A fixed address is never released; an adapter nobody has is not an error.
TEST_P(DhcpReleaseRenewSim, VerdictsForStaticAndUnknownAdapters) {
  EXPECT_FALSE(dhcp_.Release(kStatic));
  EXPECT_FALSE(dhcp_.Renew(kStatic));
  EXPECT_EQ(Live(kStatic).IpAddrress(), "10.0.0.5");
  EXPECT_TRUE(dhcp_.Release("00-11-22-33-44-55"));
  EXPECT_TRUE(dhcp_.ReleaseUsingCookie(""));
}

TEST_P(DhcpReleaseRenewSim, AllGoesThroughEveryDhcpAdapterAndReportsAnyFailure) {
  EXPECT_FALSE(dhcp_.RenewAll());  // the lonely adapter's renewal fails
  EXPECT_EQ(Live(kCard).IpAddrress(), "192.168.1.20");
  EXPECT_TRUE(dhcp_.ReleaseAll());
  EXPECT_EQ(Live(kCard).IpAddrress(), "0.0.0.0");
  EXPECT_EQ(Live(kStatic).IpAddrress(), "10.0.0.5");
  for (auto& interface : machine_->liveNetwork().interfaces) {
    interface.dhcp = false;
  }
  const std::uint64_t start = Now();
  EXPECT_TRUE(dhcp_.ReleaseAll());
  EXPECT_TRUE(dhcp_.RenewAll());
  EXPECT_EQ(Now(), start);  // nothing to wait for
}

// On a system of no known family (here Windows 3.1 with Win32s) nothing is asked and nothing
// waited for: every request fails at once.
TEST_P(DhcpReleaseRenewSim, UnknownSystemFailsAtOnce) {
  machine_->facts().version.platform = VER_PLATFORM_WIN32s;
  const std::uint64_t start = Now();
  EXPECT_FALSE(dhcp_.Release(kCard));
  EXPECT_FALSE(dhcp_.Renew(kCard));
  EXPECT_FALSE(dhcp_.ReleaseAll());
  EXPECT_FALSE(dhcp_.RenewAll());
  EXPECT_EQ(Now(), start);
  EXPECT_TRUE(Requests().empty());
}

INSTANTIATE_TEST_SUITE_P(Releases, DhcpReleaseRenewSim,
                         testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
