// NT family devices from the resource maps (HKLM\HARDWARE\RESOURCEMAP\TYPE\DRIVER, values
// "\Device\NAME.Raw" and ".Translated" holding REG_RESOURCE_LIST data): NT 4's devices, one per
// driver, and the resources of every family member.
#include <array>
#include <string>
#include <vector>

#include "hostkit/regwiz.h"
#include "inventory/device_manager_impl.h"
#include "inventory/resource_lists.h"

namespace Hostkit::inventory {

namespace {

constexpr const char* kResourceMap = "HARDWARE\\RESOURCEMAP";
constexpr const char* kServices = "SYSTEM\\CurrentControlSet\\Services\\";
constexpr std::string_view kRawSuffix = ".Raw";

struct GroupClass {
  const char* group;
  DEVICE_CLASS deviceClass;
};

// The service groups of NT 4's drivers that stand for a device class.
constexpr std::array<GroupClass, 5> kGroups = {{
    {"NDIS", DEVICE_CLASS_NETWORK},
    {"Video", DEVICE_CLASS_DISPLAY},
    {"Extended base", DEVICE_CLASS_PORTS},
    {"SCSI miniport", DEVICE_CLASS_DISK},
    {"Primary disk", DEVICE_CLASS_DISK},
}};

bool IsRawList(const std::string& name) {
  return name.size() > kRawSuffix.size() &&
         SameName(name.substr(name.size() - kRawSuffix.size()), std::string(kRawSuffix));
}

std::string MapKey(const std::string& path) { return std::string(kResourceMap) + "\\" + path; }

// The ".Raw" lists of one driver's key below the resource map, merged.
Resources DriverResources(RegWiz& registry, const std::string& path) {
  Resources resources;
  std::vector<std::string> names;
  registry.GetValNames(HKEY_LOCAL_MACHINE, MapKey(path).c_str(), names);
  for (const std::string& name : names) {
    std::vector<unsigned char> data;
    if (IsRawList(name) &&
        registry.GetBinaryKeyVal(HKEY_LOCAL_MACHINE, MapKey(path).c_str(), name.c_str(), data)) {
      ParseResourceList(data, resources);
    }
  }
  return resources;
}

bool ServiceIsOfClass(RegWiz& registry, const std::string& service, DEVICE_CLASS deviceClass) {
  std::string group;
  if (!registry.GetKeyVal(HKEY_LOCAL_MACHINE, (kServices + service).c_str(), "Group", group)) {
    return false;
  }
  for (const GroupClass& entry : kGroups) {
    if (entry.deviceClass == deviceClass && SameName(group, entry.group)) {
      return true;
    }
  }
  return false;
}

// Calls `visit(path, driver)` for every TYPE\DRIVER key of the resource map; false when the
// map cannot be read.
template <class Visit>
bool ForEachDriver(RegWiz& registry, Visit visit) {
  std::vector<std::string> types;
  if (!registry.GetSubKeyNames(HKEY_LOCAL_MACHINE, kResourceMap, types)) {
    return false;
  }
  for (const std::string& type : types) {
    std::vector<std::string> drivers;
    registry.GetSubKeyNames(HKEY_LOCAL_MACHINE, MapKey(type).c_str(), drivers);
    for (const std::string& driver : drivers) {
      visit(type + "\\" + driver, driver);
    }
  }
  return true;
}

}  // namespace

std::vector<DeviceInfo> DevicesNt4(DEVICE_CLASS deviceClass) {
  std::vector<DeviceInfo> devices;
  RegWiz registry;
  ForEachDriver(registry, [&](const std::string& path, const std::string& driver) {
    if (!ServiceIsOfClass(registry, driver, deviceClass)) {
      return;
    }
    DeviceInfo device;
    device.driver = driver;
    if (!registry.GetKeyVal(HKEY_LOCAL_MACHINE, (kServices + driver).c_str(), "DisplayName",
                            device.name)) {
      device.name = driver;
    }
    device.resources = DriverResources(registry, path);
    devices.push_back(std::move(device));
  });
  return devices;
}

std::optional<Resources> AllResourcesNt() {
  RegWiz registry;
  Resources all;
  if (!ForEachDriver(registry, [&](const std::string& path, const std::string& /*driver*/) {
        AddResources(all, DriverResources(registry, path));
      })) {
    return std::nullopt;
  }
  return all;
}

Resources MappedResources(const std::string& key, const std::string& name) {
  Resources resources;
  RegWiz registry;
  std::vector<unsigned char> data;
  if (registry.GetBinaryKeyVal(HKEY_LOCAL_MACHINE, MapKey(key).c_str(),
                               (name + std::string(kRawSuffix)).c_str(), data)) {
    ParseResourceList(data, resources);
  }
  return resources;
}

}  // namespace Hostkit::inventory
