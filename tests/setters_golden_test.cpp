// The whole registry change of every StaticTcpipInfo setter on every release's network
// fixture, against the change recorded by hand in tests/golden/<setter>.reg: one section per
// release, "; <release> -> <result>" followed by the changed values in REGEDIT4 syntax (a byte
// list may be spelled out for the reader on a line '; "Name" = ...' before it). A
// missing, extra or differently typed value fails the case. Most setters act on the fixture's
// statically configured card, whose settings differ from what a reset writes.
//
// HOSTKIT_GOLDEN_OUT=<folder> writes each case's actual section there (<setter>.<release>), to
// be checked by hand before it replaces a recorded one.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "hostkit/regwiz.h"
#include "hostkit/static_tcpip.h"
#include "support/network_fixture.h"
#include "support/test_machine.h"
#include "support/watched_key.h"

namespace {

using Hostkit::StaticTcpipInfo;
using Cookie = StaticTcpipInfo::Cookie;
using hostkit_test::Release;

struct Setter {
  const char* name;
  bool (*call)(StaticTcpipInfo& info, const Cookie& card);
  bool onDhcpCard = false;  // acts on the DHCP card, where the change shows, not the static one
  bool withProtocolDefaults = false;  // the protocol entries' "Ndi\Default" keys exist
};

const Setter kSetters[] = {
    {"SetStaticIpAddress",
     [](StaticTcpipInfo& i, const Cookie& c) { return i.SetStaticIpAddress(c, "192.168.7.20"); }},
    {"SetStaticSubnetMask",
     [](StaticTcpipInfo& i, const Cookie& c) {
       return i.SetStaticSubnetMask(c, "255.255.255.128");
     }},
    {"SetStaticDefaultGateway",
     [](StaticTcpipInfo& i, const Cookie& c) {
       return i.SetStaticDefaultGateway(c, "192.168.7.1");
     }},
    {"EnableDHCP_true", [](StaticTcpipInfo& i, const Cookie& c) { return i.EnableDHCP(c, true); }},
    {"EnableDHCP_false", [](StaticTcpipInfo& i, const Cookie& c) { return i.EnableDHCP(c, false); },
     true},
    {"SetStaticNameServers",
     [](StaticTcpipInfo& i, const Cookie& c) {
       return i.SetStaticNameServers(c, {"192.168.7.2", "10.9.9.9", "10.9.9.10"});
     }},
    {"SetDomainName",
     [](StaticTcpipInfo& i, const Cookie& c) { return i.SetDomainName(c, "example.net"); }},
    {"MakeDnsStatic_true",
     [](StaticTcpipInfo& i, const Cookie& c) { return i.MakeDnsStatic(c, true); }},
    {"MakeDnsStatic_false",
     [](StaticTcpipInfo& i, const Cookie& c) { return i.MakeDnsStatic(c, false); }},
    {"SetWinsState_DISABLED",
     [](StaticTcpipInfo& i, const Cookie& c) {
       return i.SetWinsState(c, StaticTcpipInfo::WINS_DISABLED);
     }},
    {"SetWinsState_USE_DHCP",
     [](StaticTcpipInfo& i, const Cookie& c) {
       return i.SetWinsState(c, StaticTcpipInfo::WINS_USE_DHCP);
     }},
    {"SetWinsState_ENABLED",
     [](StaticTcpipInfo& i, const Cookie& c) {
       return i.SetWinsState(c, StaticTcpipInfo::WINS_ENABLED);
     },
     true},
    {"SetStaticWinsServers",
     [](StaticTcpipInfo& i, const Cookie& c) {
       return i.SetStaticWinsServers(c, {"192.168.7.5", "192.168.7.6", "192.168.7.7"});
     }},
    {"SetStaticHostName",
     [](StaticTcpipInfo& i, const Cookie&) { return i.SetStaticHostName("setup-pc"); }},
    {"SetTcpipAsDefaultProtocol",
     [](StaticTcpipInfo& i, const Cookie&) { return i.SetTcpipAsDefaultProtocol(); }, false, true},
    {"EnableIPAC_false", [](StaticTcpipInfo& i, const Cookie&) { return i.EnableIPAC(false); }},
};

// The fixture's statically configured card, or its DHCP card: the description on Windows 9x,
// the service name on NT 4, the instance identifier on 2000 and XP.
const char* Card(Release release, bool dhcp) {
  switch (release) {
    case Release::WinNT4:
      return dhcp ? "El90x1" : "E100B1";
    case Release::Win2000:
      return dhcp ? "{6B0B6F8C-3C1E-4D2B-9A7E-1C2D3E4F5A60}"
                  : "{A1F3C2D4-5B6E-47F8-8091-A2B3C4D5E6F7}";
    case Release::WinXP:
      return dhcp ? "{5C2D8E61-9F13-4B7A-A0C4-3E6F1D2B8A90}"
                  : "{7E9A0B12-C3D4-4E5F-8061-72A3B4C5D6E7}";
    default:
      return dhcp ? "3Com EtherLink XL 10/100 PCI For Complete PC Management NIC (3C905B-TX)"
                  : "Realtek RTL8139(A) PCI Fast Ethernet Adapter";
  }
}

// The keys below HKEY_LOCAL_MACHINE\System\CurrentControlSet\Services that a setter may write
// (E100B1 and El90x1: the NT 4 cards' services).
const char* const kWatched[] = {"Class", "DHCP", "E100B1", "El90x1", "NetBT", "Tcpip", "VxD"};

// The section of `golden` that starts with "; <tag> -> ", up to the blank line after it, without
// the lines that spell out a byte list for the reader ('; "Name" = ...').
std::string Section(const std::string& golden, const std::string& tag) {
  const size_t start = golden.find("\n; " + tag + " -> ");
  if (start == std::string::npos) {
    return "(no section for " + tag + ")";
  }
  std::istringstream lines(golden.substr(start + 1, golden.find("\n\n", start + 1) - start));
  std::string section;
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("; \"", 0) != 0) {
      section += line + "\n";
    }
  }
  return section;
}

class SetterGolden : public testing::TestWithParam<std::tuple<Release, size_t>> {
 protected:
  void SetUp() override {
    std::string why;
    if (!hostkit_test::UseRelease(release(), why)) {
      GTEST_SKIP() << why;
    }
    ASSERT_TRUE(fixture_.Load(release(), why)) << why;
  }
  void TearDown() override { hostkit_test::FinishRelease(); }

  Release release() const { return std::get<0>(GetParam()); }
  const Setter& setter() const { return kSetters[std::get<1>(GetParam())]; }

  hostkit_test::NetworkFixture fixture_;
};

TEST_P(SetterGolden, RegistryChangeIsTheRecordedOne) {
  // Keys made for the case go again at its end with the watch on their missing parent.
  std::vector<std::unique_ptr<hostkit_test::WatchedKey>> made;
  for (int n = 0; setter().withProtocolDefaults && n < 5; ++n) {
    const std::string ndi =
        "System\\CurrentControlSet\\Services\\Class\\NetTrans\\000" + std::to_string(n) + "\\Ndi";
    made.push_back(std::make_unique<hostkit_test::WatchedKey>(HKEY_LOCAL_MACHINE, ndi));
    ASSERT_TRUE(Hostkit::RegWiz().CreateKey(HKEY_LOCAL_MACHINE, (ndi + "\\Default").c_str()));
  }
  std::vector<std::unique_ptr<hostkit_test::WatchedKey>> watched;
  for (const char* key : kWatched) {
    watched.push_back(std::make_unique<hostkit_test::WatchedKey>(
        HKEY_LOCAL_MACHINE, std::string("System\\CurrentControlSet\\Services\\") + key));
  }
  Hostkit::wstring card;
  for (const char* c = Card(release(), setter().onDhcpCard); *c != '\0'; ++c) {
    card.push_back(static_cast<WCHAR>(*c));
  }
  StaticTcpipInfo info;
  const bool result = setter().call(info, Cookie(card.c_str()));

  const std::string tag = hostkit_test::ReleaseTag(release());
  std::string actual = "; " + tag + " -> " + (result ? "true" : "false") + "\n";
  for (const auto& key : watched) {
    actual += key->RegDiff();
  }
  if (const char* out = std::getenv("HOSTKIT_GOLDEN_OUT")) {
    std::ofstream(std::string(out) + "/" + setter().name + "." + tag) << actual;
  }
  const std::string golden =
      hostkit_test::ReadFixtureFile(std::string("../golden/") + setter().name + ".reg");
  EXPECT_EQ(actual, Section(golden, tag));
}

std::string CaseName(const testing::TestParamInfo<std::tuple<Release, size_t>>& info) {
  return hostkit_test::ReleaseTag(std::get<0>(info.param)) + "_" +
         kSetters[std::get<1>(info.param)].name;
}

INSTANTIATE_TEST_SUITE_P(AllReleases, SetterGolden,
                         testing::Combine(testing::ValuesIn(hostkit_test::AllReleases()),
                                          testing::Range(size_t{0}, std::size(kSetters))),
                         CaseName);

}  // namespace
