// The stored TCP/IP enumeration on Windows 2000 and XP.
//
// Network devices are the keys under "System\CurrentControlSet\Enum" whose "Class" is "Net"; a
// device must be present (2000: its "Control" key has "DeviceReference"; XP: the device-setup
// listing reports it). TCP/IP settings live in the interface key named by the adapter's
// network-configuration instance identifier, WINS servers in NetBT's key of that interface.
#include "adapters/mac_address_lookup.h"
#include "hostkit/adapter_classification.h"
#include "hostkit/strings.h"
#include "tcpip_static/adapter_record.h"
#include "tcpip_static/enumeration.h"
#include "tcpip_static/setupapi_binding.h"

namespace Hostkit::tcpip {

namespace {

constexpr const char* kEnumRoot = "System\\CurrentControlSet\\Enum";
constexpr const char* kClassRoot = "System\\CurrentControlSet\\Control\\Class\\";
constexpr const char* kTcpipLinkage = "System\\CurrentControlSet\\Services\\Tcpip\\Linkage";
constexpr const char* kInterfaces =
    "System\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces\\";
constexpr const char* kNetBtInterfaces =
    "System\\CurrentControlSet\\Services\\NetBT\\Parameters\\Interfaces\\Tcpip_";

bool IsPresent(RegWiz& registry, const std::string& device, bool isXp,
               const std::vector<std::string>& presentIds) {
  if (!isXp) {
    return registry.DoesValNameExist(HKEY_LOCAL_MACHINE, (device + "\\Control").c_str(),
                                     "DeviceReference");
  }
  const std::string path = LowerCase(device);
  for (const std::string& id : presentIds) {
    if (Contains(path, LowerCase(id))) {
      return true;
    }
  }
  return false;
}

// A description the lists do not decide is a network card when it is the "Description" of one
// of the network cards Windows has installed.
bool IsEthernet(RegWiz& registry, const std::string& device) {
  const std::string description = ReadText(registry, device, "DeviceDesc");
  if (IsNicDenialDescription(description.c_str())) {
    return false;
  }
  if (IsNicDescription(description.c_str())) {
    return true;
  }
  std::vector<std::string> cards;
  registry.GetSubKeyNames(HKEY_LOCAL_MACHINE, kNetworkCards, cards);
  for (const std::string& card : cards) {
    std::string cardDescription;
    if (registry.GetKeyVal(HKEY_LOCAL_MACHINE, (std::string(kNetworkCards) + "\\" + card).c_str(),
                           "Description", cardDescription) &&
        cardDescription == description) {
      return true;
    }
  }
  return false;
}

std::string InstanceId(RegWiz& registry, const std::string& device) {
  return ReadText(registry, kClassRoot + ReadText(registry, device, "Driver"), "NetCfgInstanceId");
}

bool IsLinkedToTcpip(RegWiz& registry, const std::string& instanceId) {
  std::vector<std::string> bindings;
  registry.GetMultiStringKeyVal(HKEY_LOCAL_MACHINE, kTcpipLinkage, "Bind", bindings);
  for (const std::string& binding : bindings) {
    if (Contains(binding, instanceId)) {
      return true;
    }
  }
  return false;
}

void ReadInterface(RegWiz& registry, const std::string& interfaceKey,
                   AdapterRecordAccess::Fields& f) {
  f.boundToTcpip = true;
  f.boundDirectlyOrIndirectly = true;
  f.staticNameServers = ServerTokens(ReadText(registry, interfaceKey, "NameServer"));
  f.dnsStatic = !f.staticNameServers.empty();
  f.usingDhcp = ReadText(registry, interfaceKey, "IPAddress") == "0.0.0.0";
  if (!f.usingDhcp) {
    f.staticIpAddress = ReadText(registry, interfaceKey, "IPAddress");
    f.staticSubnetMask = ReadText(registry, interfaceKey, "SubnetMask");
    f.staticDefaultGateway = ReadText(registry, interfaceKey, "DefaultGateway");
  }
  f.staticDomainName = ReadText(registry, interfaceKey, "Domain");
}

// The servers of NetBT's "NameServerList" that convert to narrow text; WINS is on when the list
// has any entry.
void ReadWins(RegWiz& registry, const std::string& instanceId, AdapterRecordAccess::Fields& f) {
  f.winsState = StaticTcpipInfo::WINS_DISABLED;
  wstring key;
  std::vector<wstring> servers;
  if (!ConvertANSIToUnicode(kNetBtInterfaces + instanceId, key) ||
      !registry.GetMultiStringKeyVal(HKEY_LOCAL_MACHINE, key.c_str(), HK_WIDE("NameServerList"),
                                     servers) ||
      servers.empty()) {
    return;
  }
  f.winsState = StaticTcpipInfo::WINS_ENABLED;
  for (const wstring& server : servers) {
    std::string narrow;
    if (ConvertUnicodeToANSI(server, narrow)) {
      f.staticWinsServers.push_back(narrow);
    }
  }
}

}  // namespace

void EnumerateWin2000Xp(bool isXp, std::vector<AdapterInfo>& adapters) {
  RegWiz registry;
  std::vector<std::string> presentIds;
  if (isXp) {
    presentIds = SetupApiBinding().PresentNetworkDeviceIds();
  }
  for (const std::string& device :
       registry.GetAllSubKeys(HKEY_LOCAL_MACHINE, kEnumRoot, "Class", "^Net$")) {
    wstring widePath;
    if (!ConvertANSIToUnicode(device, widePath) || !IsPresent(registry, device, isXp, presentIds)) {
      continue;
    }
    AdapterInfo record;
    auto& f = AdapterRecordAccess::Of(record);
    f.name = ReadWideText(registry, device, HK_WIDE("DeviceDesc"));
    f.ethernet = IsEthernet(registry, device);
    f.enabled = !IsDisabledInCurrentConfig(registry, device);
    const std::string instanceId = InstanceId(registry, device);
    ConvertANSIToUnicode(instanceId, f.serviceName);
    const bool linked = IsLinkedToTcpip(registry, instanceId);
    const std::string reread = InstanceId(registry, device);
    const std::string interfaceKey = reread.empty() ? std::string() : kInterfaces + reread;
    if (!interfaceKey.empty() && linked) {
      ReadInterface(registry, interfaceKey, f);
    }
    ReadWins(registry, instanceId, f);
    std::string address;
    if (adapters::QueryAdapterMacAddress(f.serviceName, address)) {
      f.hardwareAddress = address;
    }
    f.cookie = StaticTcpipInfo::Cookie(f.serviceName.c_str());
    f.functional = !(f.ethernet && f.enabled) || !f.hardwareAddress.empty();
    f.adapterType = BusEnumerator(device, kEnumRoot);
    adapters.push_back(record);
  }
}

}  // namespace Hostkit::tcpip
