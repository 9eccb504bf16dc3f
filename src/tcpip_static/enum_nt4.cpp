// The stored TCP/IP enumeration on Windows NT 4.
//
// Network cards are the entries of "SOFTWARE\Microsoft\Windows NT\CurrentVersion\NetworkCards";
// each names the service of its driver, under which the card's TCP/IP settings live
// ("Parameters\Tcpip"). DNS settings are machine-wide, WINS servers are in NetBT's key of the
// adapter.
#include <algorithm>

#include "adapters/mac_address_lookup.h"
#include "foundation/service_state.h"
#include "hostkit/strings.h"
#include "tcpip_static/adapter_record.h"
#include "tcpip_static/enumeration.h"

namespace Hostkit::tcpip {

namespace {

constexpr const char* kServices = "System\\CurrentControlSet\\Services\\";
constexpr const char* kDisabledBindings =
    "System\\CurrentControlSet\\Services\\Tcpip\\Linkage\\Disabled";
constexpr const char* kNetBtAdapters = "System\\CurrentControlSet\\Services\\NetBT\\Adapters\\";

// Disabled when the first binding of `name`'s linkage is among TCP/IP's disabled bindings.
bool IsEnabled(RegWiz& registry, const std::string& name) {
  std::vector<std::string> own;
  std::vector<std::string> disabled;
  registry.GetMultiStringKeyVal(HKEY_LOCAL_MACHINE, (kServices + name + "\\Linkage").c_str(),
                                "Bind", own);
  registry.GetMultiStringKeyVal(HKEY_LOCAL_MACHINE, kDisabledBindings, "Bind", disabled);
  return own.empty() || std::find(disabled.begin(), disabled.end(), own.front()) == disabled.end();
}

// The disabled test is made on the entry's key path, not on a service name, so it finds no
// linkage and passes on to the service control manager.
bool IsFunctional(RegWiz& registry, const std::string& entry) {
  if (!IsEnabled(registry, entry)) {
    return true;
  }
  return IsServiceRunning(ReadText(registry, entry, "ProductName"), SC_MANAGER_ALL_ACCESS,
                          SERVICE_ALL_ACCESS);
}

void ReadTcpip(RegWiz& registry, const std::string& tcpipKey, AdapterRecordAccess::Fields& f) {
  f.boundToTcpip = true;
  f.boundDirectlyOrIndirectly = true;
  f.dnsStatic = !ServerTokens(ReadText(registry, kNtTcpipParameters, "NameServer")).empty();
  unsigned long dhcp = 0;
  if (!registry.GetDwordKeyVal(HKEY_LOCAL_MACHINE, tcpipKey.c_str(), "EnableDHCP", dhcp)) {
    dhcp = 0;
  }
  f.usingDhcp = dhcp != 0;
  if (!f.usingDhcp) {
    f.staticIpAddress = ReadText(registry, tcpipKey, "IPAddress");
    f.staticSubnetMask = ReadText(registry, tcpipKey, "SubnetMask");
    f.staticDefaultGateway = ReadText(registry, tcpipKey, "DefaultGateway");
  }
}

void ReadWins(RegWiz& registry, const std::string& serviceName, AdapterRecordAccess::Fields& f) {
  const std::string key = kNetBtAdapters + serviceName;
  if (registry.DoesKeyExist(HKEY_LOCAL_MACHINE, key.c_str())) {
    for (const WCHAR* name : {HK_WIDE("NameServer"), HK_WIDE("NameServerBackup")}) {
      std::string server;
      const wstring wide = ReadWideText(registry, key, name);
      if (!wide.empty() && ConvertUnicodeToANSI(wide, server)) {
        f.staticWinsServers.push_back(server);
      }
    }
  }
  f.winsState =
      f.staticWinsServers.empty() ? StaticTcpipInfo::WINS_DISABLED : StaticTcpipInfo::WINS_ENABLED;
}

}  // namespace

void EnumerateNt4(std::vector<AdapterInfo>& adapters) {
  RegWiz registry;
  std::vector<std::string> cards;
  registry.GetSubKeyNames(HKEY_LOCAL_MACHINE, kNetworkCards, cards);
  for (const std::string& card : cards) {
    const std::string entry = std::string(kNetworkCards) + "\\" + card;
    AdapterInfo record;
    auto& f = AdapterRecordAccess::Of(record);
    f.adapterType = "NTUnknown";
    f.name = ReadWideText(registry, entry, HK_WIDE("Title"));
    f.serviceName = ReadWideText(registry, entry, HK_WIDE("ServiceName"));
    std::string service;
    ConvertUnicodeToANSI(f.serviceName, service);
    const std::string parameters = kServices + service + "\\Parameters";
    f.ethernet = registry.DoesValNameExist(HKEY_LOCAL_MACHINE, parameters.c_str(), "BusNumber");
    f.enabled = IsEnabled(registry, service);
    f.functional = IsFunctional(registry, entry);
    const std::string tcpipKey = parameters + "\\Tcpip";
    if (registry.DoesKeyExist(HKEY_LOCAL_MACHINE, tcpipKey.c_str())) {
      ReadTcpip(registry, tcpipKey, f);
    }
    f.staticNameServers = ServerTokens(ReadText(registry, kNtTcpipParameters, "NameServer"));
    f.staticDomainName = ReadText(registry, kNtTcpipParameters, "Domain");
    ReadWins(registry, service, f);
    std::string address;
    if (adapters::QueryAdapterMacAddress(f.serviceName, address)) {
      f.hardwareAddress = address;
    }
    f.cookie = StaticTcpipInfo::Cookie(f.serviceName.c_str());
    adapters.push_back(record);
  }
}

}  // namespace Hostkit::tcpip
