// IP Helper, the DHCP client module and the Windows 9x DHCP VxD of the simulated machine, and
// the library's bindings over them: the table calls' size protocol, the adapter rows and DNS
// facts compared with the machine's live network, and lease requests through each mechanism.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "hostkit/sim/profile.h"
#include "live/dhcp_client.h"
#include "live/hardware_address_text.h"
#include "live/ip_helper_binding.h"
#include "platform/iphlpapi.h"
#include "platform/modules.h"
#include "support/network_fixture.h"
#include "support/sim_machine.h"

namespace {

using Hostkit::sim::LiveInterface;
using Hostkit::sim::LiveNetwork;
using hostkit_test::Release;
namespace ip = Hostkit::platform::iphlpapi;
namespace live = Hostkit::live;

template <class F>
F Entry(const char* module, const char* name) {
  HMODULE handle = Hostkit::platform::LoadLibraryA(module);
  return handle == nullptr
             ? nullptr
             : Hostkit::platform::ProcAs<F>(Hostkit::platform::GetProcAddress(handle, name));
}

Hostkit::wstring Wide(const std::string& text) {
  return Hostkit::wstring(text.begin(), text.end());
}

std::string HardwareText(const LiveInterface& interface) {
  return live::FormatHardwareAddress(interface.hardwareAddress.data(),
                                     interface.hardwareAddress.size());
}

class NetworkMachine : public hostkit_test::SimPerRelease {
 protected:
  void SetUp() override {
    SimPerRelease::SetUp();
    if (IsSkipped()) {
      return;
    }
    std::string error;
    ASSERT_TRUE(fixture_.Load(GetParam(), error)) << error;
    machine_ = Hostkit::sim::ActiveMachine();
    ASSERT_EQ(network().interfaces.size(), 2U);
  }
  LiveNetwork& network() { return machine_->liveNetwork(); }
  LiveInterface& dhcpCard() { return network().interfaces[0]; }
  LiveInterface& staticCard() { return network().interfaces[1]; }

  hostkit_test::NetworkFixture fixture_;
};

using IpHelperModule = NetworkMachine;

TEST_P(IpHelperModule, TablesAnswerTheSizeNeededThenFill) {
  const auto getAdapters = Entry<ip::GetAdaptersInfoProc>(ip::kModule, ip::kGetAdaptersInfo);
  const auto getRoutes = Entry<ip::GetIpForwardTableProc>(ip::kModule, ip::kGetIpForwardTable);
  const auto getInterfaces = Entry<ip::GetInterfaceInfoProc>(ip::kModule, ip::kGetInterfaceInfo);
  const auto getParams = Entry<ip::GetNetworkParamsProc>(ip::kModule, ip::kGetNetworkParams);
  if (GetParam() == Release::Win95) {
    EXPECT_EQ(getAdapters, nullptr);
    return;
  }
  ASSERT_TRUE(getAdapters && getRoutes && getInterfaces && getParams);
  EXPECT_EQ(Entry<FARPROC>("dhcpcsvc.dll", "DhcpAcquireParameters") == nullptr, isWin9x());

  // Adapters: 111 with the size for both entries, also one byte short; then the linked list.
  ULONG size = 0;
  EXPECT_EQ(getAdapters(nullptr, &size), ip::kBufferOverflow);
  EXPECT_EQ(size, 2 * sizeof(ip::IpAdapterInfo));
  std::vector<ip::IpAdapterInfo> adapters(2);
  size -= 1;
  EXPECT_EQ(getAdapters(adapters.data(), &size), ip::kBufferOverflow);
  ASSERT_EQ(getAdapters(adapters.data(), &size), 0U);
  ASSERT_EQ(adapters[0].next, &adapters[1]);
  EXPECT_EQ(adapters[1].next, nullptr);
  EXPECT_EQ(std::string(adapters[1].adapterName), staticCard().name);
  EXPECT_EQ(adapters[1].index, staticCard().index);

  // Routes and interfaces: 122 with the size.
  size = 0;
  EXPECT_EQ(getRoutes(nullptr, &size, FALSE), ip::kInsufficientBuffer);
  EXPECT_EQ(size, sizeof(DWORD) + network().routes.size() * sizeof(ip::IpForwardRow));
  std::vector<BYTE> routes(size);
  ASSERT_EQ(getRoutes(reinterpret_cast<ip::IpForwardTable*>(routes.data()), &size, FALSE), 0U);
  EXPECT_EQ(reinterpret_cast<ip::IpForwardTable*>(routes.data())->numEntries,
            network().routes.size());
  size = 0;
  EXPECT_EQ(getInterfaces(nullptr, &size), ip::kInsufficientBuffer);
  std::vector<BYTE> interfaces(size);
  ASSERT_EQ(getInterfaces(reinterpret_cast<ip::IpInterfaceInfo*>(interfaces.data()), &size), 0U);
  EXPECT_EQ(reinterpret_cast<ip::IpInterfaceInfo*>(interfaces.data())->numAdapters, 2);

  // Network parameters: 111, then every DNS server linked inside the buffer.
  size = 0;
  EXPECT_EQ(getParams(nullptr, &size), ip::kBufferOverflow);
  std::vector<std::uint64_t> params(size / 8 + 1);
  auto* info = reinterpret_cast<ip::FixedInfo*>(params.data());
  ASSERT_EQ(getParams(info, &size), 0U);
  std::vector<std::string> servers;
  for (const ip::IpAddrString* server = &info->dnsServerList; server; server = server->next) {
    servers.emplace_back(server->ipAddress);
  }
  EXPECT_EQ(servers, network().dnsServers);

  // No adapters at all: no data.
  network().interfaces.clear();
  size = 0;
  EXPECT_EQ(getAdapters(nullptr, &size), ip::kNoData);
}

TEST_P(IpHelperModule, BindingRowsFollowTheLiveNetwork) {
  live::IpHelperBinding binding;
  std::vector<live::IpHelperRow> rows;
  if (GetParam() == Release::Win95) {
    EXPECT_FALSE(binding.Usable());
    EXPECT_FALSE(binding.AdapterRows(rows));
    return;
  }
  // A second default route through the DHCP card: the later one is its gateway. Each card
  // takes only the routes through its own index.
  network().routes.push_back({"0.0.0.0", "0.0.0.0", "10.1.2.3", staticCard().index});
  network().routes.push_back({"0.0.0.0", "0.0.0.0", "10.9.8.7", dhcpCard().index});
  ASSERT_TRUE(binding.AdapterRows(rows));
  ASSERT_EQ(rows.size(), 2U);
  for (std::size_t i = 0; i < 2; ++i) {
    const LiveInterface& interface = network().interfaces[i];
    EXPECT_EQ(rows[i].description, Wide(interface.name));  // exchanged, as documented
    EXPECT_EQ(rows[i].serviceName, Wide(interface.description));
    EXPECT_EQ(rows[i].ipAddress, interface.address);
    EXPECT_EQ(rows[i].subnetMask, interface.mask);
    EXPECT_EQ(rows[i].hardwareAddress, HardwareText(interface));
    EXPECT_EQ(rows[i].dhcpServer, interface.dhcpServer);
    EXPECT_EQ(rows[i].dhcp, interface.dhcp);
    EXPECT_TRUE(rows[i].ethernet);
  }
  EXPECT_EQ(rows[0].defaultGateway, "10.9.8.7");
  EXPECT_EQ(rows[1].defaultGateway, "10.1.2.3");

  std::vector<std::string> servers;
  std::string domain;
  ASSERT_TRUE(binding.DnsServers(servers));
  ASSERT_TRUE(binding.DomainName(domain));
  EXPECT_EQ(servers, network().dnsServers);
  EXPECT_EQ(domain, network().domain);
}

// The lease requests of the release's own mechanisms, each checked against the live network.
TEST_P(IpHelperModule, LeaseRequestsChangeTheLiveNetwork) {
  const std::string leased = dhcpCard().address;
  const std::string dhcpText = HardwareText(dhcpCard());
  const auto expectCycle = [&](auto release, auto renew, const char* via) {
    const std::size_t requests = network().dhcpRequests.size();
    EXPECT_TRUE(release()) << via;
    EXPECT_EQ(dhcpCard().address, "") << via;
    EXPECT_TRUE(renew()) << via;
    EXPECT_EQ(dhcpCard().address, leased) << via;
    ASSERT_EQ(network().dhcpRequests.size(), requests + 2) << via;
    EXPECT_EQ(network().dhcpRequests.back().via, via);
  };
  if (isWin9x()) {
    std::vector<live::VxdDhcpEntry> entries;
    ASSERT_TRUE(live::QueryDhcpVxd(entries));
    ASSERT_EQ(entries.size(), 2U);
    for (std::size_t i = 0; i < 2; ++i) {
      EXPECT_EQ(entries[i].hardwareAddress, HardwareText(network().interfaces[i]));
      EXPECT_EQ(entries[i].dhcpServer, network().interfaces[i].dhcpServer);
      EXPECT_EQ(entries[i].dhcp, network().interfaces[i].dhcp);
    }
    std::string domain;
    ASSERT_TRUE(live::QueryDhcpVxdDomain(domain));
    EXPECT_EQ(domain, network().domain);
    expectCycle([&] { return live::VxdReleaseLease(dhcpText); },
                [&] { return live::VxdRenewLease(dhcpText); }, "vxd");
    EXPECT_FALSE(live::VxdReleaseLease(HardwareText(staticCard())));
    EXPECT_FALSE(live::VxdRenewLease("00-00-00-00-00-01"));
    machine_->modules().erase("vdhcp.386");  // a machine without the VxD
    EXPECT_FALSE(live::QueryDhcpVxd(entries));
  } else {
    std::vector<live::VxdDhcpEntry> entries;
    EXPECT_FALSE(live::QueryDhcpVxd(entries));
    EXPECT_FALSE(live::VxdReleaseLease(dhcpText));
    const std::string name = dhcpCard().name;
    expectCycle([&] { return live::DhcpClientRelease(name); },
                [&] { return live::DhcpClientAcquire(name); }, "dhcpcsvc");
  }
  if (GetParam() == Release::Win95) {
    return;
  }
  live::IpHelperBinding binding;
  const Hostkit::wstring name = Wide(dhcpCard().name);
  expectCycle([&] { return binding.ReleaseAddress(name); },
              [&] { return binding.RenewAddress(name); }, "iphlpapi");
  // A static adapter is refused; a name matches only as a whole, after the device prefix.
  const std::size_t requests = network().dhcpRequests.size();
  EXPECT_FALSE(binding.ReleaseAddress(Wide(staticCard().name)));
  EXPECT_FALSE(binding.ReleaseAddress(name.substr(1)));
  EXPECT_EQ(network().dhcpRequests.size(), requests);
  EXPECT_EQ(staticCard().address.empty(), false);
}

INSTANTIATE_TEST_SUITE_P(Releases, IpHelperModule, testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

// One missing entry makes the whole IP Helper binding unusable.
TEST(IpHelperBindingSim, MissingRenewEntryMakesTheBindingUnusable) {
  for (const bool absent : {false, true}) {
    const std::string profile =
        std::string(R"({ "release": "winxp")") +
        (absent ? R"(, "absent": [ "IPHLPAPI.DLL!IpRenewAddress" ] })" : "}");
    std::string error;
    auto machine = Hostkit::sim::LoadMachineProfileText(profile, "absent.json", {}, {}, error);
    ASSERT_NE(machine, nullptr) << error;
    LiveInterface card;
    card.index = 2;
    card.name = "{X}";
    card.hardwareAddress = {0, 1, 2, 3, 4, 5};
    machine->liveNetwork().interfaces.push_back(card);
    Hostkit::sim::ActivateMachine(machine);
    live::IpHelperBinding binding;
    std::vector<live::IpHelperRow> rows;
    EXPECT_EQ(binding.Usable(), !absent);
    EXPECT_EQ(binding.AdapterRows(rows), !absent);
    EXPECT_EQ(rows.size(), absent ? 0U : 1U);
  }
  Hostkit::sim::ActivateMachine(nullptr);
}

}  // namespace
