// Windows 9x devices: the Configuration Manager's devnodes (HKEY_DYN_DATA\Config Manager\Enum)
// with their hardware keys under HKLM\Enum and their binary allocations.
#include <string>
#include <vector>

#include "hostkit/regwiz.h"
#include "inventory/device_manager_impl.h"
#include "inventory/resource_lists.h"

namespace Hostkit::inventory {

namespace {

constexpr const char* kConfigManager = "Config Manager\\Enum";
constexpr const char* kEnumRoot = "Enum\\";

std::string NodeKey(const std::string& node) { return std::string(kConfigManager) + "\\" + node; }

// The allocation of a devnode; none when it has no readable "Allocation".
Resources NodeResources(RegWiz& registry, const std::string& node) {
  Resources resources;
  std::vector<unsigned char> allocation;
  if (registry.GetBinaryKeyVal(HKEY_DYN_DATA, NodeKey(node).c_str(), "Allocation", allocation)) {
    ParseConfigManagerAllocation(allocation, resources);
  }
  return resources;
}

}  // namespace

std::vector<DeviceInfo> DevicesWin9x(DEVICE_CLASS deviceClass) {
  std::vector<DeviceInfo> devices;
  RegWiz registry;
  std::vector<std::string> nodes;
  if (!registry.GetSubKeyNames(HKEY_DYN_DATA, kConfigManager, nodes)) {
    return devices;
  }
  const char* wanted = NamesOf(deviceClass).win9x;
  for (const std::string& node : nodes) {
    std::string hardwareKey;
    std::string className;
    if (!registry.GetKeyVal(HKEY_DYN_DATA, NodeKey(node).c_str(), "HardWareKey", hardwareKey) ||
        hardwareKey.empty()) {
      continue;
    }
    const std::string deviceKey = kEnumRoot + hardwareKey;
    if (!registry.GetKeyVal(HKEY_LOCAL_MACHINE, deviceKey.c_str(), "Class", className) ||
        !SameName(className, wanted)) {
      continue;
    }
    DeviceInfo device;
    registry.GetKeyVal(HKEY_LOCAL_MACHINE, deviceKey.c_str(), "DeviceDesc", device.name);
    std::vector<std::string> ids;
    if (registry.GetMultiStringKeyVal(HKEY_LOCAL_MACHINE, deviceKey.c_str(), "HardwareID", ids) &&
        !ids.empty()) {
      device.hardwareId = ids.front();
    } else {
      registry.GetKeyVal(HKEY_LOCAL_MACHINE, deviceKey.c_str(), "HardwareID", device.hardwareId);
    }
    registry.GetKeyVal(HKEY_LOCAL_MACHINE, deviceKey.c_str(), "Driver", device.driver);
    registry.GetDwordKeyVal(HKEY_DYN_DATA, NodeKey(node).c_str(), "Status", device.status);
    registry.GetDwordKeyVal(HKEY_DYN_DATA, NodeKey(node).c_str(), "Problem", device.problem);
    device.resources = NodeResources(registry, node);
    devices.push_back(std::move(device));
  }
  return devices;
}

std::optional<Resources> AllResourcesWin9x() {
  RegWiz registry;
  std::vector<std::string> nodes;
  if (!registry.GetSubKeyNames(HKEY_DYN_DATA, kConfigManager, nodes)) {
    return std::nullopt;
  }
  Resources all;
  for (const std::string& node : nodes) {
    AddResources(all, NodeResources(registry, node));
  }
  return all;
}

}  // namespace Hostkit::inventory
