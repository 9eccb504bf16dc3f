// "IPHLPAPI.DLL" (Windows 98, Me, NT 4, 2000 and XP) and "dhcpcsvc.dll" (the NT family) of the
// simulated machine, over its live network.
//
// The table calls follow IP Helper's size protocol: a missing or short buffer answers
// ERROR_BUFFER_OVERFLOW (GetAdaptersInfo, GetNetworkParams) or ERROR_INSUFFICIENT_BUFFER
// (GetIpForwardTable, GetInterfaceInfo) with the size needed written back, and a list with
// nothing in it answers ERROR_NO_DATA. Lists are linked inside the caller's buffer.
//
// IpReleaseAddress and IpRenewAddress pass the request to the DHCP client for an interface on
// DHCP and answer ERROR_INVALID_PARAMETER, passing nothing on, for an unknown index or an
// interface with a static address. The DHCP client's own calls do the same by adapter name,
// answering ERROR_FILE_NOT_FOUND for a name no interface has.
#include "platform/iphlpapi.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "hostkit/sim/machine.h"
#include "platform/modules.h"
#include "platform/sim/kernel/standard_modules.h"

namespace Hostkit::sim {

namespace {

namespace ip = platform::iphlpapi;
namespace dhcp = platform::dhcpcsvc;

constexpr DWORD kSuccess = 0;
constexpr DWORD kFileNotFound = 2;
constexpr DWORD kNotEnoughMemory = 8;

template <std::size_t N>
void CopyText(char (&field)[N], const std::string& text) {
  const std::size_t length = std::min(text.size(), N - 1);
  std::memcpy(field, text.data(), length);
  field[length] = '\0';
}

void FillAddress(ip::IpAddrString& entry, const std::string& address, const std::string& mask) {
  entry.next = nullptr;
  CopyText(entry.ipAddress, address);
  CopyText(entry.ipMask, mask);
  entry.context = 0;
}

DWORD AddressValue(const std::string& text) {
  BYTE bytes[4] = {};
  ParseDottedQuad(text, bytes);
  DWORD value = 0;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

// The address as a number whose order is the numeric order of the dotted quad.
DWORD HostOrder(const std::string& text) {
  BYTE bytes[4] = {};
  ParseDottedQuad(text, bytes);
  return static_cast<DWORD>(bytes[0]) << 24 | static_cast<DWORD>(bytes[1]) << 16 |
         static_cast<DWORD>(bytes[2]) << 8 | bytes[3];
}

bool IsDefaultRoute(const LiveRoute& route) {
  return route.destination == "0.0.0.0" && route.mask == "0.0.0.0";
}

// IP Helper's name of an interface: its own name, or on Windows 9x the index when the profile
// left it out.
std::string AdapterName(const Machine& machine, const LiveInterface& interface) {
  if (interface.name.empty() && machine.isWin9x()) {
    return std::to_string(interface.index);
  }
  return interface.name;
}

// The size check of the table calls: true when the caller's buffer takes `needed` bytes;
// otherwise the size is set to `needed` for the caller to try again.
bool Fits(const void* buffer, ULONG* size, std::size_t needed) {
  const bool fits = buffer != nullptr && *size >= needed;
  if (!fits) {
    *size = static_cast<ULONG>(needed);
  }
  return fits;
}

DWORD WINAPI GetAdaptersInfo(ip::IpAdapterInfo* list, ULONG* size) {
  try {
    if (size == nullptr) {
      return ip::kInvalidParameter;
    }
    const auto machine = ActiveMachine();
    LiveNetwork& network = machine->liveNetwork();
    if (network.interfaces.empty()) {
      return ip::kNoData;
    }
    if (!Fits(list, size, network.interfaces.size() * sizeof(ip::IpAdapterInfo))) {
      return ip::kBufferOverflow;
    }
    std::memset(list, 0, network.interfaces.size() * sizeof(ip::IpAdapterInfo));
    for (std::size_t i = 0; i < network.interfaces.size(); ++i) {
      const LiveInterface& interface = network.interfaces[i];
      ip::IpAdapterInfo& entry = list[i];
      entry.next = i + 1 < network.interfaces.size() ? &list[i + 1] : nullptr;
      entry.comboIndex = interface.index;
      CopyText(entry.adapterName, AdapterName(*machine, interface));
      CopyText(entry.description, interface.description);
      entry.addressLength = static_cast<UINT>(
          std::min<std::size_t>(interface.hardwareAddress.size(), ip::kMaxAdapterAddress));
      std::copy_n(interface.hardwareAddress.begin(), entry.addressLength, entry.address);
      entry.index = interface.index;
      entry.type = interface.type;
      entry.dhcpEnabled = interface.dhcp ? 1 : 0;
      const bool bound = !interface.address.empty();
      FillAddress(entry.ipAddressList, bound ? interface.address : "0.0.0.0",
                  bound ? interface.mask : "0.0.0.0");
      entry.currentIpAddress = bound ? &entry.ipAddressList : nullptr;
      std::string gateway;
      for (const LiveRoute& route : network.routes) {
        if (IsDefaultRoute(route) && route.interfaceIndex == interface.index) {
          gateway = route.nextHop;
          break;
        }
      }
      FillAddress(entry.gatewayList, gateway, gateway.empty() ? "" : "0.0.0.0");
      FillAddress(entry.dhcpServer, interface.dhcpServer, "");
      FillAddress(entry.primaryWinsServer, "", "");
      FillAddress(entry.secondaryWinsServer, "", "");
    }
    return kSuccess;
  } catch (...) {
    return kNotEnoughMemory;
  }
}

DWORD WINAPI GetIpForwardTable(ip::IpForwardTable* table, ULONG* size, BOOL order) {
  try {
    if (size == nullptr) {
      return ip::kInvalidParameter;
    }
    const auto machine = ActiveMachine();
    LiveNetwork& network = machine->liveNetwork();
    std::vector<LiveRoute> routes = network.routes;
    if (routes.empty()) {
      return ip::kNoData;
    }
    if (!Fits(table, size,
              offsetof(ip::IpForwardTable, table) + routes.size() * sizeof(ip::IpForwardRow))) {
      return ip::kInsufficientBuffer;
    }
    if (order != FALSE) {
      std::stable_sort(routes.begin(), routes.end(), [](const LiveRoute& a, const LiveRoute& b) {
        const auto key = [](const LiveRoute& route) {
          return std::make_tuple(HostOrder(route.destination), HostOrder(route.mask),
                                 HostOrder(route.nextHop));
        };
        return key(a) < key(b);
      });
    }
    table->numEntries = static_cast<DWORD>(routes.size());
    for (std::size_t i = 0; i < routes.size(); ++i) {
      const LiveRoute& route = routes[i];
      ip::IpForwardRow& row = table->table[i];
      row = ip::IpForwardRow{};
      row.forwardDest = AddressValue(route.destination);
      row.forwardMask = AddressValue(route.mask);
      row.forwardNextHop = AddressValue(route.nextHop);
      row.forwardIfIndex = route.interfaceIndex;
      const LiveInterface* interface = network.byIndex(route.interfaceIndex);
      const bool direct = interface != nullptr && interface->address == route.nextHop;
      row.forwardType = direct ? ip::kRouteTypeDirect : ip::kRouteTypeIndirect;
      row.forwardProto = ip::kRouteProtoNetMgmt;
      row.forwardMetric1 = 1;
      row.forwardMetric2 = row.forwardMetric3 = row.forwardMetric4 = row.forwardMetric5 =
          ip::kRouteMetricUnused;
    }
    return kSuccess;
  } catch (...) {
    return kNotEnoughMemory;
  }
}

DWORD WINAPI GetNetworkParams(ip::FixedInfo* info, ULONG* size) {
  try {
    if (size == nullptr) {
      return ip::kInvalidParameter;
    }
    const auto machine = ActiveMachine();
    const LiveNetwork& network = machine->liveNetwork();
    const std::vector<std::string>& servers = network.dnsServers;
    // The first server lives in the record, the others follow it in the buffer.
    const std::size_t extra = servers.empty() ? 0 : servers.size() - 1;
    if (!Fits(info, size, sizeof(ip::FixedInfo) + extra * sizeof(ip::IpAddrString))) {
      return ip::kBufferOverflow;
    }
    std::memset(info, 0, sizeof(ip::FixedInfo));
    CopyText(info->hostName, machine->facts().computerName);
    CopyText(info->domainName, network.domain);
    auto* more = reinterpret_cast<ip::IpAddrString*>(info + 1);
    ip::IpAddrString* last = nullptr;
    for (std::size_t i = 0; i < servers.size(); ++i) {
      ip::IpAddrString* entry = i == 0 ? &info->dnsServerList : &more[i - 1];
      FillAddress(*entry, servers[i], "");
      if (last != nullptr) {
        last->next = entry;
      }
      last = entry;
    }
    info->currentDnsServer = servers.empty() ? nullptr : &info->dnsServerList;
    info->nodeType = 1;  // broadcast
    return kSuccess;
  } catch (...) {
    return kNotEnoughMemory;
  }
}

DWORD WINAPI GetInterfaceInfo(ip::IpInterfaceInfo* table, ULONG* size) {
  try {
    if (size == nullptr) {
      return ip::kInvalidParameter;
    }
    const auto machine = ActiveMachine();
    const LiveNetwork& network = machine->liveNetwork();
    if (network.interfaces.empty()) {
      return ip::kNoData;
    }
    if (!Fits(table, size,
              offsetof(ip::IpInterfaceInfo, adapter) +
                  network.interfaces.size() * sizeof(ip::IpAdapterIndexMap))) {
      return ip::kInsufficientBuffer;
    }
    table->numAdapters = static_cast<LONG>(network.interfaces.size());
    for (std::size_t i = 0; i < network.interfaces.size(); ++i) {
      const LiveInterface& interface = network.interfaces[i];
      ip::IpAdapterIndexMap& entry = table->adapter[i];
      entry = ip::IpAdapterIndexMap{};
      entry.index = interface.index;
      // The TCP/IP driver's device for the adapter, as Windows names it.
      const std::string name = "\\DEVICE\\TCPIP_" + AdapterName(*machine, interface);
      const std::size_t length = std::min<std::size_t>(name.size(), ip::kMaxInterfaceName - 1);
      std::copy_n(name.begin(), length, entry.name);  // the names are ASCII
    }
    return kSuccess;
  } catch (...) {
    return kNotEnoughMemory;
  }
}

// The interface a DHCP request names, when the request may go to the client; the error to
// answer otherwise.
DWORD DhcpTarget(LiveInterface* interface, DWORD notFound) {
  if (interface == nullptr) {
    return notFound;
  }
  return interface->dhcp ? kSuccess : ip::kInvalidParameter;
}

template <void (*Act)(LiveNetwork&, LiveInterface&, const std::string&)>
DWORD WINAPI ByIndex(ip::IpAdapterIndexMap* adapter) {
  try {
    if (adapter == nullptr) {
      return ip::kInvalidParameter;
    }
    const auto machine = ActiveMachine();
    LiveNetwork& network = machine->liveNetwork();
    LiveInterface* interface = network.byIndex(adapter->index);
    const DWORD result = DhcpTarget(interface, ip::kInvalidParameter);
    if (result == kSuccess) {
      Act(network, *interface, "iphlpapi");
    }
    return result;
  } catch (...) {
    return kNotEnoughMemory;
  }
}

template <void (*Act)(LiveNetwork&, LiveInterface&, const std::string&)>
DWORD WINAPI ByName(WCHAR* adapterName) {
  try {
    if (adapterName == nullptr) {
      return ip::kInvalidParameter;
    }
    std::string name;
    for (const WCHAR* c = adapterName; *c != 0; ++c) {
      name += static_cast<char>(*c);  // adapter names are ASCII
    }
    const auto machine = ActiveMachine();
    LiveNetwork& network = machine->liveNetwork();
    LiveInterface* interface = network.byName(name);
    const DWORD result = DhcpTarget(interface, kFileNotFound);
    if (result == kSuccess) {
      Act(network, *interface, "dhcpcsvc");
    }
    return result;
  } catch (...) {
    return kNotEnoughMemory;
  }
}

}  // namespace

void AddIpHelperModule(Machine& machine) {
  const Release release = machine.release();
  if (release == Release::Unknown || release == Release::Win95) {
    return;
  }
  auto& entries = machine.modules()[ip::kModule].entryPoints;
  entries[ip::kIpReleaseAddress] =
      platform::AsProc<ip::IpReleaseAddressProc>(&ByIndex<&ReleaseLease>);
  entries[ip::kIpRenewAddress] = platform::AsProc<ip::IpRenewAddressProc>(&ByIndex<&RenewLease>);
  entries[ip::kGetInterfaceInfo] = platform::AsProc<ip::GetInterfaceInfoProc>(&GetInterfaceInfo);
  entries[ip::kGetAdaptersInfo] = platform::AsProc<ip::GetAdaptersInfoProc>(&GetAdaptersInfo);
  entries[ip::kGetNetworkParams] = platform::AsProc<ip::GetNetworkParamsProc>(&GetNetworkParams);
  entries[ip::kGetIpForwardTable] = platform::AsProc<ip::GetIpForwardTableProc>(&GetIpForwardTable);
  if (machine.isWin9x()) {
    return;
  }
  auto& client = machine.modules()[dhcp::kModule].entryPoints;
  client[dhcp::kDhcpAcquireParameters] =
      platform::AsProc<dhcp::DhcpAcquireParametersProc>(&ByName<&RenewLease>);
  client[dhcp::kDhcpReleaseParameters] =
      platform::AsProc<dhcp::DhcpReleaseParametersProc>(&ByName<&ReleaseLease>);
}

}  // namespace Hostkit::sim
