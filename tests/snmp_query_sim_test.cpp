// The SNMP reader on the simulated agent: identifier and value conversions, the bounded walk,
// the interface rows against the machine's live network, and the cases where no agent may be
// used.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "hostkit/sim/live_network.h"
#include "hostkit/sim/profile.h"
#include "hostkit/snmp_query.h"
#include "live/snmp_interface_rows.h"
#include "live/snmp_values.h"
#include "platform/modules.h"
#include "platform/registry.h"
#include "platform/snmp.h"
#include "support/sim_machine.h"

namespace {

namespace snmp = Hostkit::platform::snmp;
using Hostkit::CSNMPQuery;
using Hostkit::sim::LiveInterface;
using Hostkit::sim::Release;
using hostkit_test::SimPerRelease;

constexpr const char* kIfIndex = "1.3.6.1.2.1.2.2.1.1";

void* WINAPI TestAlloc(UINT bytes) { return std::calloc(bytes != 0 ? bytes : 1, 1); }

TEST(SnmpValues, IdentifierTextsConvertBothWays) {
  EXPECT_EQ(Hostkit::live::OidComponents("1.3.6.1."), (std::vector<UINT>{1, 3, 6, 1}));
  EXPECT_TRUE(Hostkit::live::OidComponents("").empty());
  EXPECT_EQ(Hostkit::live::OidComponents("1.3.6.1.4294967295"),
            (std::vector<UINT>{1, 3, 6, 1, 4294967295U}));

  for (const std::string text : {"1.3.6.1.2.1.4.21.1.11", "0", "1.3.6.1.2.1.4.20.1.1.10.0.0.1"}) {
    snmp::AsnObjectIdentifier oid{};
    ASSERT_TRUE(Hostkit::live::ToAgentOid(text, &TestAlloc, oid));
    std::string back;
    EXPECT_TRUE(Hostkit::live::OidText(oid, back));
    EXPECT_EQ(back, text);
    std::free(oid.ids);
  }
  snmp::AsnObjectIdentifier none{};
  ASSERT_TRUE(Hostkit::live::ToAgentOid("", &TestAlloc, none));
  const UINT* ids = none.ids;  // a copy: the packed member is not aligned for a reference
  EXPECT_EQ(ids, nullptr);
  std::string text = "left over";
  EXPECT_FALSE(Hostkit::live::OidText(none, text));
  EXPECT_EQ(text, "");
}

TEST(SnmpValues, BeyondTheLimitComparesOverTheLimitsLength) {
  const std::vector<UINT> limit = Hostkit::live::OidComponents("1.3.6.1.2.1.4.21.1.11");
  auto beyond = [&](const std::string& text) {
    std::vector<UINT> ids = Hostkit::live::OidComponents(text);
    snmp::AsnObjectIdentifier oid{static_cast<UINT>(ids.size()), ids.data()};
    return Hostkit::live::OidBeyond(oid, limit);
  };
  EXPECT_FALSE(beyond("1.3.6.1.2.1.2.2.1.1.2"));
  EXPECT_FALSE(beyond("1.3.6.1.2.1.4.21.1.11.0.0.0.0"));  // inside the last column
  EXPECT_FALSE(beyond("1.3.6.1.2.1.4"));
  EXPECT_TRUE(beyond("1.3.6.1.2.1.4.21.1.12"));
  EXPECT_TRUE(beyond("1.3.6.1.2.1.4.22.1.1.2.10.0.0.1"));
  EXPECT_TRUE(beyond("1.3.6.1.2.2"));
}

snmp::AsnAny Octets(std::vector<BYTE>& bytes, BYTE type = snmp::kOctetString) {
  snmp::AsnAny value{};
  value.asnType = type;
  value.asnValue.string = {bytes.data(), static_cast<UINT>(bytes.size()), FALSE};
  return value;
}

TEST(SnmpValues, ValueTextsByTag) {
  std::string text;
  std::vector<BYTE> description = {'P', 'R', 'O', '/', '1', '0', '0', ' ', '~', 127};
  EXPECT_TRUE(Hostkit::live::ValueText(Octets(description), text));
  EXPECT_EQ(text, "PRO/100 ~\x7f\n");
  std::vector<BYTE> hardware = {0x00, 0xa0, 0xc9, 0x12, 0x34, 0x56};
  EXPECT_TRUE(Hostkit::live::ValueText(Octets(hardware), text));
  EXPECT_EQ(text, "00a0c9123456\n");
  std::vector<BYTE> mostlyPrintable = {'A', 'B', 128};  // one byte above 127 makes it all hex
  EXPECT_TRUE(Hostkit::live::ValueText(Octets(mostlyPrintable), text));
  EXPECT_EQ(text, "414280\n");
  std::vector<BYTE> empty;
  EXPECT_TRUE(Hostkit::live::ValueText(Octets(empty), text));
  EXPECT_EQ(text, "\n");

  std::vector<BYTE> address = {192, 168, 1, 254};
  EXPECT_TRUE(Hostkit::live::ValueText(Octets(address, snmp::kIpAddress), text));
  EXPECT_EQ(text, "192.168.1.254");
  std::vector<BYTE> shortAddress = {10, 0};
  EXPECT_TRUE(Hostkit::live::ValueText(Octets(shortAddress, snmp::kIpAddress), text));
  EXPECT_EQ(text, "0.0.0.0");

  snmp::AsnAny number{};
  number.asnType = snmp::kInteger;
  number.asnValue.number = -24;
  EXPECT_TRUE(Hostkit::live::ValueText(number, text));
  EXPECT_EQ(text, "-24");
  number.asnType = snmp::kCounter;
  number.asnValue.counter = 4000000000U;  // shown as the signed number it also is
  EXPECT_TRUE(Hostkit::live::ValueText(number, text));
  EXPECT_EQ(text, "-294967296");
  number.asnType = snmp::kNull;
  EXPECT_FALSE(Hostkit::live::ValueText(number, text));
  EXPECT_EQ(text, "");
}

// A machine whose stack has two cards and a dial-up interface without an address, two default
// routes through the first card and one through the dial-up interface's index.
void GiveNetwork(Hostkit::sim::Machine& machine) {
  if (machine.release() == Release::WinNT4) {
    HKEY key = nullptr;
    Hostkit::platform::RegCreateKeyExA(HKEY_LOCAL_MACHINE,
                                       "System\\CurrentControlSet\\Services\\Tcpip\\Parameters", 0,
                                       nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    Hostkit::platform::RegCloseKey(key);
  }
  auto& network = machine.liveNetwork();
  LiveInterface card;
  card.index = 3;
  card.description = "3Com EtherLink XL";
  card.hardwareAddress = {0x00, 0x60, 0x08, 0xab, 0xcd, 0x01};
  card.address = "192.168.1.10";
  card.mask = "255.255.255.0";
  network.interfaces.push_back(card);
  LiveInterface dialUp;
  dialUp.index = 2;
  dialUp.description = "WAN (PPP/SLIP) Interface";
  dialUp.type = Hostkit::sim::kIfTypePpp;
  dialUp.hardwareAddress = {0x20, 0x41, 0x53, 0x59, 0x4e, 0x48};  // all printable
  network.interfaces.push_back(dialUp);
  card.index = 12;
  card.description = "Intel PRO/100";
  card.hardwareAddress = {0x00, 0xa0, 0xc9, 0x12, 0x34, 0x56};
  card.address = "10.0.0.7";
  card.mask = "255.0.0.0";
  network.interfaces.push_back(card);
  network.routes = {{"192.168.1.0", "255.255.255.0", "192.168.1.10", 3},
                    {"0.0.0.0", "0.0.0.0", "192.168.1.1", 3},
                    {"0.0.0.0", "0.0.0.0", "192.168.1.254", 3}};
}

class SnmpOnSim : public SimPerRelease {};

TEST_P(SnmpOnSim, RowsFollowTheLiveNetwork) {
  GiveNetwork(*machine_);
  std::vector<Hostkit::live::SnmpInterfaceRow> rows;
  ASSERT_TRUE(Hostkit::live::ReadSnmpInterfaceRows(rows));
  ASSERT_EQ(rows.size(), 3u);  // the loopback interface is never listed
  // In ifIndex order.
  EXPECT_EQ(rows[0].description, HK_WIDE("WAN (PPP/SLIP) Interface"));
  EXPECT_EQ(rows[0].type, Hostkit::sim::kIfTypePpp);
  EXPECT_EQ(rows[0].hardwareAddress, "20-41-53-59-4e-48");
  EXPECT_EQ(rows[0].ipAddress + rows[0].subnetMask + rows[0].defaultGateway, "");

  EXPECT_EQ(rows[1].description, HK_WIDE("3Com EtherLink XL"));
  EXPECT_EQ(rows[1].hardwareAddress, "00-60-08-ab-cd-01");
  EXPECT_EQ(rows[1].ipAddress, "192.168.1.10");
  EXPECT_EQ(rows[1].subnetMask, "255.255.255.0");
  EXPECT_EQ(rows[1].defaultGateway, "192.168.1.254");  // the later default route

  EXPECT_EQ(rows[2].hardwareAddress, "00-a0-c9-12-34-56");
  EXPECT_EQ(rows[2].ipAddress, "10.0.0.7");
  EXPECT_EQ(rows[2].subnetMask, "255.0.0.0");
  EXPECT_EQ(rows[2].defaultGateway, "");
  EXPECT_EQ(rows[2].type, Hostkit::sim::kIfTypeEthernet);

  // A release moves the interface's address away, and the next walk sees it.
  machine_->liveNetwork().interfaces[0].address.clear();
  ASSERT_TRUE(Hostkit::live::ReadSnmpInterfaceRows(rows));
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_EQ(rows[1].ipAddress + rows[1].subnetMask + rows[1].defaultGateway, "");
}

TEST_P(SnmpOnSim, WalkStaysWithinItsBoundsInIdentifierOrder) {
  GiveNetwork(*machine_);
  CSNMPQuery query;
  ASSERT_TRUE(query.IsUsable());
  ASSERT_TRUE(query.Walk("1.3.6.1.2.1", "1.3.6.1.2.1.4.21.1.11"));
  const auto cache = query.Cache();
  ASSERT_FALSE(cache.empty());
  for (std::size_t i = 1; i < cache.size(); ++i) {
    EXPECT_LT(Hostkit::live::OidComponents(cache[i - 1].first),
              Hostkit::live::OidComponents(cache[i].first));
  }
  EXPECT_EQ(cache.back().first.rfind("1.3.6.1.2.1.4.21.1.11.", 0), 0u);
  std::string value;
  EXPECT_TRUE(query.Lookup("1.3.6.1.2.1.2.2.1.2", "1", value));
  EXPECT_EQ(value, "MS TCP Loopback interface\n");
  EXPECT_TRUE(query.Lookup("1.3.6.1.2.1.2.2.1.3", "1", value));
  EXPECT_EQ(value, "24");
  EXPECT_FALSE(query.Lookup("1.3.6.1.2.1.2.2.1.3", "99", value));
  // Routes of one destination share a row: one default route is left.
  EXPECT_EQ(query.Column("1.3.6.1.2.1.4.21.1.1").size(), 3u);

  // A narrower walk starts afresh: the interfaces' indexes, loopback first.
  ASSERT_TRUE(query.Walk(kIfIndex, kIfIndex));
  std::vector<std::string> indexes;
  for (const auto& [name, text] : query.Cache()) {
    EXPECT_EQ(name, std::string(kIfIndex) + "." + text);
    indexes.push_back(text);
  }
  EXPECT_EQ(indexes, (std::vector<std::string>{"1", "2", "3", "12"}));

  // A copy binds the agent afresh and keeps the cache.
  CSNMPQuery copy = query;
  EXPECT_TRUE(copy.IsUsable());
  EXPECT_EQ(copy.Cache(), query.Cache());
}

INSTANTIATE_TEST_SUITE_P(AllReleases, SnmpOnSim, testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

// Entry points that count their calls before handing them on to the machine's own.
int agentCalls = 0;
FARPROC realAlloc = nullptr;
FARPROC realInit = nullptr;
void* WINAPI CountingAlloc(UINT bytes) {
  ++agentCalls;
  return Hostkit::platform::ProcAs<snmp::MemAlloc>(realAlloc)(bytes);
}
BOOL WINAPI CountingInit(DWORD uptime, HANDLE* trap, snmp::AsnObjectIdentifier* view) {
  ++agentCalls;
  return Hostkit::platform::ProcAs<snmp::ExtensionInit>(realInit)(uptime, trap, view);
}

TEST(SnmpUnusable, NoAgentIsTouchedOnNt4WithoutTcpip) {
  for (const bool tcpip : {false, true}) {
    auto machine = hostkit_test::UseFreshMachine(Release::WinNT4);
    if (tcpip) {
      GiveNetwork(*machine);
    }
    auto& alloc = machine->modules()[snmp::kUtilityModule].entryPoints[snmp::kMemAlloc];
    auto& init = machine->modules()[snmp::kAgentModule].entryPoints[snmp::kExtensionInit];
    realAlloc = alloc;
    realInit = init;
    alloc = Hostkit::platform::AsProc(&CountingAlloc);
    init = Hostkit::platform::AsProc(&CountingInit);
    agentCalls = 0;
    CSNMPQuery query;
    EXPECT_EQ(query.IsUsable(), tcpip);
    EXPECT_EQ(query.Walk("1.3.6.1.2.1", "1.3.6.1.2.1.4.21.1.11"), tcpip);
    EXPECT_EQ(agentCalls > 0, tcpip) << (tcpip ? "with" : "without") << " TCP/IP";
    std::vector<Hostkit::live::SnmpInterfaceRow> rows;
    EXPECT_EQ(Hostkit::live::ReadSnmpInterfaceRows(rows), tcpip);
  }
  Hostkit::sim::ActivateMachine(nullptr);
}

TEST(SnmpUnusable, AbsentModulesOrEntriesMakeTheReaderUnusable) {
  for (const std::string absent : {"INETMIB1.DLL", "SNMPAPI.DLL", "SNMPAPI.DLL!SnmpUtilMemFree",
                                   "INETMIB1.DLL!SnmpExtensionQuery"}) {
    std::string error;
    auto machine = Hostkit::sim::LoadMachineProfileText(
        R"({"release": "win98", "absent": [")" + absent + R"("]})", "absent.json", {},
        std::filesystem::temp_directory_path(), error);
    ASSERT_NE(machine, nullptr) << error;
    Hostkit::sim::ActivateMachine(machine);
    GiveNetwork(*machine);
    CSNMPQuery query;
    EXPECT_FALSE(query.IsUsable()) << absent;
    EXPECT_FALSE(query.Walk("1.3.6.1.2.1", "1.3.6.1.2.1.4.21.1.11")) << absent;
    EXPECT_TRUE(query.Cache().empty());
    std::vector<Hostkit::live::SnmpInterfaceRow> rows;
    EXPECT_FALSE(Hostkit::live::ReadSnmpInterfaceRows(rows)) << absent;
  }
  Hostkit::sim::ActivateMachine(nullptr);
}

}  // namespace
