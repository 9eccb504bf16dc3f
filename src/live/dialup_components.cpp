// Dial-up adapters, the VPN adapter and the Dial-Up Networking components in the Windows 9x
// registry.
#include "live/dialup_components.h"

#include <algorithm>
#include <string>
#include <vector>

#include "tcpip_static/enumeration.h"

namespace Hostkit::live {

namespace {

constexpr const char* kRootNet = "Enum\\Root\\Net";
constexpr const char* kClass = "System\\CurrentControlSet\\Services\\Class";
constexpr const char* kNetClass = "System\\CurrentControlSet\\Services\\Class\\Net";
constexpr const char* kPppDriver = "pppmac.vxd";
constexpr const char* kPptpDriver = "netpptp.sys";

using tcpip::ReadText;

std::vector<std::string> SubKeys(RegWiz& registry, const char* path) {
  std::vector<std::string> names;
  registry.GetSubKeyNames(HKEY_LOCAL_MACHINE, path, names);
  return names;
}

std::string DevicePath(const std::string& device) { return std::string(kRootNet) + "\\" + device; }

// The driver file of a device, through the class entry its "Driver" names.
std::string DriverFile(RegWiz& registry, const std::string& devicePath) {
  return ReadText(registry, std::string(kClass) + "\\" + ReadText(registry, devicePath, "Driver"),
                  "DeviceVxDs");
}

// A protocol name containing "MSTCP" among the value names of the device's "Bindings".
bool IsBoundToTcpip(RegWiz& registry, const std::string& devicePath) {
  std::vector<std::string> bindings;
  registry.GetValNames(HKEY_LOCAL_MACHINE, (devicePath + "\\Bindings").c_str(), bindings);
  return std::any_of(bindings.begin(), bindings.end(), [](const std::string& protocol) {
    return protocol.find("MSTCP") != std::string::npos;
  });
}

// The device's class entry (when its "Driver" still reads; an empty one would name the whole
// class tree), then the device itself.
void RemoveDevice(RegWiz& registry, const std::string& devicePath) {
  std::string driver;
  if (registry.GetKeyVal(HKEY_LOCAL_MACHINE, devicePath.c_str(), "Driver", driver) &&
      !driver.empty()) {
    registry.DeleteKey(HKEY_LOCAL_MACHINE, (std::string(kClass) + "\\" + driver).c_str());
  }
  registry.DeleteKey(HKEY_LOCAL_MACHINE, devicePath.c_str());
}

// One pass over the devices, listed afresh: removes the first for which `remove(isDialup,
// devicePath)` holds and ends.
template <class Test>
void RemoveFirst(RegWiz& registry, Test remove) {
  for (const std::string& device : SubKeys(registry, kRootNet)) {
    const std::string path = DevicePath(device);
    if (remove(DriverFile(registry, path) == kPppDriver, path)) {
      RemoveDevice(registry, path);
      return;
    }
  }
}

}  // namespace

int CountDialupAdapters(RegWiz& registry) {
  int count = 0;
  for (const std::string& device : SubKeys(registry, kRootNet)) {
    if (DriverFile(registry, DevicePath(device)) == kPppDriver) {
      ++count;
    }
  }
  return count;
}

// A device whose "Driver" names any VPN class entry: an entry left over from an earlier
// installation, used by no device, must not hide the one in use.
bool IsVpnAdapterInstalled(RegWiz& registry) {
  std::vector<std::string> vpnDrivers;
  for (const std::string& entry : SubKeys(registry, kNetClass)) {
    if (ReadText(registry, std::string(kNetClass) + "\\" + entry, "DeviceVxDs") == kPptpDriver) {
      vpnDrivers.push_back("Net\\" + entry);
    }
  }
  const std::vector<std::string> devices = SubKeys(registry, kRootNet);
  return std::any_of(devices.begin(), devices.end(), [&](const std::string& device) {
    const std::string driver = ReadText(registry, DevicePath(device), "Driver");
    return std::find(vpnDrivers.begin(), vpnDrivers.end(), driver) != vpnDrivers.end();
  });
}

bool AreDun13ComponentsRegistered(RegWiz& registry) {
  const std::vector<std::string> components =
      SubKeys(registry, "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Setup\\OptionalComponents");
  // Key names are matched as the registry matches them, without regard to case.
  const auto has = [&](const char* name) {
    return std::any_of(components.begin(), components.end(), [&](const std::string& component) {
      return tcpip::LowerCase(component) == tcpip::LowerCase(name);
    });
  };
  return has("RNASERV") && has("VPN");
}

void RemoveUnboundDialupAdapter(RegWiz& registry) {
  RemoveFirst(registry, [&](bool isDialup, const std::string& path) {
    return isDialup && !IsBoundToTcpip(registry, path);
  });
}

void RemoveForeignOrUnboundAdapter(RegWiz& registry) {
  RemoveFirst(registry, [&](bool isDialup, const std::string& path) {
    return !isDialup || !IsBoundToTcpip(registry, path);
  });
}

}  // namespace Hostkit::live
