// Stored TCP/IP enumeration cases built on the simulated machine: changes to a release fixture
// that Wine's registry and devices cannot stand for.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "adapters/mac_address_lookup.h"
#include "hostkit/regwiz.h"
#include "hostkit/sim/machine.h"
#include "hostkit/static_tcpip.h"
#include "platform/sim/registry/store.h"
#include "support/network_fixture.h"
#include "support/sim_machine.h"

namespace {

using Hostkit::RegWiz;
using Hostkit::StaticTcpipInfo;
using hostkit_test::Release;

std::vector<StaticTcpipInfo::AdapterInfo> Enumerate() {
  std::vector<StaticTcpipInfo::AdapterInfo> adapters;
  EXPECT_TRUE(StaticTcpipInfo().GetAdapterInfo(adapters));
  return adapters;
}

class StaticTcpipSim : public testing::Test {
 protected:
  void Load(Release release) {
    std::string error;
    ASSERT_TRUE(fixture_.Load(release, error)) << error;
    machine_ = Hostkit::sim::ActiveMachine();
  }
  void TearDown() override { Hostkit::sim::ActivateMachine(nullptr); }

  hostkit_test::NetworkFixture fixture_;
  std::shared_ptr<Hostkit::sim::Machine> machine_;
  RegWiz reg_;
};

constexpr const char* k3Com =
    "Enum\\PCI\\VEN_10B7&DEV_9055&SUBSYS_00000000&REV_24\\BUS_00&DEV_0D&FUNC_00";
constexpr const char* kRealtek =
    "Enum\\PCI\\VEN_10EC&DEV_8139&SUBSYS_813910EC&REV_10\\BUS_00&DEV_0F&FUNC_00";

// Cards with one description share one cookie; a binding without an address is static with
// empty texts.
TEST_F(StaticTcpipSim, Win9xSharedDescriptionAndMissingAddress) {
  Load(Release::Win98);
  std::string description;
  ASSERT_TRUE(reg_.GetKeyVal(HKEY_LOCAL_MACHINE, k3Com, "DeviceDesc", description));
  ASSERT_TRUE(reg_.SetKeyVal(HKEY_LOCAL_MACHINE, kRealtek, "DeviceDesc", description.c_str()));
  ASSERT_TRUE(reg_.DeleteKeyVal(HKEY_LOCAL_MACHINE,
                                "System\\CurrentControlSet\\Services\\Class\\NetTrans\\0000",
                                "IPAddress"));
  auto adapters = Enumerate();
  ASSERT_GE(adapters.size(), 3U);
  EXPECT_TRUE(adapters[1].GetCookie() == adapters[2].GetCookie());
  EXPECT_FALSE(adapters[1].UsingDhcp());
  EXPECT_EQ(adapters[1].StaticIpAddress(), "");
  EXPECT_EQ(adapters[1].StaticSubnetMask(), "0.0.0.0");
  EXPECT_EQ(adapters[2].StaticIpAddress(), "192.168.0.10");
}

// The Realtek card reaches TCP/IP through a chain of network components: four between the card
// and TCP/IP are followed, five are not.
TEST_F(StaticTcpipSim, Win9xBindingChainsEndAtFiveLevels) {
  for (int components : {4, 5}) {
    Load(Release::Win98);
    std::string from = kRealtek;
    ASSERT_TRUE(reg_.DeleteKey(HKEY_LOCAL_MACHINE, (from + "\\Bindings").c_str()));
    for (int i = 0; i <= components; ++i) {
      const std::string name =
          i < components ? "LINK" + std::to_string(i) + "\\0000" : "MSTCP\\0001";
      ASSERT_TRUE(reg_.CreateKey(HKEY_LOCAL_MACHINE, (from + "\\Bindings").c_str()));
      ASSERT_TRUE(
          reg_.SetKeyVal(HKEY_LOCAL_MACHINE, (from + "\\Bindings").c_str(), name.c_str(), ""));
      from = "Enum\\Network\\" + name;
      ASSERT_TRUE(reg_.CreateKey(HKEY_LOCAL_MACHINE, from.c_str()) || i == components);
    }
    auto realtek = Enumerate().at(2);
    EXPECT_FALSE(realtek.IsBoundToTcpip());
    EXPECT_EQ(realtek.IsIndirectlyOrDirectlyBoundToTcpip(), components == 4) << components;
    EXPECT_EQ(realtek.StaticIpAddress(), components == 4 ? "192.168.0.10" : "") << components;
  }
}

TEST_F(StaticTcpipSim, NtServiceManagerRefusedMeansNotFunctional) {
  Load(Release::WinNT4);
  machine_->facts().administrator = false;  // full access to the manager is refused
  for (auto& record : Enumerate()) {
    EXPECT_FALSE(record.IsFunctional()) << record.HardwareAddress();
  }
}

TEST_F(StaticTcpipSim, XpWithoutTheDeviceSetupListingFindsNoDevice) {
  Load(Release::WinXP);
  machine_->modules()["setupapi.dll"].entryPoints.erase("SetupDiGetDeviceInstanceIdA");
  EXPECT_TRUE(Enumerate().empty());
}

TEST_F(StaticTcpipSim, AddressLookupDefinesAndRemovesItsOwnDosNameOnly) {
  Load(Release::WinNT4);
  std::string address;
  EXPECT_TRUE(Hostkit::adapters::QueryAdapterMacAddress(HK_WIDE("El90x1"), address));
  EXPECT_EQ(address, "00-60-08-AB-CD-01");
  EXPECT_EQ(machine_->dosDevices().count("El90x1"), 0U);
  EXPECT_TRUE(Hostkit::adapters::QueryAdapterMacAddress(HK_WIDE("E100B1"), address));
  EXPECT_EQ(machine_->dosDevices().at("E100B1").size(), 1U);

  // No device: the all-zero text and false, and the temporary name gone again.
  EXPECT_FALSE(Hostkit::adapters::QueryAdapterMacAddress(HK_WIDE("NE20001"), address));
  EXPECT_EQ(address, "00-00-00-00-00-00");
  EXPECT_EQ(machine_->dosDevices().count("NE20001"), 0U);

  // US Robotics adapters have fixed addresses: no device is asked (any access would now fail).
  machine_->facts().release = Release::Win98;
  EXPECT_TRUE(Hostkit::adapters::QueryAdapterMacAddress(HK_WIDE("USRPCIAWR3"), address));
  EXPECT_EQ(address, "00-c0-49-43-0f-53");
  EXPECT_TRUE(Hostkit::adapters::QueryAdapterMacAddress(HK_WIDE("xUSRPCIAWRb"), address));
  EXPECT_EQ(address, "00-c0-49-43-0f-5d");
  EXPECT_FALSE(Hostkit::adapters::QueryAdapterMacAddress(HK_WIDE("usrpciawr3"), address));
}

// Every setter that needs the adapter's own TCP/IP key, each answering false.
void ExpectAdapterSettersRefuse(const StaticTcpipInfo::Cookie& cookie) {
  StaticTcpipInfo info;
  EXPECT_FALSE(info.SetStaticIpAddress(cookie, "10.0.0.1"));
  EXPECT_FALSE(info.SetStaticSubnetMask(cookie, "255.0.0.0"));
  EXPECT_FALSE(info.SetStaticDefaultGateway(cookie, "10.0.0.254"));
  EXPECT_FALSE(info.EnableDHCP(cookie, true));
  EXPECT_FALSE(info.EnableDHCP(cookie, false));
  EXPECT_FALSE(info.MakeDnsStatic(cookie, false));
}

// Every cookie-taking setter, each answering false.
void ExpectEverySetterRefuses(const StaticTcpipInfo::Cookie& cookie) {
  ExpectAdapterSettersRefuse(cookie);
  StaticTcpipInfo info;
  EXPECT_FALSE(info.SetStaticNameServers(cookie, {"10.0.0.53"}));
  EXPECT_FALSE(info.SetDomainName(cookie, "example.org"));
  EXPECT_FALSE(info.SetWinsState(cookie, StaticTcpipInfo::WINS_DISABLED));
  EXPECT_FALSE(info.SetStaticWinsServers(cookie, {"10.0.0.5"}));
}

class StaticTcpipSetterFailures : public hostkit_test::SimPerRelease {
 protected:
  // Loads the release's network machine into `fixture` and finds its primary card.
  void LoadPrimaryCard(hostkit_test::NetworkFixture& fixture, StaticTcpipInfo::Cookie& cookie) {
    std::string error;
    ASSERT_TRUE(fixture.Load(GetParam(), error)) << error;
    std::vector<StaticTcpipInfo::AdapterInfo> adapters;
    ASSERT_TRUE(StaticTcpipInfo().GetAdapterInfo(adapters));
    cookie = adapters.at(static_cast<size_t>(StaticTcpipInfo().GetPrimaryNicIndex(adapters)))
                 .GetCookie();
  }
};

TEST_P(StaticTcpipSetterFailures, UnknownCookieWritesNothing) {
  std::string error;
  hostkit_test::NetworkFixture fixture;
  ASSERT_TRUE(fixture.Load(GetParam(), error)) << error;
  auto& registry = Hostkit::sim::ActiveMachine()->registry();
  const auto before = registry.snapshot();
  if (isWin9x()) {
    ExpectEverySetterRefuses(StaticTcpipInfo::Cookie(HK_WIDE("No Such Adapter")));
    ExpectEverySetterRefuses(StaticTcpipInfo::Cookie());
  } else {
    // NetBT's keys are named after the cookie whether or not TCP/IP has a key for it: the WINS
    // setters answer true for any name and write nothing where NetBT has no key. (NT 4's DNS
    // setters are machine-wide and take no cookie at all.)
    StaticTcpipInfo info;
    for (const auto& cookie :
         {StaticTcpipInfo::Cookie(HK_WIDE("No Such Adapter")), StaticTcpipInfo::Cookie()}) {
      const bool named = !(cookie == StaticTcpipInfo::Cookie());
      ExpectAdapterSettersRefuse(cookie);
      EXPECT_EQ(info.SetWinsState(cookie, StaticTcpipInfo::WINS_DISABLED), named);
      EXPECT_EQ(info.SetStaticWinsServers(cookie, {"10.0.0.5"}), named);
      if (GetParam() != Release::WinNT4) {
        EXPECT_FALSE(info.SetStaticNameServers(cookie, {"10.0.0.53"}));
        EXPECT_FALSE(info.SetDomainName(cookie, "example.org"));
      }
    }
  }
  EXPECT_TRUE(registry.snapshot() == before);
}

// Switching DHCP off on the NT family: values already gone are no failure, a deletion the
// registry refuses is.
TEST_P(StaticTcpipSetterFailures, RefusedDeletionFailsTheSwitchToStatic) {
  if (isWin9x()) {
    GTEST_SKIP() << "Windows 9x keeps no DHCP values to delete";
  }
  for (const char16_t* refused : {u"DhcpIPAddress", u"DhcpSubnetMask"}) {
    hostkit_test::NetworkFixture fixture;
    StaticTcpipInfo::Cookie cookie;
    ASSERT_NO_FATAL_FAILURE(LoadPrimaryCard(fixture, cookie));
    StaticTcpipInfo info;
    EXPECT_TRUE(info.EnableDHCP(cookie, false));
    EXPECT_TRUE(info.EnableDHCP(cookie, false));  // nothing left to delete
    ASSERT_TRUE(info.EnableDHCP(cookie, true));
    Hostkit::sim::ActiveMachine()->registry().refuseDeletionOf(refused);
    EXPECT_FALSE(info.EnableDHCP(cookie, false));
  }
}

// Without TCP/IP installed, DNS settings and the host name are refused for a real adapter too.
TEST_P(StaticTcpipSetterFailures, TcpipNotInstalledWritesNothing) {
  if (GetParam() == Release::WinXP) {
    GTEST_SKIP() << "TCP/IP is always installed on Windows XP";
  }
  hostkit_test::NetworkFixture fixture;
  StaticTcpipInfo::Cookie cookie;
  ASSERT_NO_FATAL_FAILURE(LoadPrimaryCard(fixture, cookie));
  StaticTcpipInfo info;
  const char* marker = isWin9x() ? "System\\CurrentControlSet\\Services\\VxD\\MSTCP"
                       : GetParam() == Release::Win2000
                           ? "SOFTWARE\\Microsoft\\TCPIP\\CurrentVersion"
                           : "System\\CurrentControlSet\\Services\\Tcpip\\Parameters";
  ASSERT_TRUE(RegWiz().DeleteKey(HKEY_LOCAL_MACHINE, marker));
  ASSERT_FALSE(info.IsTcpipInstalled());
  auto& registry = Hostkit::sim::ActiveMachine()->registry();
  const auto before = registry.snapshot();
  EXPECT_FALSE(info.SetStaticNameServers(cookie, {"10.0.0.53"}));
  EXPECT_FALSE(info.SetDomainName(cookie, "example.org"));
  EXPECT_FALSE(info.SetStaticHostName("nobody"));
  std::string name = "stale";
  EXPECT_FALSE(info.GetStaticHostName(name));
  EXPECT_EQ(name, "");
  EXPECT_TRUE(registry.snapshot() == before);
}

INSTANTIATE_TEST_SUITE_P(AllReleases, StaticTcpipSetterFailures,
                         testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

TEST_F(StaticTcpipSim, UnknownSystemRefusesEverythingAndLeavesTheVectorAlone) {
  hostkit_test::UseFreshMachine(Release::Unknown);
  std::vector<StaticTcpipInfo::AdapterInfo> adapters(2);
  EXPECT_FALSE(StaticTcpipInfo().GetAdapterInfo(adapters));
  EXPECT_EQ(adapters.size(), 2U);
  ExpectEverySetterRefuses(StaticTcpipInfo::Cookie(HK_WIDE("Dial-Up Adapter")));
  EXPECT_FALSE(StaticTcpipInfo().SetStaticHostName("pc"));
  EXPECT_FALSE(StaticTcpipInfo().IsTcpipInstalled());
}

TEST_F(StaticTcpipSim, Nt4WinsCanOnlyBeSwitchedOff) {
  Load(Release::WinNT4);
  const auto before = machine_->registry().snapshot();
  StaticTcpipInfo info;
  EXPECT_FALSE(info.SetWinsState(HK_WIDE("E100B1"), StaticTcpipInfo::WINS_ENABLED));
  EXPECT_FALSE(info.SetWinsState(HK_WIDE("E100B1"), StaticTcpipInfo::WINS_USE_DHCP));
  EXPECT_TRUE(machine_->registry().snapshot() == before);
  // A third server is dropped: NT 4 keeps a server and a backup.
  ASSERT_TRUE(info.SetStaticWinsServers(HK_WIDE("E100B1"), {"1.1.1.1", "2.2.2.2", "3.3.3.3"}));
  EXPECT_EQ(Enumerate().at(1).GetStaticWinsServers(),
            (std::vector<std::string>{"1.1.1.1", "2.2.2.2"}));
}

// Windows 9x WINS servers are numbered from 1; servers past the new count stay.
TEST_F(StaticTcpipSim, Win9xWinsServersKeepOlderOnesBeyondTheNewCount) {
  Load(Release::Win98);
  const char16_t* realtek = HK_WIDE("Realtek RTL8139(A) PCI Fast Ethernet Adapter");
  ASSERT_TRUE(StaticTcpipInfo().SetStaticWinsServers(realtek, {"10.0.0.9"}));
  EXPECT_EQ(Enumerate().at(2).GetStaticWinsServers(),
            (std::vector<std::string>{"10.0.0.9", "192.168.0.3"}));
}

TEST_F(StaticTcpipSim, DhcpIdentificationIsTheComputerNameForTheNextStart) {
  Load(Release::WinXP);
  // Without TCP/IP parameters the host name cannot follow; Windows 9x deletes a whole subtree,
  // which is how the key goes here.
  machine_->facts().release = Release::Win98;
  ASSERT_TRUE(
      reg_.DeleteKey(HKEY_LOCAL_MACHINE, "System\\CurrentControlSet\\Services\\Tcpip\\Parameters"));
  machine_->facts().release = Release::WinXP;
  StaticTcpipInfo info;
  EXPECT_TRUE(info.SetDhcpIdentification("NEWNAME"));
  EXPECT_FALSE(info.SetDhcpIdentification("has space"));
  std::string next;
  ASSERT_TRUE(reg_.GetKeyVal(HKEY_LOCAL_MACHINE,
                             "System\\CurrentControlSet\\Control\\ComputerName\\ComputerName",
                             "ComputerName", next));
  EXPECT_EQ(next, "NEWNAME");
  std::string current;
  ASSERT_TRUE(info.GetDhcpIdentification(current));
  EXPECT_EQ(current, "XPPC");  // the name in use until Windows starts again
}

TEST_F(StaticTcpipSim, DialUpComponentsOfWindows9x) {
  Load(Release::Win98);
  StaticTcpipInfo info;
  EXPECT_TRUE(info.IsNonFunctionalNicPresent());  // the NE2000 card
  ASSERT_TRUE(info.EnableIPAC(false));
  unsigned long ipac = 1;
  ASSERT_TRUE(reg_.GetDwordKeyVal(HKEY_LOCAL_MACHINE,
                                  "System\\CurrentControlSet\\Services\\VxD\\DHCP",
                                  "IPAutoconfigurationEnabled", ipac));
  EXPECT_EQ(ipac, 0U);
  Load(Release::Win95);
  EXPECT_FALSE(info.IsMicrosoftVpnInstalled());
  EXPECT_FALSE(info.EnableIPAC(true));
  EXPECT_FALSE(info.IsMsDun13Installad());
  const std::string components =
      "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Setup\\OptionalComponents\\";
  for (const char* component : {"RNASERV", "VPN"}) {
    EXPECT_FALSE(info.IsMsDun13Installad());
    ASSERT_TRUE(reg_.CreateKey(HKEY_LOCAL_MACHINE, (components + component).c_str()));
  }
  EXPECT_TRUE(info.IsMsDun13Installad());
}

}  // namespace
