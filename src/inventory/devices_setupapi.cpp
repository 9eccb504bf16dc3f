// Windows 2000 and XP devices: SetupAPI's present devices of a class, their state from
// cfgmgr32, and their resources from the Plug and Play manager's resource map. Both modules are
// bound at run time; without SetupAPI there are no devices, without cfgmgr32 no state.
#include <array>
#include <string>
#include <vector>

#include "inventory/device_manager_impl.h"
#include "platform/cfgmgr32.h"
#include "platform/modules.h"
#include "platform/setupapi.h"

namespace Hostkit::inventory {

namespace {

namespace setupapi = platform::setupapi;
namespace cfgmgr = platform::cfgmgr;

constexpr const char* kPnpResourceMap = "PnP Manager\\PnpManager";

// A module loaded for the life of the object.
class LoadedModule {
 public:
  explicit LoadedModule(const char* name) : module_(platform::LoadLibraryA(name)) {}
  ~LoadedModule() {
    if (module_ != nullptr) {
      platform::FreeLibrary(module_);
    }
  }
  LoadedModule(const LoadedModule&) = delete;
  LoadedModule& operator=(const LoadedModule&) = delete;

  template <class F>
  F Entry(const char* name) const {
    return module_ != nullptr ? platform::ProcAs<F>(platform::GetProcAddress(module_, name))
                              : nullptr;
  }

 private:
  HMODULE module_;
};

class DeviceLister {
 public:
  DeviceLister()
      : setupapi_(setupapi::kModule),
        cfgmgr_(cfgmgr::kModule),
        getClassDevs_(setupapi_.Entry<setupapi::GetClassDevsA>("SetupDiGetClassDevsA")),
        enumDeviceInfo_(setupapi_.Entry<setupapi::EnumDeviceInfo>("SetupDiEnumDeviceInfo")),
        getProperty_(setupapi_.Entry<setupapi::GetDeviceRegistryPropertyA>(
            "SetupDiGetDeviceRegistryPropertyA")),
        destroyList_(
            setupapi_.Entry<setupapi::DestroyDeviceInfoList>("SetupDiDestroyDeviceInfoList")),
        getStatus_(cfgmgr_.Entry<cfgmgr::GetDevNodeStatus>("CM_Get_DevNode_Status")) {}

  std::vector<DeviceInfo> List(const setupapi::ClassGuid& deviceClass) const {
    std::vector<DeviceInfo> devices;
    if (getClassDevs_ == nullptr || enumDeviceInfo_ == nullptr || getProperty_ == nullptr ||
        destroyList_ == nullptr) {
      return devices;
    }
    HANDLE set = getClassDevs_(&deviceClass, nullptr, nullptr, setupapi::kPresentOnly);
    if (set == INVALID_HANDLE_VALUE) {
      return devices;
    }
    setupapi::DeviceInfoData data{};
    data.cbSize = sizeof data;
    for (DWORD index = 0; enumDeviceInfo_(set, index, &data) != FALSE; ++index) {
      devices.push_back(Device(set, data));
    }
    destroyList_(set);
    return devices;
  }

 private:
  DeviceInfo Device(HANDLE set, setupapi::DeviceInfoData& data) const {
    DeviceInfo device;
    device.name = Property(set, data, setupapi::kDeviceDescription);
    device.hardwareId = Property(set, data, setupapi::kHardwareId);  // the first of the list
    device.driver = Property(set, data, setupapi::kDriver);
    if (getStatus_ != nullptr) {
      ULONG status = 0;
      ULONG problem = 0;
      if (getStatus_(&status, &problem, data.devInst, 0) == cfgmgr::kSuccess) {
        device.status = status;
        device.problem = problem;
      }
    }
    const std::string deviceObject = Property(set, data, setupapi::kPhysicalDeviceObject);
    if (!deviceObject.empty()) {
      device.resources = MappedResources(kPnpResourceMap, deviceObject);
    }
    return device;
  }

  // A text property up to its first terminator; empty when it cannot be read.
  std::string Property(HANDLE set, setupapi::DeviceInfoData& data, DWORD property) const {
    std::array<BYTE, 4096> buffer{};
    DWORD type = 0;
    DWORD required = 0;
    if (getProperty_(set, &data, property, &type, buffer.data(),
                     static_cast<DWORD>(buffer.size() - 1), &required) == FALSE) {
      return {};
    }
    return reinterpret_cast<const char*>(buffer.data());
  }

  LoadedModule setupapi_;
  LoadedModule cfgmgr_;
  setupapi::GetClassDevsA getClassDevs_;
  setupapi::EnumDeviceInfo enumDeviceInfo_;
  setupapi::GetDeviceRegistryPropertyA getProperty_;
  setupapi::DestroyDeviceInfoList destroyList_;
  cfgmgr::GetDevNodeStatus getStatus_;
};

}  // namespace

std::vector<DeviceInfo> DevicesWin2000Xp(DEVICE_CLASS deviceClass) {
  return DeviceLister().List(NamesOf(deviceClass).guid);
}

}  // namespace Hostkit::inventory
