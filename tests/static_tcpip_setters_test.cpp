// Changing stored TCP/IP settings on each release's network fixture, read back through the
// enumeration: the typical request (the primary card to DHCP and back to a static
// configuration), host names and the summary counts. The exact registry change of each setter is
// in setters_golden_test.cpp. Under Wine the fixture is imported into
// Wine's registry and put back afterwards.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hostkit/regwiz.h"
#include "hostkit/static_tcpip.h"
#include "hostkit/strings.h"
#include "support/network_fixture.h"
#include "support/test_machine.h"

namespace {

using Hostkit::StaticTcpipInfo;
using Adapter = StaticTcpipInfo::AdapterInfo;
using hostkit_test::OnRealWindows;
using hostkit_test::Release;
using Strings = std::vector<std::string>;

// The fixture's primary card: the only working Ethernet card bound to TCP/IP.
struct Primary {
  int index;
  const char16_t* cookie;
};

Primary PrimaryOf(Release release) {
  switch (release) {
    case Release::WinNT4:
      return {0, u"El90x1"};
    case Release::Win2000:
      return {0, u"{6B0B6F8C-3C1E-4D2B-9A7E-1C2D3E4F5A60}"};
    case Release::WinXP:
      return {2, u"{5C2D8E61-9F13-4B7A-A0C4-3E6F1D2B8A90}"};
    default:
      return {1, nullptr};  // 9x: the 3Com card, whose cookie is its description
  }
}

class StaticTcpipSetters : public hostkit_test::PerRelease {
 protected:
  void SetUp() override {
    PerRelease::SetUp();
    if (IsSkipped()) {
      return;
    }
    if (GetParam() == Release::WinXP) {
      HOSTKIT_SKIP_ON_WINE("Wine's device-setup listing does not list the fixture's devices");
    }
    std::string error;
    ASSERT_TRUE(fixture_.Load(GetParam(), error)) << error;
  }

  std::vector<Adapter> Enumerate() {
    std::vector<Adapter> adapters;
    EXPECT_TRUE(info_.GetAdapterInfo(adapters));
    return adapters;
  }

  // The primary card's record. Under Wine no card is functional (there are no drivers behind the
  // fixture), so it is found by its position instead of by GetPrimaryNicIndex.
  Adapter PrimaryCard() {
    auto adapters = Enumerate();
    const int index = PrimaryOf(GetParam()).index;
    if (!OnRealWindows()) {
      EXPECT_EQ(info_.GetPrimaryNicIndex(adapters), index);
    }
    for (auto& adapter : adapters) {
      Hostkit::wstring expected;
      const char16_t* cookie = PrimaryOf(GetParam()).cookie;
      if (cookie != nullptr) {
        expected.assign(cookie, cookie + std::char_traits<char16_t>::length(cookie));
        if (adapter.GetCookie() == StaticTcpipInfo::Cookie(expected.c_str())) {
          return adapter;
        }
      }
    }
    return adapters.at(static_cast<size_t>(index));
  }

  hostkit_test::NetworkFixture fixture_;
  StaticTcpipInfo info_;
};

TEST_P(StaticTcpipSetters, PrimaryCardToDhcpAndBackToStatic) {
  Adapter primary = PrimaryCard();
  const StaticTcpipInfo::Cookie cookie = primary.GetCookie();

  ASSERT_TRUE(info_.EnableDHCP(cookie, true));
  Adapter dhcp = PrimaryCard();
  EXPECT_TRUE(dhcp.UsingDhcp());
  EXPECT_EQ(dhcp.StaticIpAddress() + dhcp.StaticSubnetMask() + dhcp.StaticDefaultGateway(), "");

  ASSERT_TRUE(info_.EnableDHCP(cookie, false));
  ASSERT_TRUE(info_.SetStaticIpAddress(cookie, "192.168.7.20"));
  ASSERT_TRUE(info_.SetStaticSubnetMask(cookie, "255.255.255.0"));
  ASSERT_TRUE(info_.SetStaticDefaultGateway(cookie, "192.168.7.1"));
  ASSERT_TRUE(info_.SetStaticNameServers(cookie, {"192.168.7.2", "10.9.9.9"}));
  ASSERT_TRUE(info_.SetDomainName(cookie, "example.net"));
  ASSERT_TRUE(info_.MakeDnsStatic(cookie, true));
  ASSERT_TRUE(info_.SetWinsState(cookie, StaticTcpipInfo::WINS_DISABLED));
  ASSERT_TRUE(info_.SetStaticWinsServers(cookie, {"192.168.7.5", "192.168.7.6"}));
  // NT 4 has no WINS switch of its own: the servers turn it on.
  EXPECT_EQ(info_.SetWinsState(cookie, StaticTcpipInfo::WINS_ENABLED),
            GetParam() != Release::WinNT4);

  Adapter manual = PrimaryCard();
  EXPECT_FALSE(manual.UsingDhcp());
  EXPECT_EQ(manual.StaticIpAddress(), "192.168.7.20");
  EXPECT_EQ(manual.StaticSubnetMask(), "255.255.255.0");
  EXPECT_EQ(manual.StaticDefaultGateway(), "192.168.7.1");
  EXPECT_EQ(manual.StaticNameServers(), (Strings{"192.168.7.2", "10.9.9.9"}));
  EXPECT_EQ(manual.StaticDomainName(), "example.net");
  EXPECT_TRUE(manual.IsDnsStatic());
  EXPECT_EQ(manual.GetWinsState(), StaticTcpipInfo::WINS_ENABLED);
  EXPECT_EQ(manual.GetStaticWinsServers(), (Strings{"192.168.7.5", "192.168.7.6"}));
  EXPECT_TRUE(manual.GetCookie() == cookie);
}

TEST_P(StaticTcpipSetters, DnsAndWinsSwitchOff) {
  const StaticTcpipInfo::Cookie cookie = PrimaryCard().GetCookie();
  ASSERT_TRUE(info_.SetStaticNameServers(cookie, {"10.1.1.1"}));
  ASSERT_TRUE(info_.SetStaticWinsServers(cookie, {"10.1.1.5"}));
  ASSERT_TRUE(info_.MakeDnsStatic(cookie, false));
  ASSERT_TRUE(info_.SetWinsState(cookie, StaticTcpipInfo::WINS_DISABLED));
  Adapter off = PrimaryCard();
  EXPECT_FALSE(off.IsDnsStatic());
  EXPECT_TRUE(off.StaticNameServers().empty());
  EXPECT_EQ(off.GetWinsState(), StaticTcpipInfo::WINS_DISABLED);
  EXPECT_TRUE(off.GetStaticWinsServers().empty());
  if (isWin9x()) {
    // Only Windows 9x can say "WINS servers from DHCP".
    ASSERT_TRUE(info_.SetWinsState(cookie, StaticTcpipInfo::WINS_USE_DHCP));
    EXPECT_EQ(PrimaryCard().GetWinsState(), StaticTcpipInfo::WINS_USE_DHCP);
  }
}

// A card TCP/IP has no key for (a service without "Parameters\Tcpip" on NT 4, an interface
// without a TCP/IP key on 2000 and XP) still takes what is kept elsewhere: its WINS servers in
// NetBT's keys and, on NT 4, the machine-wide DNS settings.
TEST_P(StaticTcpipSetters, SettingsKeptOutsideTheCardsTcpipKeyNeedNoSuchKey) {
  if (isWin9x()) {
    GTEST_SKIP() << "Windows 9x keeps WINS servers in the card's own binding key";
  }
  const bool nt4 = GetParam() == Release::WinNT4;
  const StaticTcpipInfo::Cookie card(nt4 ? HK_WIDE("NoTcpip1")
                                         : HK_WIDE("{0D0D0D0D-0D0D-4D0D-8D0D-0D0D0D0D0D0D}"));
  EXPECT_FALSE(info_.SetStaticIpAddress(card, "10.0.0.1"));
  EXPECT_TRUE(info_.SetStaticWinsServers(card, {"10.0.0.5"}));
  EXPECT_TRUE(info_.SetWinsState(card, StaticTcpipInfo::WINS_DISABLED));
  EXPECT_EQ(info_.SetStaticNameServers(card, {"10.0.0.53", "10.0.0.54"}), nt4);
  EXPECT_EQ(info_.SetDomainName(card, "example.org"), nt4);
  if (nt4) {
    const char* parameters = "System\\CurrentControlSet\\Services\\Tcpip\\Parameters";
    std::string servers;
    std::string domain;
    Hostkit::RegWiz().GetKeyVal(HKEY_LOCAL_MACHINE, parameters, "NameServer", servers);
    Hostkit::RegWiz().GetKeyVal(HKEY_LOCAL_MACHINE, parameters, "Domain", domain);
    EXPECT_EQ(servers, "10.0.0.53 10.0.0.54");
    EXPECT_EQ(domain, "example.org");
  }
}

TEST_P(StaticTcpipSetters, HostNameRoundTrips) {
  ASSERT_TRUE(info_.SetStaticHostName("setup-pc"));
  std::string name;
  ASSERT_TRUE(info_.GetStaticHostName(name));
  EXPECT_EQ(name, "setup-pc");
}

TEST_P(StaticTcpipSetters, CountsOverOneEnumeration) {
  auto adapters = Enumerate();
  const int ethernet = isWin9x() ? 3 : GetParam() == Release::WinNT4 ? 3 : 3;
  EXPECT_EQ(info_.NumNICs(&adapters), ethernet);
  EXPECT_EQ(info_.NumNICs(nullptr), ethernet);
  // Bound cards: the DHCP and the static one everywhere, and the failed card on XP.
  const int bound = GetParam() == Release::WinXP ? 3 : 2;
  EXPECT_EQ(info_.NumTcpipBoundNICs(&adapters), bound);
  EXPECT_EQ(info_.NumTcpipBoundAndEnabledNICs(&adapters), bound - 1);
  EXPECT_EQ(info_.NumEnabledDhcpNics(&adapters), bound - 1);
  std::vector<Adapter> none;
  EXPECT_EQ(info_.NumNICs(&none), 0);
  EXPECT_FALSE(info_.IsNonFunctionalNicPresent(&none));
  EXPECT_EQ(info_.GetPrimaryNicIndex(none), -1);
  EXPECT_EQ(info_.GetLastError(), StaticTcpipInfo::FAILURE_UNKNOWN);
  EXPECT_TRUE(info_.IsTcpipInstalled());
  EXPECT_TRUE(info_.InstallTcpip("A:\\"));
  EXPECT_FALSE(info_.IsUnknownNicPresent(&adapters));
  EXPECT_EQ(info_.BadNicDescription(&adapters) + info_.UnknownNicDescription(&adapters), "");
}

INSTANTIATE_TEST_SUITE_P(AllReleases, StaticTcpipSetters,
                         testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
