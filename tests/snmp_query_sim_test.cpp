// The SNMP reader on the simulated agent: identifier and value conversions, the bounded walk,
// the interface rows against the machine's live network, and the cases where no agent may be
// used.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
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

TEST(SnmpValues, ValueTextsByTag) {
  struct Case {
    BYTE type;
    std::vector<BYTE> bytes;
    std::string text;
  };
  // Octet strings: printable text with a line feed, else hexadecimal (one byte above 127
  // makes it all hex); addresses of other than four bytes read 0.0.0.0.
  for (Case c : std::vector<Case>{
           {snmp::kOctetString, {'P', 'R', 'O', '/', '1', ' ', '~', 127}, "PRO/1 ~\x7f\n"},
           {snmp::kOctetString, {0x00, 0xa0, 0xc9, 0x12, 0x34, 0x56}, "00a0c9123456\n"},
           {snmp::kOctetString, {'A', 'B', 128}, "414280\n"},
           {snmp::kOctetString, {}, "\n"},
           {snmp::kIpAddress, {192, 168, 1, 254}, "192.168.1.254"},
           {snmp::kIpAddress, {10, 0}, "0.0.0.0"}}) {
    snmp::AsnAny value{};
    value.asnType = c.type;
    value.asnValue.string = {c.bytes.data(), static_cast<UINT>(c.bytes.size()), FALSE};
    std::string text;
    EXPECT_TRUE(Hostkit::live::ValueText(value, text));
    EXPECT_EQ(text, c.text);
  }
  std::string text;
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
  // index, description, type, hardware address, address and mask
  const auto add = [&](DWORD index, const char* description, DWORD type, std::vector<BYTE> hardware,
                       const char* address, const char* mask) {
    LiveInterface& card = network.interfaces.emplace_back();
    card.index = index;
    card.description = description;
    card.type = type;
    card.hardwareAddress = std::move(hardware);
    card.address = address;
    card.mask = mask;
  };
  const DWORD ethernet = Hostkit::sim::kIfTypeEthernet;
  add(3, "3Com EtherLink XL", ethernet, {0x00, 0x60, 0x08, 0xab, 0xcd, 0x01}, "192.168.1.10",
      "255.255.255.0");
  add(2, "WAN (PPP/SLIP) Interface", Hostkit::sim::kIfTypePpp, {0x20, 0x41, 0x53, 0x59, 0x4e, 0x48},
      "", "");  // all printable
  add(12, "Intel PRO/100", ethernet, {0x00, 0xa0, 0xc9, 0x12, 0x34, 0x56}, "10.0.0.7", "255.0.0.0");
  network.routes = {{"192.168.1.0", "255.255.255.0", "192.168.1.10", 3},
                    {"0.0.0.0", "0.0.0.0", "192.168.1.1", 3},
                    {"0.0.0.0", "0.0.0.0", "192.168.1.254", 3}};
}

class SnmpOnSim : public SimPerRelease {};

TEST_P(SnmpOnSim, RowsFollowTheLiveNetwork) {
  GiveNetwork(*machine_);
  std::vector<Hostkit::live::SnmpInterfaceRow> rows;
  ASSERT_TRUE(Hostkit::live::ReadSnmpInterfaceRows(rows));
  // In ifIndex order, the loopback interface never listed; the later default route counts.
  auto texts = [&rows] {
    std::vector<std::string> lines;
    lines.reserve(rows.size());
    for (const auto& row : rows) {
      lines.push_back(std::string(row.description.begin(), row.description.end()) + "|" +
                      std::to_string(row.type) + "|" + row.hardwareAddress + "|" + row.ipAddress +
                      "|" + row.subnetMask + "|" + row.defaultGateway);
    }
    return lines;
  };
  EXPECT_EQ(texts(), (std::vector<std::string>{
                         "WAN (PPP/SLIP) Interface|23|20-41-53-59-4e-48|||",
                         "3Com EtherLink XL|6|00-60-08-ab-cd-01|192.168.1.10|255.255.255.0|"
                         "192.168.1.254",
                         "Intel PRO/100|6|00-a0-c9-12-34-56|10.0.0.7|255.0.0.0|"}));

  // A release moves the interface's address away, and the next walk sees it.
  machine_->liveNetwork().interfaces[0].address.clear();
  ASSERT_TRUE(Hostkit::live::ReadSnmpInterfaceRows(rows));
  EXPECT_EQ(texts()[1], "3Com EtherLink XL|6|00-60-08-ab-cd-01|||");
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

// Four threads walking through one query, and each through one of its own, at once: the
// query's lock keeps every walk whole, and every thread reads the rows one thread alone reads.
TEST_P(SnmpOnSim, WalksFromFourThreadsAtOnceStayWhole) {
  GiveNetwork(*machine_);
  CSNMPQuery shared;
  ASSERT_TRUE(shared.Walk("1.3.6.1.2.1.2", "1.3.6.1.2.1.4.21.1.11"));
  const auto alone = shared.Cache();
  constexpr int kThreads = 4;
  std::atomic<int> torn{0};
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&] {
      CSNMPQuery own;
      for (int round = 0; round < 5; ++round) {
        if (!shared.Walk("1.3.6.1.2.1.2", "1.3.6.1.2.1.4.21.1.11") || shared.Cache() != alone ||
            !own.Walk("1.3.6.1.2.1.2", "1.3.6.1.2.1.4.21.1.11") || own.Cache() != alone) {
          ++torn;
        }
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(torn.load(), 0);
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

// NT 4 without TCP/IP, and a machine missing any module or entry point of the agent: the
// reader is unusable, and on NT 4 the agent is not even touched. NT 4 with TCP/IP is the
// usable counterpart.
TEST(SnmpUnusable, NoTcpipOnNt4OrAnAbsentPartMakesTheReaderUnusable) {
  for (const std::string absent : {"", "INETMIB1.DLL", "SNMPAPI.DLL", "SNMPAPI.DLL!SnmpUtilMemFree",
                                   "INETMIB1.DLL!SnmpExtensionQuery", "nt4"}) {
    SCOPED_TRACE(absent);
    const bool nt4 = absent.empty() || absent == "nt4";
    std::string error;
    auto machine = Hostkit::sim::LoadMachineProfileText(
        nt4 ? std::string(R"({"release": "nt40"})")
            : R"({"release": "win98", "absent": [")" + absent + R"("]})",
        "absent.json", {}, std::filesystem::temp_directory_path(), error);
    ASSERT_NE(machine, nullptr) << error;
    Hostkit::sim::ActivateMachine(machine);
    const bool usable = absent == "nt4";
    if (!nt4 || usable) {
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
    EXPECT_EQ(query.IsUsable(), usable);
    EXPECT_EQ(query.Walk("1.3.6.1.2.1", "1.3.6.1.2.1.4.21.1.11"), usable);
    EXPECT_EQ(query.Cache().empty(), !usable);
    if (nt4) {
      EXPECT_EQ(agentCalls > 0, usable);
    }
    std::vector<Hostkit::live::SnmpInterfaceRow> rows;
    EXPECT_EQ(Hostkit::live::ReadSnmpInterfaceRows(rows), usable);
  }
  Hostkit::sim::ActivateMachine(nullptr);
}

}  // namespace
