// The stored TCP/IP enumeration over each release's network fixture: every record, field by
// field, in discovery order. Under Wine the fixture's registry is imported into Wine's own
// registry; what Wine cannot provide (NDIS address queries, the fixture's driver services, the
// 9x Config Manager) is left out of the comparison there.
#include "hostkit/static_tcpip.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "hostkit/strings.h"
#include "support/network_fixture.h"
#include "support/test_machine.h"

namespace {

using Hostkit::StaticTcpipInfo;
using hostkit_test::OnRealWindows;
using hostkit_test::PerRelease;
using hostkit_test::Release;

std::string Narrow(const Hostkit::wstring& wide) {
  std::string narrow;
  Hostkit::ConvertUnicodeToANSI(wide, narrow);
  return narrow;
}

std::string Join(const std::vector<std::string>& items) {
  std::string joined;
  for (const std::string& item : items) {
    joined += (joined.empty() ? "" : ",") + item;
  }
  return joined;
}

// One record as a line: the texts, then the flags as letters (E Ethernet, D bound directly,
// I bound directly or indirectly, F functional, N enabled, S DNS static, H DHCP) and the WINS
// state. `functional` and `hardware` false leave those fields out.
std::string Describe(StaticTcpipInfo::AdapterInfo record, bool functional, bool hardware) {
  std::string flags;
  flags += record.IsEthernetAdapter() ? "E" : "";
  flags += record.IsBoundToTcpip() ? "D" : "";
  flags += record.IsIndirectlyOrDirectlyBoundToTcpip() ? "I" : "";
  flags += functional && record.IsFunctional() ? "F" : "";
  flags += record.IsAdapterEnabled() ? "N" : "";
  flags += record.IsDnsStatic() ? "S" : "";
  flags += record.UsingDhcp() ? "H" : "";
  return Narrow(record.Name()) + " | cookie " + Narrow(record.GetCookie().c_str()) + " | service " +
         Narrow(record.ServiceName()) + " | driver " + record.DeviceDriver() + " | " +
         record.StaticIpAddress() + " " + record.StaticSubnetMask() + " " +
         record.StaticDefaultGateway() + " | mac " + (hardware ? record.HardwareAddress() : "") +
         " | " + record.AdapterType() + " | dns " + Join(record.StaticNameServers()) + " " +
         record.StaticDomainName() + " | wins " + std::to_string(record.GetWinsState()) + " " +
         Join(record.GetStaticWinsServers()) + " | " + flags;
}

const std::vector<std::string> kWin98 = {
    "NE2000 Compatible | cookie NE2000 Compatible | service  | driver ne2000.sys |    | mac  | "
    "ISAPNP"
    " | dns 192.168.0.2,192.168.0.3,10.0.0.53 home.example | wins 0  | EN",
    "3Com EtherLink XL 10/100 PCI For Complete PC Management NIC (3C905B-TX) | cookie 3Com "
    "EtherLink"
    " XL 10/100 PCI For Complete PC Management NIC (3C905B-TX) | service  | driver el90xnd5.sys |  "
    "  | mac  | PCI | dns 192.168.0.2,192.168.0.3,10.0.0.53 home.example | wins 1  | EDIFNSH",
    "Realtek RTL8139(A) PCI Fast Ethernet Adapter | cookie Realtek RTL8139(A) PCI Fast Ethernet "
    "Adapter | service  | driver rtl8139.sys | 192.168.0.10 255.255.255.0 192.168.0.1 | mac  | PCI"
    " | dns 192.168.0.2,192.168.0.3,10.0.0.53 home.example | wins 2 192.168.0.2,192.168.0.3 | "
    "EDIFS",
    "Dial-Up Adapter | cookie Dial-Up Adapter | service  | driver pppmac.vxd |    | mac  | Root | "
    "dns"
    " 192.168.0.2,192.168.0.3,10.0.0.53 home.example | wins 0  | DIFNSH",
    "Microsoft Virtual Private Networking Adapter | cookie Microsoft Virtual Private Networking "
    "Adapter | service  | driver netpptp.sys |    | mac  | Root | dns 192.168.0.2,192.168.0.3,"
    "10.0.0.53 home.example | wins 1  | IFNSH",
};

// The NT 4 El90x1 address comes from the temporary DOS name, E100B1's from its existing one and
// its only address object, the WAN permanent address.
const std::vector<std::string> kNt4 = {
    "[1] 3Com Fast EtherLink XL Adapter (3C905) | cookie El90x1 | service El90x1 | driver  |    | "
    "mac 00-60-08-AB-CD-01 | NTUnknown | dns 192.168.1.1,10.0.0.53 corp.example | wins 0  | "
    "EDIFNSH",
    "[2] Intel 82557-based PRO Adapter | cookie E100B1 | service E100B1 | driver  | 10.1.1.20 "
    "255.255.0.0 10.1.0.1 | mac 00-A0-C9-11-22-33 | NTUnknown | dns 192.168.1.1,10.0.0.53 "
    "corp.example | wins 2 10.1.0.5,10.1.0.6 | EDIFS",
    "[3] NE2000 Compatible | cookie NE20001 | service NE20001 | driver  |    | mac  | NTUnknown | "
    "dns 192.168.1.1,10.0.0.53 corp.example | wins 0  | EN",
};

const std::vector<std::string> kWin2000 = {
    "3Com 3C920 Integrated Fast Ethernet Controller (3C905C-TX Compatible) | cookie "
    "{6B0B6F8C-3C1E-4D2B-9A7E-1C2D3E4F5A60} | service {6B0B6F8C-3C1E-4D2B-9A7E-1C2D3E4F5A60} | "
    "driver  |    | mac 00-04-76-A1-B2-C3 | PCI | dns   | wins 2 192.168.1.5,192.168.1.6 | EDIFNH",
    "Realtek RTL8139(A)-based PCI Fast Ethernet Adapter | cookie "
    "{A1F3C2D4-5B6E-47F8-8091-A2B3C4D5E6F7} | service {A1F3C2D4-5B6E-47F8-8091-A2B3C4D5E6F7} | "
    "driver  | 192.168.50.7 255.255.255.0 192.168.50.1 | mac 00-E0-4C-39-01-02 | PCI | dns "
    "192.168.50.2,192.168.50.3 lab.example | wins 0  | EDIFS",
    "D-Link DFE-530TX+ PCI Adapter | cookie {D7E8F901-2345-4678-9ABC-DEF012345678} | service "
    "{D7E8F901-2345-4678-9ABC-DEF012345678} | driver  |    | mac  | PCI | dns   | wins 0  | EN",
    "WAN Miniport (IP) | cookie {2B6A9C41-7D0E-4F35-8C1B-0A9D8E7F6C5B} | service "
    "{2B6A9C41-7D0E-4F35-8C1B-0A9D8E7F6C5B} | driver  |    | mac  | Root | dns   | wins 0  | FN",
    "WAN Miniport (PPTP) | cookie {3C7B0D52-8E1F-4046-9D2C-1B0E9F8A7D6C} | service "
    "{3C7B0D52-8E1F-4046-9D2C-1B0E9F8A7D6C} | driver  |    | mac  | Root | dns   | wins 0  | FN",
};

// The SiS card's driver answers the address query with eight bytes: no address, not functional.
// The unplugged USB adapter is not listed.
const std::vector<std::string> kWinXp = {
    "SiS 900-Based PCI Fast Ethernet Adapter | cookie {91A2B3C4-D5E6-47F8-9A0B-1C2D3E4F5061} | "
    "service {91A2B3C4-D5E6-47F8-9A0B-1C2D3E4F5061} | driver  |    | mac  | PCI | dns   | wins 0  "
    "| EDINH",
    "Broadcom 440x 10/100 Integrated Controller | cookie {7E9A0B12-C3D4-4E5F-8061-72A3B4C5D6E7} | "
    "service {7E9A0B12-C3D4-4E5F-8061-72A3B4C5D6E7} | driver  | 10.0.0.15 255.0.0.0 10.0.0.138 | "
    "mac 00-0E-A6-12-34-56 | PCI | dns 10.0.0.138,194.25.2.129 office.example | wins 2 10.0.0.5 | "
    "EDIFS",
    "Intel(R) PRO/100 VE Network Connection | cookie {5C2D8E61-9F13-4B7A-A0C4-3E6F1D2B8A90} | "
    "service {5C2D8E61-9F13-4B7A-A0C4-3E6F1D2B8A90} | driver  |    | mac 00-07-E9-AB-CD-EF | PCI | "
    "dns   | wins 0  | EDIFNH",
    "WAN Miniport (IP) | cookie {8F2C1A30-6B4D-4E59-9A7B-0C1D2E3F4A5B} | service "
    "{8F2C1A30-6B4D-4E59-9A7B-0C1D2E3F4A5B} | driver  |    | mac  | Root | dns   | wins 0  | DIFNH",
    "WAN Miniport (PPPOE) | cookie {C1D2E3F4-A5B6-4C7D-8E9F-0A1B2C3D4E5F} | service "
    "{C1D2E3F4-A5B6-4C7D-8E9F-0A1B2C3D4E5F} | driver  |    | mac  | Root | dns   | wins 0  | FN",
};

// Windows 95: no VPN adapter, DNS switched off and empty.
std::vector<std::string> Win95() {
  std::vector<std::string> records(kWin98.begin(), kWin98.end() - 1);
  for (std::string& record : records) {
    record.replace(record.find(" | dns "), record.find(" | wins ") - record.find(" | dns "),
                   " | dns  ");
    const std::size_t dnsStatic = record.find('S', record.rfind(" | "));
    if (dnsStatic != std::string::npos) {
      record.erase(dnsStatic, 1);
    }
  }
  return records;
}

// Windows Me: the VPN adapter is bound to TCP/IP directly.
std::vector<std::string> WinMe() {
  std::vector<std::string> records = kWin98;
  records.back().replace(records.back().size() - 5, 5, "DIFNSH");
  return records;
}

std::vector<std::string> Expected(Release release) {
  switch (release) {
    case Release::Win95:
      return Win95();
    case Release::Win98:
      return kWin98;
    case Release::WinME:
      return WinMe();
    case Release::WinNT4:
      return kNt4;
    case Release::Win2000:
      return kWin2000;
    default:
      return kWinXp;
  }
}

// Under Wine, the functional flag and the hardware address depend on what only the simulation
// has; they are taken out of both sides. The bus enumerator is compared without regard to case
// there: a fixture key Wine already has ("ROOT") keeps Wine's spelling.
std::string WithoutSimOnlyFields(std::string line, bool functional, bool hardware) {
  if (!functional) {
    const std::size_t type = line.find(" | ", line.find(" | mac ") + 7) + 3;
    std::transform(line.begin() + static_cast<std::ptrdiff_t>(type),
                   line.begin() + static_cast<std::ptrdiff_t>(line.find(" | ", type)),
                   line.begin() + static_cast<std::ptrdiff_t>(type), [](char c) {
                     return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
                   });
  }
  if (!hardware) {
    const std::size_t mac = line.find(" | mac ") + 7;
    line.erase(mac, line.find(" | ", mac) - mac);
  }
  if (!functional) {
    const std::size_t flags = line.rfind(" | ");
    const std::size_t f = line.find('F', flags);
    if (f != std::string::npos) {
      line.erase(f, 1);
    }
  }
  return line;
}

class StaticTcpipEnumeration : public PerRelease {};

TEST_P(StaticTcpipEnumeration, ReadsEveryRecordOfTheReleaseFixture) {
  if (GetParam() == Release::WinXP) {
    HOSTKIT_SKIP_ON_WINE("Wine's device-setup listing does not list the fixture's devices");
  }
  hostkit_test::NetworkFixture fixture;
  std::string error;
  ASSERT_TRUE(fixture.Load(GetParam(), error)) << error;

  std::vector<StaticTcpipInfo::AdapterInfo> adapters(1);  // records are appended after it
  ASSERT_TRUE(StaticTcpipInfo().GetAdapterInfo(adapters));
  const bool simOnly = !OnRealWindows();
  const bool hardware = simOnly || isWin9x();
  std::vector<std::string> expected;
  std::string cookies;
  for (const std::string& line : Expected(GetParam())) {
    expected.push_back(WithoutSimOnlyFields(line, simOnly, hardware));
    cookies +=
        line.substr(line.find(" | cookie "), line.find(" | service ") - line.find(" | cookie "));
  }
  // Under Wine the adapters Wine itself lists are left out: only the fixture's are compared.
  std::vector<std::string> found;
  for (size_t i = 1; i < adapters.size(); ++i) {
    const std::string cookie = " | cookie " + Narrow(adapters[i].GetCookie().c_str());
    if (simOnly || cookies.find(cookie) != std::string::npos) {
      found.push_back(
          WithoutSimOnlyFields(Describe(adapters[i], simOnly, hardware), simOnly, hardware));
    }
  }
  EXPECT_EQ(found, expected);
  for (auto& record : adapters) {
    EXPECT_NE(record.IsEthernetAdapter(), record.IsPppAdapter());
    if (!isWin9x()) {
      EXPECT_NE(record.GetWinsState(), StaticTcpipInfo::WINS_USE_DHCP);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(AllReleases, StaticTcpipEnumeration,
                         testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
