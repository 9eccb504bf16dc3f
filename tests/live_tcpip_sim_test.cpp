// LiveTcpipInfo's adapter records on every release of the simulation, through IP Helper and
// through the SNMP agent, over the live network of the release's network fixture.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hostkit/live_tcpip.h"
#include "hostkit/sim/machine.h"
#include "hostkit/static_tcpip.h"
#include "hostkit/strings.h"
#include "support/network_fixture.h"
#include "support/sim_machine.h"

namespace {

using Hostkit::LiveTcpipInfo;
using Hostkit::StaticTcpipInfo;
using hostkit_test::Release;
using Record = LiveTcpipInfo::AdapterInfo;

std::string Narrow(const Hostkit::wstring& text) {
  std::string narrow;
  Hostkit::ConvertUnicodeToANSI(text, narrow);
  return narrow;
}

// Every member but the description, which the two paths take from different places on
// 2000/XP.
std::string Members(Record& r) {
  return Narrow(r.ServiceName()) + " | " + r.IpAddrress() + " | " + r.SubnetMask() + " | " +
         r.DefaultGateway() + " | " + r.HardwareAddress() + " | " + r.DhcpServer() + " | " +
         (r.IsDhcp() ? "dhcp" : "static") + " | " + (r.IsEthernetAdapter() ? "ethernet" : "ppp");
}

class LiveTcpipSim : public hostkit_test::SimPerRelease {
 protected:
  void LoadFixture() {
    std::string error;
    ASSERT_TRUE(fixture_.Load(GetParam(), error)) << error;
    machine_ = Hostkit::sim::ActiveMachine();
    ASSERT_FALSE(machine_->liveNetwork().interfaces.empty());
  }

  std::vector<Record> Read() {
    std::vector<Record> records;
    EXPECT_TRUE(LiveTcpipInfo().GetAdapterInfo(records));
    return records;
  }

  bool HasIpHelper() { return machine_->modules().count("IPHLPAPI.DLL") != 0; }
  void WithoutIpHelper() { machine_->modules().erase("IPHLPAPI.DLL"); }

  hostkit_test::NetworkFixture fixture_;
};

// The SNMP agent's tables and IP Helper's lists describe one machine alike; only the
// description differs on 2000/XP, where IP Helper's is replaced by the connection's name.
TEST_P(LiveTcpipSim, IpHelperAndSnmpGiveTheSameRecords) {
  LoadFixture();
  if (!HasIpHelper()) {
    GTEST_SKIP() << "this release has no IP Helper";
  }
  std::vector<Record> helper = Read();
  WithoutIpHelper();
  std::vector<Record> snmp = Read();
  ASSERT_EQ(helper.size(), machine_->liveNetwork().interfaces.size());
  ASSERT_EQ(snmp.size(), helper.size());
  std::vector<StaticTcpipInfo::AdapterInfo> stored;
  StaticTcpipInfo().GetAdapterInfo(stored);
  const bool win2000OrXp = GetParam() == Release::Win2000 || GetParam() == Release::WinXP;
  for (size_t i = 0; i < helper.size(); ++i) {
    SCOPED_TRACE(Narrow(snmp[i].Description()));
    EXPECT_EQ(Members(helper[i]), Members(snmp[i]));
    EXPECT_EQ(helper[i].Cookie(), helper[i].HardwareAddress());
    EXPECT_NE(helper[i].IsPppAdapter(), helper[i].IsEthernetAdapter());
    EXPECT_EQ(snmp[i].Description(),
              Hostkit::wstring(machine_->liveNetwork().interfaces[i].description.begin(),
                               machine_->liveNetwork().interfaces[i].description.end()));
    Hostkit::wstring expected = snmp[i].Description();
    for (auto& adapter : stored) {
      if (win2000OrXp && adapter.ServiceName() == helper[i].ServiceName()) {
        expected = adapter.Name();
      }
    }
    EXPECT_EQ(helper[i].Description(), expected);
    if (machine_->isWin9x()) {
      EXPECT_TRUE(helper[i].ServiceName().empty());
    } else {
      EXPECT_TRUE(helper[i].DhcpServer().empty());  // never reported on the NT family
    }
  }
}

// Every fixture has a DHCP adapter; on 9x its server comes from the DHCP client, and without
// the client's answer it is not taken from IP Helper's entry.
TEST_P(LiveTcpipSim, DhcpFactsByFamily) {
  LoadFixture();
  bool sawDhcp = false;
  for (Record& r : Read()) {
    if (!r.IsDhcp()) {
      continue;
    }
    sawDhcp = true;
    EXPECT_EQ(r.DhcpServer().empty(), !machine_->isWin9x()) << Members(r);
  }
  EXPECT_TRUE(sawDhcp);
  if (machine_->isWin9x()) {
    machine_->modules().erase("vdhcp.386");  // the DHCP VxD is not loaded
    for (Record& r : Read()) {
      EXPECT_TRUE(r.DhcpServer().empty()) << Members(r);
    }
  }
}

TEST_P(LiveTcpipSim, AddressLessAdapterAndTheLaterOfTwoDefaultRoutes) {
  LoadFixture();
  auto& network = machine_->liveNetwork();
  auto& first = network.interfaces.front();
  first.address.clear();
  first.mask.clear();
  std::erase_if(network.routes,
                [&](const Hostkit::sim::LiveRoute& r) { return r.interfaceIndex == first.index; });
  auto& second = network.interfaces.back();
  network.routes.push_back({"0.0.0.0", "0.0.0.0", "172.16.0.1", second.index});
  network.routes.push_back({"0.0.0.0", "0.0.0.0", "172.16.0.254", second.index});
  for (bool helper : {true, false}) {
    if (helper && !HasIpHelper()) {
      continue;
    }
    if (!helper) {
      WithoutIpHelper();
    }
    std::vector<Record> records = Read();
    ASSERT_EQ(records.size(), network.interfaces.size());
    EXPECT_EQ(records.front().IpAddrress(), "0.0.0.0");
    EXPECT_EQ(records.front().SubnetMask(), "0.0.0.0");
    EXPECT_EQ(records.front().DefaultGateway(), "");
    if (helper) {
      EXPECT_EQ(records.back().DefaultGateway(), "172.16.0.254");
    }
  }
}

TEST_P(LiveTcpipSim, NoSourceGivesFalseAndAnEmptyList) {
  LoadFixture();
  WithoutIpHelper();
  machine_->modules().erase("INETMIB1.DLL");
  std::vector<Record> records(2);
  EXPECT_FALSE(LiveTcpipInfo().GetAdapterInfo(records));
  EXPECT_TRUE(records.empty());
}

INSTANTIATE_TEST_SUITE_P(Releases, LiveTcpipSim, testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
