// "setupapi.dll" of the simulated machine: the device-information calls over the machine's
// device keys ("SYSTEM\CurrentControlSet\Enum\ENUMERATOR\DEVICE\INSTANCE") and its list of
// present devices; and "cfgmgr32.dll" with the state of their device nodes.
#include "platform/setupapi.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "hostkit/sim/machine.h"
#include "platform/cfgmgr32.h"
#include "platform/modules.h"
#include "platform/registry.h"
#include "platform/sim/kernel/handle_table.h"
#include "platform/sim/kernel/standard_modules.h"
#include "platform/system_info.h"

namespace Hostkit::sim {

namespace {

namespace setupapi = platform::setupapi;
namespace cfgmgr = platform::cfgmgr;

constexpr const char* kEnumKey = "SYSTEM\\CurrentControlSet\\Enum";

class DeviceInfoSet : public KernelObject {
 public:
  DeviceInfoSet(std::vector<std::string> ids, const setupapi::ClassGuid& guid)
      : ids(std::move(ids)), guid(guid) {}
  std::vector<std::string> ids;  // instance identifiers, in listing order
  setupapi::ClassGuid guid;
};

// Device node handles: each instance identifier gets one number, from 1, for the process's
// life, as the Configuration Manager keeps one devnode per device.
class DevNodeTable {
 public:
  DWORD Of(const std::string& id) {
    std::lock_guard lock(mutex_);
    for (std::size_t i = 0; i < ids_.size(); ++i) {
      if (NoCaseEqual(ids_[i], id)) {
        return static_cast<DWORD>(i + 1);
      }
    }
    ids_.push_back(id);
    return static_cast<DWORD>(ids_.size());
  }
  bool Id(DWORD devInst, std::string& id) {
    std::lock_guard lock(mutex_);
    if (devInst == 0 || devInst > ids_.size()) {
      return false;
    }
    id = ids_[devInst - 1];
    return true;
  }

 private:
  std::mutex mutex_;
  std::vector<std::string> ids_;
};

DevNodeTable& DevNodes() {
  static DevNodeTable table;
  return table;
}

std::string GuidText(const setupapi::ClassGuid& guid) {
  char text[40];
  std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                static_cast<unsigned>(guid.data1), guid.data2, guid.data3, guid.data4[0],
                guid.data4[1], guid.data4[2], guid.data4[3], guid.data4[4], guid.data4[5],
                guid.data4[6], guid.data4[7]);
  return text;
}

// A key opened for the length of a scope; null when the open failed.
class Key {
 public:
  Key(HKEY parent, const char* name) {
    if (platform::RegOpenKeyExA(parent, name, 0, KEY_READ, &key_) != ERROR_SUCCESS) {
      key_ = nullptr;
    }
  }
  ~Key() {
    if (key_ != nullptr) {
      platform::RegCloseKey(key_);
    }
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;

  HKEY get() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

// Calls `visit(subkey, name)` with every subkey of the open `key` that opens, in registry order.
template <class Visit>
void ForEachSubKey(HKEY key, Visit&& visit) {
  char name[256];
  for (DWORD index = 0;; ++index) {
    DWORD size = sizeof name;
    if (platform::RegEnumKeyExA(key, index, name, &size, nullptr, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS) {
      break;
    }
    const Key subkey(key, name);
    if (subkey.get() != nullptr) {
      visit(subkey.get(), std::string(name, size));
    }
  }
}

// The value's type and data as the narrow calls read it from the open `key`; false when it is
// missing.
bool ReadValue(HKEY key, const char* name, DWORD& type, std::vector<BYTE>& data) {
  DWORD size = 0;
  LONG result = platform::RegQueryValueExA(key, name, nullptr, &type, nullptr, &size);
  if (result == ERROR_SUCCESS) {
    data.assign(size, 0);
    result = platform::RegQueryValueExA(key, name, nullptr, &type, data.data(), &size);
    data.resize(size);
  }
  return result == ERROR_SUCCESS;
}

std::string ReadText(HKEY key, const char* name) {
  DWORD type = REG_NONE;
  std::vector<BYTE> data;
  if (!ReadValue(key, name, type, data) || type != REG_SZ) {
    return {};
  }
  std::string text(data.begin(), data.end());
  return text.substr(0, text.find('\0'));
}

// Device instances of a class: every ENUMERATOR\DEVICE\INSTANCE key whose "ClassGUID" names it,
// each key opened once below its parent.
std::vector<std::string> DevicesOfClass(const std::string& classGuid) {
  std::vector<std::string> ids;
  const Key enumKey(HKEY_LOCAL_MACHINE, kEnumKey);
  if (enumKey.get() == nullptr) {
    return ids;
  }
  ForEachSubKey(enumKey.get(), [&](HKEY enumerator, const std::string& enumeratorName) {
    ForEachSubKey(enumerator, [&](HKEY device, const std::string& deviceName) {
      ForEachSubKey(device, [&](HKEY instance, const std::string& instanceName) {
        if (NoCaseEqual(ReadText(instance, "ClassGUID"), classGuid)) {
          ids.push_back(enumeratorName + '\\' + deviceName + '\\' + instanceName);
        }
      });
    });
  });
  return ids;
}

bool IsPresent(const Machine& machine, const std::string& id) {
  const auto& present = const_cast<Machine&>(machine).presentDevices();
  return std::any_of(present.begin(), present.end(),
                     [&id](const std::string& item) { return NoCaseEqual(item, id); });
}

BOOL Fail(LONG error) {
  platform::SetLastError(static_cast<DWORD>(error));
  return FALSE;
}

// The set's member the data record's device node stands for.
const std::string* Member(HANDLE set, const setupapi::DeviceInfoData* data) {
  auto object = FindHandleAs<DeviceInfoSet>(set);
  std::string id;
  if (object == nullptr || data == nullptr || !DevNodes().Id(data->devInst, id)) {
    return nullptr;
  }
  auto found = std::find_if(object->ids.begin(), object->ids.end(),
                            [&id](const std::string& member) { return NoCaseEqual(member, id); });
  return found != object->ids.end() ? &*found : nullptr;
}

HANDLE WINAPI GetClassDevsA(const setupapi::ClassGuid* classGuid, const char* /*enumerator*/,
                            HWND /*parent*/, DWORD flags) {
  try {
    if (classGuid == nullptr) {
      platform::SetLastError(ERROR_INVALID_PARAMETER);  // all classes are not simulated
      return INVALID_HANDLE_VALUE;
    }
    std::vector<std::string> ids = DevicesOfClass(GuidText(*classGuid));
    if ((flags & setupapi::kPresentOnly) != 0) {
      const auto machine = ActiveMachine();
      std::erase_if(ids, [&machine](const std::string& id) { return !IsPresent(*machine, id); });
    }
    HANDLE set = AddHandle(std::make_shared<DeviceInfoSet>(std::move(ids), *classGuid));
    if (set == nullptr) {
      platform::SetLastError(ERROR_NOT_ENOUGH_MEMORY);
      return INVALID_HANDLE_VALUE;
    }
    return set;
  } catch (...) {
    platform::SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return INVALID_HANDLE_VALUE;
  }
}

BOOL WINAPI EnumDeviceInfo(HANDLE set, DWORD index, setupapi::DeviceInfoData* data) {
  auto object = FindHandleAs<DeviceInfoSet>(set);
  if (object == nullptr) {
    return Fail(ERROR_INVALID_HANDLE);
  }
  if (data == nullptr || data->cbSize != sizeof(setupapi::DeviceInfoData)) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  if (index >= object->ids.size()) {
    return Fail(ERROR_NO_MORE_ITEMS);
  }
  data->classGuid = object->guid;
  data->devInst = DevNodes().Of(object->ids[index]);
  data->reserved = 0;
  return TRUE;
}

// Copies `bytes` to the caller's buffer with SetupAPI's size protocol.
BOOL CopyOut(const std::vector<BYTE>& bytes, BYTE* buffer, DWORD size, DWORD* required) {
  if (required != nullptr) {
    *required = static_cast<DWORD>(bytes.size());
  }
  if (buffer == nullptr || bytes.size() > size) {
    return Fail(ERROR_INSUFFICIENT_BUFFER);
  }
  std::memcpy(buffer, bytes.data(), bytes.size());
  return TRUE;
}

BOOL WINAPI GetDeviceInstanceIdA(HANDLE set, setupapi::DeviceInfoData* data, char* id, DWORD size,
                                 DWORD* required) {
  try {
    const std::string* member = Member(set, data);
    if (member == nullptr) {
      return Fail(ERROR_INVALID_PARAMETER);
    }
    std::vector<BYTE> bytes(member->begin(), member->end());
    bytes.push_back(0);
    return CopyOut(bytes, reinterpret_cast<BYTE*>(id), size, required);
  } catch (...) {
    return Fail(ERROR_NOT_ENOUGH_MEMORY);
  }
}

BOOL WINAPI GetDeviceRegistryPropertyA(HANDLE set, setupapi::DeviceInfoData* data, DWORD property,
                                       DWORD* type, BYTE* buffer, DWORD size, DWORD* required) {
  try {
    const std::string* member = Member(set, data);
    if (member == nullptr) {
      return Fail(ERROR_INVALID_PARAMETER);
    }
    if (property == setupapi::kPhysicalDeviceObject) {
      const auto machine = ActiveMachine();
      auto node = machine->devNodes().find(*member);
      if (node == machine->devNodes().end() || node->second.deviceObject.empty()) {
        return Fail(setupapi::kInvalidData);
      }
      const std::string& name = node->second.deviceObject;
      std::vector<BYTE> bytes(name.begin(), name.end());
      bytes.push_back(0);
      if (type != nullptr) {
        *type = REG_SZ;
      }
      return CopyOut(bytes, buffer, size, required);
    }
    const char* name = property == setupapi::kDeviceDescription ? "DeviceDesc"
                       : property == setupapi::kHardwareId      ? "HardwareID"
                       : property == setupapi::kDriver          ? "Driver"
                                                                : nullptr;
    DWORD valueType = REG_NONE;
    std::vector<BYTE> bytes;
    const Key device(HKEY_LOCAL_MACHINE, (std::string(kEnumKey) + "\\" + *member).c_str());
    if (name == nullptr || device.get() == nullptr ||
        !ReadValue(device.get(), name, valueType, bytes)) {
      return Fail(setupapi::kInvalidData);
    }
    if (type != nullptr) {
      *type = valueType;
    }
    return CopyOut(bytes, buffer, size, required);
  } catch (...) {
    return Fail(ERROR_NOT_ENOUGH_MEMORY);
  }
}

BOOL WINAPI DestroyDeviceInfoList(HANDLE set) {
  if (FindHandleAs<DeviceInfoSet>(set) == nullptr || !RemoveHandle(set)) {
    return Fail(ERROR_INVALID_HANDLE);
  }
  return TRUE;
}

// A present device's node: its state from the machine's device nodes.
DWORD WINAPI GetDevNodeStatus(ULONG* status, ULONG* problem, DWORD devInst, ULONG /*flags*/) {
  try {
    std::string id;
    const auto machine = ActiveMachine();
    if (status == nullptr || problem == nullptr || !DevNodes().Id(devInst, id) ||
        !IsPresent(*machine, id)) {
      return cfgmgr::kNoSuchDevnode;
    }
    auto node = machine->devNodes().find(id);
    const SimDevNode state = node != machine->devNodes().end() ? node->second : SimDevNode{};
    *status = state.status;
    *problem = state.problem;
    return cfgmgr::kSuccess;
  } catch (...) {
    return cfgmgr::kNoSuchDevnode;
  }
}

}  // namespace

void AddSetupApiModule(Machine& machine) {
  if (machine.release() == Release::Win95 || machine.release() == Release::WinNT4) {
    return;  // these releases came without it
  }
  SimModule& module = machine.modules()["setupapi.dll"];
  module.entryPoints["SetupDiGetClassDevsA"] = platform::AsProc(&GetClassDevsA);
  module.entryPoints["SetupDiEnumDeviceInfo"] = platform::AsProc(&EnumDeviceInfo);
  module.entryPoints["SetupDiGetDeviceInstanceIdA"] = platform::AsProc(&GetDeviceInstanceIdA);
  module.entryPoints["SetupDiGetDeviceRegistryPropertyA"] =
      platform::AsProc(&GetDeviceRegistryPropertyA);
  module.entryPoints["SetupDiDestroyDeviceInfoList"] = platform::AsProc(&DestroyDeviceInfoList);
  if (machine.release() == Release::Win2000 || machine.release() == Release::WinXP) {
    machine.modules()["cfgmgr32.dll"].entryPoints["CM_Get_DevNode_Status"] =
        platform::AsProc(&GetDevNodeStatus);
  }
}

}  // namespace Hostkit::sim
