// The interface rows of the MIB-II walk: one per interface of the interfaces table, with the
// address, mask and default gateway the address and route tables give it.
#include "live/snmp_interface_rows.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "hostkit/snmp_query.h"
#include "hostkit/strings.h"
#include "live/snmp_values.h"

namespace Hostkit::live {

namespace {

constexpr const char* kView = "1.3.6.1.2.1";
constexpr const char* kWalkEnd = "1.3.6.1.2.1.4.21.1.11";
constexpr const char* kIfIndex = "1.3.6.1.2.1.2.2.1.1";
constexpr const char* kIfDescr = "1.3.6.1.2.1.2.2.1.2";
constexpr const char* kIfType = "1.3.6.1.2.1.2.2.1.3";
constexpr const char* kIfPhysAddress = "1.3.6.1.2.1.2.2.1.6";
constexpr const char* kIpAdEntIfIndex = "1.3.6.1.2.1.4.20.1.2";
constexpr const char* kIpAdEntNetMask = "1.3.6.1.2.1.4.20.1.3";
constexpr const char* kIpRouteDest = "1.3.6.1.2.1.4.21.1.1";
constexpr const char* kIpRouteIfIndex = "1.3.6.1.2.1.4.21.1.2";
constexpr const char* kIpRouteNextHop = "1.3.6.1.2.1.4.21.1.7";
constexpr const char* kIpRouteMask = "1.3.6.1.2.1.4.21.1.11";
constexpr const char* kAnyAddress = "0.0.0.0";
constexpr DWORD kSoftwareLoopback = 24;

std::string WithoutLineFeed(std::string text) {
  if (!text.empty() && text.back() == '\n') {
    text.pop_back();
  }
  return text;
}

using Entries = std::vector<CSNMPQuery::Entry>;

// The walk's text of `column`.`index`; empty when absent.
std::string Lookup(const Entries& entries, const char* column, const std::string& index) {
  std::string value;
  FindInCache(entries, column, index, value);
  return value;
}

bool HasColumn(const Entries& entries, const std::string& column) {
  return !CacheColumn(entries, column).empty();
}

// The one walk over the three tables. Some agents (Wine's) answer get-next at the end of a
// table's column with the next table instead of the table's next column; every column such an
// agent left out is then walked on its own. An agent that walks the tables whole needs no
// second walk.
bool WalkTables(CSNMPQuery& query, Entries& entries) {
  if (!query.Walk(kView, kWalkEnd)) {
    return false;
  }
  entries = query.Cache();
  for (const char* column :
       {kIfIndex, kIfDescr, kIfType, kIfPhysAddress, kIpAdEntIfIndex, kIpAdEntNetMask, kIpRouteDest,
        kIpRouteIfIndex, kIpRouteNextHop, kIpRouteMask}) {
    if (!HasColumn(entries, column) && query.Walk(column, column)) {
      const Entries more = query.Cache();
      entries.insert(entries.end(), more.begin(), more.end());
    }
  }
  return true;
}

bool IsHexText(const std::string& text) {
  for (char c : text) {
    if (std::isxdigit(static_cast<unsigned char>(c)) == 0) {
      return false;
    }
  }
  return true;
}

// The cache holds an address of unprintable bytes as hexadecimal digits ("00a0c9123456") and
// one whose six bytes all happen to be printable as those characters; either way the row
// wants lower-case pairs joined by "-".
std::string HardwareAddressText(const std::string& cached) {
  const std::string text = WithoutLineFeed(cached);
  std::string bytes;
  if (text.size() != 6 && text.size() % 2 == 0 && IsHexText(text)) {
    for (std::size_t i = 0; i < text.size(); i += 2) {
      bytes += static_cast<char>(std::strtoul(text.substr(i, 2).c_str(), nullptr, 16));
    }
  } else {
    bytes = text;
  }
  std::string pairs;
  for (char byte : bytes) {
    char pair[4];
    std::snprintf(pair, sizeof pair, "%02x", static_cast<unsigned>(static_cast<BYTE>(byte)));
    pairs += pairs.empty() ? "" : "-";
    pairs += pair;
  }
  return pairs;
}

// The next hop of a default route (destination and mask "0.0.0.0") through the interface;
// the last such row in the table wins.
std::string DefaultGateway(const Entries& entries, const std::string& ifIndex) {
  std::string gateway;
  for (const auto& [route, destination] : CacheColumn(entries, kIpRouteDest)) {
    if (destination == kAnyAddress && Lookup(entries, kIpRouteMask, route) == kAnyAddress &&
        Lookup(entries, kIpRouteIfIndex, route) == ifIndex) {
      gateway = Lookup(entries, kIpRouteNextHop, route);
    }
  }
  return gateway;
}

}  // namespace

bool ReadSnmpInterfaceRows(std::vector<SnmpInterfaceRow>& rows) {
  rows.clear();
  CSNMPQuery agent;
  Entries entries;
  if (!agent.IsUsable() || !WalkTables(agent, entries)) {
    return false;
  }
  const Entries addresses = CacheColumn(entries, kIpAdEntIfIndex);
  for (const auto& [index, ifIndex] : CacheColumn(entries, kIfIndex)) {
    SnmpInterfaceRow row;
    row.type =
        static_cast<DWORD>(std::strtoul(Lookup(entries, kIfType, ifIndex).c_str(), nullptr, 10));
    if (row.type == kSoftwareLoopback) {
      continue;
    }
    ConvertANSIToUnicode(WithoutLineFeed(Lookup(entries, kIfDescr, ifIndex)), row.description);
    row.hardwareAddress = HardwareAddressText(Lookup(entries, kIfPhysAddress, ifIndex));
    // The address table is indexed by the address itself.
    for (const auto& [address, owner] : addresses) {
      if (owner == ifIndex) {
        row.ipAddress = address;
        break;
      }
    }
    if (!row.ipAddress.empty()) {
      row.subnetMask = Lookup(entries, kIpAdEntNetMask, row.ipAddress);
      row.defaultGateway = DefaultGateway(entries, ifIndex);
    }
    rows.push_back(std::move(row));
  }
  return true;
}

}  // namespace Hostkit::live
