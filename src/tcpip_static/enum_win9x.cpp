// The stored TCP/IP enumeration on Windows 95, 98 and Me.
//
// Network devices are the keys under "Enum" whose "Class" is "Net". TCP/IP settings live in the
// class key of the TCP/IP instance bound to the device, found through the device's "Bindings"
// (directly, or through another network component such as a VPN or dial-up protocol). DNS
// settings are machine-wide on this family and copied into every record.
#include "hostkit/adapter_classification.h"
#include "hostkit/strings.h"
#include "tcpip_static/adapter_record.h"
#include "tcpip_static/enumeration.h"

namespace Hostkit::tcpip {

namespace {

constexpr const char* kClassRoot = "System\\CurrentControlSet\\Services\\Class\\";
constexpr const char* kNetworkRoot = "Enum\\Network\\";
constexpr const char* kMstcp = "System\\CurrentControlSet\\Services\\VxD\\MSTCP";
constexpr const char* kConfigManager = "Config Manager\\Enum";
constexpr int kBindingDepth = 5;

// The TCP/IP instance's class key when one of `path`'s bindings is a TCP/IP instance itself.
std::string DirectTcpipBindingKey(RegWiz& registry, const std::vector<std::string>& bindings) {
  for (const std::string& name : bindings) {
    if (!Contains(LowerCase(name), "mstcp")) {
      continue;
    }
    std::string driver;
    if (registry.GetKeyVal(HKEY_LOCAL_MACHINE, (kNetworkRoot + name).c_str(), "Driver", driver)) {
      return kClassRoot + driver;
    }
  }
  return {};
}

std::vector<std::string> BindingNames(RegWiz& registry, const std::string& path) {
  std::vector<std::string> names;
  if (!registry.GetValNames(HKEY_LOCAL_MACHINE, (path + "\\Bindings").c_str(), names)) {
    names.clear();
  }
  return names;
}

// "DeviceVxDs" of the device's own class key.
std::string DeviceDriver(RegWiz& registry, const std::string& device) {
  return ReadText(registry, kClassRoot + ReadText(registry, device, "Driver"), "DeviceVxDs");
}

bool IsEthernet(RegWiz& registry, const std::string& device) {
  std::string deviceClass;
  if (!registry.GetKeyVal(HKEY_LOCAL_MACHINE, device.c_str(), "Class", deviceClass) ||
      LowerCase(deviceClass) != "net") {
    return false;
  }
  const std::string description = ReadText(registry, device, "DeviceDesc");
  if (IsNicDenialDescription(description.c_str())) {
    return false;
  }
  const std::string compatible = LowerCase(ReadText(registry, device, "CompatibleIDs"));
  const std::string hardware = LowerCase(ReadText(registry, device, "HardwareID"));
  const std::string path = LowerCase(device);
  for (const std::string* text : {&hardware, &compatible, &path}) {
    for (const char* bus : {"pci\\", "isapnp\\", "usb\\", "pcmcia\\"}) {
      if (Contains(*text, bus)) {
        return true;
      }
    }
  }
  if (IsNicDescription(description.c_str())) {
    return true;
  }
  return IsNicDeviceDriver(DeviceDriver(registry, device).c_str());
}

// A disabled device is never reported broken. Otherwise the Config Manager entry of the device
// decides by its "Problem". An entry whose "HardWareKey" cannot be read names no device, and is
// not taken to match every device.
bool IsFunctional(RegWiz& registry, const std::string& device, bool enabled) {
  if (!enabled) {
    return true;
  }
  const std::string path = LowerCase(device);
  std::vector<std::string> entries;
  registry.GetSubKeyNames(HKEY_DYN_DATA, kConfigManager, entries);
  for (const std::string& entry : entries) {
    const std::string key = std::string(kConfigManager) + "\\" + entry;
    std::string hardwareKey;
    if (!registry.GetKeyVal(HKEY_DYN_DATA, key.c_str(), "HardWareKey", hardwareKey) ||
        hardwareKey.empty() || !Contains(path, LowerCase(hardwareKey))) {
      continue;
    }
    unsigned long problem = 0;
    if (!registry.GetDwordKeyVal(HKEY_DYN_DATA, key.c_str(), "Problem", problem)) {
      problem = 0;
    }
    return problem == 0;
  }
  return true;
}

StaticTcpipInfo::WINS_STATE WinsState(RegWiz& registry, const std::string& binding) {
  std::string nodeType;
  if (!registry.GetKeyVal(HKEY_LOCAL_MACHINE, binding.c_str(), "NodeType", nodeType)) {
    return StaticTcpipInfo::WINS_USE_DHCP;
  }
  return nodeType == "8" ? StaticTcpipInfo::WINS_ENABLED : StaticTcpipInfo::WINS_DISABLED;
}

// Every value of the binding key whose name begins with "NameServer", in listed order.
std::vector<std::string> WinsServers(RegWiz& registry, const std::string& binding) {
  std::vector<std::string> servers;
  std::vector<std::string> names;
  registry.GetValNames(HKEY_LOCAL_MACHINE, binding.c_str(), names);
  for (const std::string& name : names) {
    if (name.compare(0, 10, "NameServer") == 0) {
      servers.push_back(ReadText(registry, binding, name.c_str()));
    }
  }
  return servers;
}

void ReadBinding(RegWiz& registry, const std::string& binding, AdapterRecordAccess::Fields& f) {
  f.boundDirectlyOrIndirectly = true;
  f.dnsStatic = ReadText(registry, kMstcp, "EnableDNS") == "1";
  std::string address;
  if (registry.GetKeyVal(HKEY_LOCAL_MACHINE, binding.c_str(), "IPAddress", address) &&
      address == "0.0.0.0") {
    f.usingDhcp = true;
  } else {
    f.usingDhcp = false;
    f.staticIpAddress = ReadText(registry, binding, "IPAddress");
    f.staticSubnetMask = ReadText(registry, binding, "IPMask");
    f.staticDefaultGateway = ReadText(registry, binding, "DefaultGateway");
  }
  f.winsState = WinsState(registry, binding);
  if (f.winsState == StaticTcpipInfo::WINS_ENABLED) {
    f.staticWinsServers = WinsServers(registry, binding);
  }
}

}  // namespace

std::string FindTcpipBindingKey(RegWiz& registry, const std::string& path, int depth) {
  if (depth <= 0) {
    return {};
  }
  const std::vector<std::string> bindings = BindingNames(registry, path);
  std::string found = DirectTcpipBindingKey(registry, bindings);
  for (auto name = bindings.begin(); found.empty() && name != bindings.end(); ++name) {
    found = FindTcpipBindingKey(registry, kNetworkRoot + *name, depth - 1);
  }
  return found;
}

void EnumerateWin9x(std::vector<AdapterInfo>& adapters) {
  RegWiz registry;
  for (const std::string& device :
       registry.GetAllSubKeys(HKEY_LOCAL_MACHINE, "Enum", "Class", "^Net$")) {
    wstring widePath;
    if (!registry.DoesValNameExist(HKEY_LOCAL_MACHINE, device.c_str(), "Driver") ||
        !ConvertANSIToUnicode(device, widePath)) {
      continue;
    }
    AdapterInfo record;
    auto& f = AdapterRecordAccess::Of(record);
    f.name = ReadWideText(registry, device, HK_WIDE("DeviceDesc"));
    f.deviceDriver = DeviceDriver(registry, device);
    f.ethernet = IsEthernet(registry, device);
    f.enabled = !IsDisabledInCurrentConfig(registry, device);
    f.functional = IsFunctional(registry, device, f.enabled);
    f.boundToTcpip = !DirectTcpipBindingKey(registry, BindingNames(registry, device)).empty();
    f.tcpipBindingKey = FindTcpipBindingKey(registry, device, kBindingDepth);
    if (!f.tcpipBindingKey.empty()) {
      ReadBinding(registry, f.tcpipBindingKey, f);
    }
    f.staticDomainName = ReadText(registry, kMstcp, "Domain");
    f.staticNameServers = ServerTokens(ReadText(registry, kMstcp, "NameServer"));
    f.cookie = StaticTcpipInfo::Cookie(f.name.c_str());
    f.adapterType = BusEnumerator(device, "Enum");
    adapters.push_back(record);
  }
}

}  // namespace Hostkit::tcpip
