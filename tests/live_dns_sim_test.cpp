// The DNS facts of LiveTcpipInfo on each family: IP Helper where the family uses it, the
// registry (and on Windows 9x the DHCP client) otherwise.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hostkit/live_tcpip.h"
#include "hostkit/regwiz.h"
#include "hostkit/sim/machine.h"
#include "support/sim_machine.h"

namespace {

using Hostkit::LiveTcpipInfo;
using Hostkit::RegWiz;
using Hostkit::wstring;
using hostkit_test::Release;
using Strings = std::vector<std::string>;

constexpr const char* kMstcp = "System\\CurrentControlSet\\Services\\VxD\\MSTCP";
constexpr const char* kTcpip = "System\\CurrentControlSet\\Services\\Tcpip\\Parameters";
constexpr const char* kTransient =
    "System\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Transient";

class LiveDns : public hostkit_test::SimPerRelease {
 protected:
  bool Win9x() const { return machine_->isWin9x(); }
  const char* Parameters() const { return Win9x() ? kMstcp : kTcpip; }
  void Set(const char* key, const char* name, const char* value) {
    ASSERT_TRUE(reg_.CreateKey(HKEY_LOCAL_MACHINE, key));
    ASSERT_TRUE(reg_.SetKeyVal(HKEY_LOCAL_MACHINE, key, name, value));
  }
  void WithoutIpHelper() { machine_->modules().erase("IPHLPAPI.DLL"); }
  Strings Servers(bool expectAnswer = true) {
    Strings servers{"stale"};
    EXPECT_EQ(LiveTcpipInfo().GetDnsServers(servers), expectAnswer);
    return servers;
  }

  RegWiz reg_;
};

// IP Helper answers for every release but 95 and 98, which read the registry even when they have
// IP Helper.
TEST_P(LiveDns, ServersComeFromIpHelperExceptOn95And98) {
  machine_->liveNetwork().dnsServers = {"10.0.0.53", "10.0.1.53"};
  Set(Parameters(), "NameServer", "192.168.7.7");
  const bool registryOnly = GetParam() == Release::Win95 || GetParam() == Release::Win98;
  EXPECT_EQ(Servers(), registryOnly ? Strings{"192.168.7.7"} : (Strings{"10.0.0.53", "10.0.1.53"}));
  WithoutIpHelper();
  EXPECT_EQ(Servers(), Strings{"192.168.7.7"});
}

// Blanks and commas both separate; two separators in a row leave an empty entry between them.
TEST_P(LiveDns, RegistryListsSplitAtBlanksAndCommas) {
  WithoutIpHelper();
  Set(Parameters(), "NameServer", "10.1.1.1,10.1.1.2 10.1.1.3");
  EXPECT_EQ(Servers(), (Strings{"10.1.1.1", "10.1.1.2", "10.1.1.3"}));
  Set(Parameters(), "NameServer", "10.1.1.1,,10.1.1.3");
  EXPECT_EQ(Servers(), (Strings{"10.1.1.1", "", "10.1.1.3"}));
}

// The NT family joins the configured and the DHCP servers, then adds the transient ones it does
// not have yet.
TEST_P(LiveDns, NtJoinsConfiguredDhcpAndTransientServers) {
  if (Win9x()) {
    GTEST_SKIP() << "the NT family's registry";
  }
  WithoutIpHelper();
  Set(kTcpip, "NameServer", "  10.2.0.1 ");
  Set(kTcpip, "DhcpNameServer", "10.2.0.2 10.2.0.3 ");
  Set(kTransient, "NameServer", "10.2.0.3");
  Set(kTransient, "DhcpNameServer", "10.2.0.4");
  EXPECT_EQ(Servers(), (Strings{"10.2.0.1", "10.2.0.2", "10.2.0.3", "10.2.0.4"}));
}

TEST_P(LiveDns, NoSourceGivesNoServers) {
  WithoutIpHelper();
  EXPECT_TRUE(Servers(false).empty());
}

TEST_P(LiveDns, DomainFromIpHelperOrTheFamilysFallBack) {
  machine_->liveNetwork().domain = " isp.example ";
  wstring domain;
  if (GetParam() != Release::Win95 && GetParam() != Release::Win98) {
    ASSERT_TRUE(LiveTcpipInfo().GetDomainName(domain));
    EXPECT_EQ(domain, HK_WIDE("isp.example"));
  }
  WithoutIpHelper();
  Set(Parameters(), "Domain", "");
  const bool answered = LiveTcpipInfo().GetDomainName(domain);
  switch (GetParam()) {
    case Release::Win2000:
    case Release::WinXP:
      EXPECT_FALSE(answered);  // nothing but IP Helper knows it there
      break;
    case Release::WinNT4:
      Set(kTcpip, "DhcpDomain", " dhcp.example");
      EXPECT_TRUE(LiveTcpipInfo().GetDomainName(domain));
      EXPECT_EQ(domain, HK_WIDE(" dhcp.example"));  // taken as stored
      break;
    default:
      // Windows 9x asks the DHCP client for the domain DHCP supplied.
      EXPECT_TRUE(answered);
      EXPECT_EQ(domain, HK_WIDE("isp.example"));
      Set(kMstcp, "Domain", "home.example");
      EXPECT_TRUE(LiveTcpipInfo().GetDomainName(domain));
      EXPECT_EQ(domain, HK_WIDE("home.example"));
      break;
  }
}

// 9x and NT 4 copy the list into a 500-character buffer; later systems take all of it.
TEST_P(LiveDns, SearchListIsCutAt500CharactersBefore2000) {
  std::string list = ",a.example,,b.example";
  while (list.size() < 498) {
    list += ",x.example";
  }
  list = list.substr(0, 498) + ",last.example";  // "l" is the 500th character
  Set(Parameters(), "SearchList", list.c_str());
  std::vector<wstring> domains{HK_WIDE("stale")};
  ASSERT_TRUE(LiveTcpipInfo().GetDomainSearchList(domains));
  ASSERT_GE(domains.size(), 3U);
  EXPECT_EQ(domains[0], HK_WIDE("a.example"));  // empty pieces skipped
  EXPECT_EQ(domains[1], HK_WIDE("b.example"));
  const bool cut = Win9x() || GetParam() == Release::WinNT4;
  EXPECT_EQ(domains.back(), cut ? wstring(HK_WIDE("l")) : wstring(HK_WIDE("last.example")));
}

INSTANTIATE_TEST_SUITE_P(Releases, LiveDns, testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
