// DeviceManager: family dispatch over the device sources, the free interrupts and DMA channels,
// USB presence, and the shell that forwards to DeviceManager_impl.
#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <vector>

#include "foundation/service_state.h"
#include "foundation/shell_impl.h"
#include "hostkit/os.h"
#include "hostkit/regwiz.h"
#include "inventory/device_manager_impl.h"

namespace Hostkit {

template class Pimpl<DeviceManager_impl>;

namespace inventory {

ClassNames NamesOf(DEVICE_CLASS deviceClass) {
  switch (deviceClass) {
    case DEVICE_CLASS_NETWORK:
      return {"Net", platform::setupapi::kNetClass};
    case DEVICE_CLASS_MODEM:
      return {"Modem",
              {0x4D36E96D, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}}};
    case DEVICE_CLASS_USB:
      return {"USB",
              {0x36FC9E60, 0xC465, 0x11CF, {0x80, 0x56, 0x44, 0x45, 0x53, 0x54, 0x00, 0x00}}};
    case DEVICE_CLASS_DISPLAY:
      return {"Display",
              {0x4D36E968, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}}};
    case DEVICE_CLASS_SOUND:
      return {"MEDIA",
              {0x4D36E96C, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}}};
    case DEVICE_CLASS_PORTS:
      return {"Ports",
              {0x4D36E978, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}}};
    case DEVICE_CLASS_DISK:
      return {"DiskDrive",
              {0x4D36E967, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}}};
    case DEVICE_CLASS_CDROM:
      return {"CDROM",
              {0x4D36E965, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}}};
  }
  return {"", {}};
}

bool SameName(const std::string& a, const std::string& b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) ==
                  std::tolower(static_cast<unsigned char>(y));
         });
}

}  // namespace inventory

namespace {

constexpr const char* kConfigManager = "Config Manager\\Enum";
constexpr const char* kEnumRoot = "Enum\\";
constexpr std::array<const char*, 6> kUsbServices = {"usbd",    "uhcd",    "openhci",
                                                     "usbuhci", "usbohci", "usbehci"};
constexpr int kIrqLines = 16;
constexpr int kCascadeIrq = 2;
constexpr int kDmaChannels = 8;
constexpr int kCascadeDma = 4;

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
        inventory::SameName(deviceClass, "USB")) {
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

// The numbers below `count` that are not `reserved` and not in `used`.
std::vector<int> FreeNumbers(int count, int reserved, const std::vector<int>& used) {
  std::vector<int> free;
  for (int number = 0; number < count; ++number) {
    if (number != reserved && std::find(used.begin(), used.end(), number) == used.end()) {
      free.push_back(number);
    }
  }
  return free;
}

}  // namespace

bool DeviceManager_impl::IsUSBPresent() {
  OS os;
  if (os.IsWin9x()) {
    return HasPresentUsbDevice();
  }
  return os.IsWinNT() && IsUsbServiceRunning();
}

std::vector<DeviceManager::DeviceInfo> DeviceManager_impl::GetDevices(DEVICE_CLASS deviceClass) {
  OS os;
  if (os.IsWin9x()) {
    return inventory::DevicesWin9x(deviceClass);
  }
  if (os.IsWin2000() || os.IsWinXP()) {
    return inventory::DevicesWin2000Xp(deviceClass);
  }
  if (os.IsWinNT4()) {
    return inventory::DevicesNt4(deviceClass);
  }
  return {};
}

std::optional<DeviceManager::Resources> DeviceManager_impl::AllResources() {
  OS os;
  if (os.IsWin9x()) {
    return inventory::AllResourcesWin9x();
  }
  if (os.IsWinNT()) {
    return inventory::AllResourcesNt();
  }
  return std::nullopt;
}

std::vector<int> DeviceManager_impl::GetFreeIRQs() {
  const auto all = AllResources();
  return all ? FreeNumbers(kIrqLines, kCascadeIrq, all->irqs) : std::vector<int>{};
}

std::vector<int> DeviceManager_impl::GetFreeDMAChannels() {
  const auto all = AllResources();
  return all ? FreeNumbers(kDmaChannels, kCascadeDma, all->dmaChannels) : std::vector<int>{};
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

std::vector<DeviceManager::DeviceInfo> DeviceManager::GetDevices(DEVICE_CLASS deviceClass) {
  return Forward(impl_, std::vector<DeviceInfo>{},
                 [&](DeviceManager_impl& impl) { return impl.GetDevices(deviceClass); });
}

std::vector<int> DeviceManager::GetFreeIRQs() {
  return Forward(impl_, std::vector<int>{},
                 [&](DeviceManager_impl& impl) { return impl.GetFreeIRQs(); });
}

std::vector<int> DeviceManager::GetFreeDMAChannels() {
  return Forward(impl_, std::vector<int>{},
                 [&](DeviceManager_impl& impl) { return impl.GetFreeDMAChannels(); });
}

}  // namespace Hostkit
