// DeviceManager: USB presence from the family's own records of its devices, and the shell that
// forwards to DeviceManager_impl.
#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/service_state.h"
#include "foundation/shell_impl.h"
#include "hostkit/os.h"
#include "hostkit/regwiz.h"
#include "inventory/usb_impl.h"

namespace Hostkit {

template class Pimpl<DeviceManager_impl>;

namespace {

constexpr const char* kConfigManager = "Config Manager\\Enum";
constexpr const char* kEnumRoot = "Enum\\";
constexpr std::array<const char*, 6> kUsbServices = {"usbd",    "uhcd",    "openhci",
                                                     "usbuhci", "usbohci", "usbehci"};

bool IsUsbClass(const std::string& deviceClass) {
  constexpr std::string_view kUsb = "usb";
  return std::equal(
      deviceClass.begin(), deviceClass.end(), kUsb.begin(), kUsb.end(),
      [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == b; });
}

// Windows 9x: a device the Configuration Manager lists as present whose hardware key is of the
// class "USB" (host controllers, hubs and USB devices of the hub class alike).
bool HasPresentUsbDevice() {
  RegWiz registry;
  std::vector<std::string> entries;
  if (!registry.GetSubKeyNames(HKEY_DYN_DATA, kConfigManager, entries)) {
    return false;
  }
  for (const std::string& entry : entries) {
    const std::string key = std::string(kConfigManager) + "\\" + entry;
    std::string hardwareKey;
    std::string deviceClass;
    if (registry.GetKeyVal(HKEY_DYN_DATA, key.c_str(), "HardWareKey", hardwareKey) &&
        !hardwareKey.empty() &&
        registry.GetKeyVal(HKEY_LOCAL_MACHINE, (kEnumRoot + hardwareKey).c_str(), "Class",
                           deviceClass) &&
        IsUsbClass(deviceClass)) {
      return true;
    }
  }
  return false;
}

// The NT family: a running USB host controller or driver stack service.
bool IsUsbServiceRunning() {
  return std::any_of(kUsbServices.begin(), kUsbServices.end(), [](const char* name) {
    return IsServiceRunning(name, SC_MANAGER_CONNECT, SERVICE_QUERY_STATUS);
  });
}

}  // namespace

bool DeviceManager_impl::IsUSBPresent() {
  OS os;
  if (os.IsWin9x()) {
    return HasPresentUsbDevice();
  }
  return os.IsWinNT() && IsUsbServiceRunning();
}

DeviceManager::DeviceManager() = default;
DeviceManager::DeviceManager(const DeviceManager& other) = default;
DeviceManager& DeviceManager::operator=(const DeviceManager& other) = default;
DeviceManager::~DeviceManager() = default;

void DeviceManager::SetVXD(const std::string& driverName) {
  Forward(impl_, false, [&](DeviceManager_impl& impl) {
    impl.SetVXD(driverName);
    return true;
  });
}

bool DeviceManager::IsUSBPresent() {
  return Forward(impl_, false, [&](DeviceManager_impl& impl) { return impl.IsUSBPresent(); });
}

}  // namespace Hostkit
