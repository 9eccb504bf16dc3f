// The implementation object behind DeviceManager, and the family sources it reads (the choice
// of source per family is documented in hostkit/device_manager.h).
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hostkit/device_manager.h"
#include "platform/setupapi.h"

namespace Hostkit {

namespace inventory {

using DeviceInfo = DeviceManager::DeviceInfo;
using Resources = DeviceManager::Resources;

// The class as Windows 9x names it in a device's "Class" and the class GUID of 2000 and XP.
struct ClassNames {
  const char* win9x;
  platform::setupapi::ClassGuid guid;
};
ClassNames NamesOf(DEVICE_CLASS deviceClass);

// Two registry names are the same without regard to ASCII case.
bool SameName(const std::string& a, const std::string& b);

// Windows 9x: the Configuration Manager's devnodes of the class; every devnode's allocation.
std::vector<DeviceInfo> DevicesWin9x(DEVICE_CLASS deviceClass);
std::optional<Resources> AllResourcesWin9x();

// NT 4: one device per driver in the resource maps, of the class its service's group names.
std::vector<DeviceInfo> DevicesNt4(DEVICE_CLASS deviceClass);
// Windows 2000 and XP: SetupAPI's present devices with the Plug and Play manager's resources.
std::vector<DeviceInfo> DevicesWin2000Xp(DEVICE_CLASS deviceClass);
// The NT family: every ".Raw" list in the resource maps.
std::optional<Resources> AllResourcesNt();
// The ".Raw" resources the resource map keeps for the device object `name` ("\Device\X")
// under `key` (a path below HKLM\HARDWARE\RESOURCEMAP).
Resources MappedResources(const std::string& key, const std::string& name);

}  // namespace inventory

class DeviceManager_impl {
 public:
  void SetVXD(const std::string& driverName) { driverName_ = driverName; }
  bool IsUSBPresent();
  std::vector<DeviceManager::DeviceInfo> GetDevices(DEVICE_CLASS deviceClass);
  std::vector<int> GetFreeIRQs();
  std::vector<int> GetFreeDMAChannels();

 private:
  std::optional<DeviceManager::Resources> AllResources();

  std::string driverName_;
};

}  // namespace Hostkit
