// Kernel devices of the simulated machine.
//
// "\\.\NAME" opens the device that the DOS device name NAME points at: its definition in force
// must be "\Device\DEVICE" for a device of the machine. NDIS network drivers answer the global
// statistics query from their object table; USB host controllers and hubs answer the USB
// device interface (platform/sim/devices/usb_stack.cpp); other control codes are not understood by
// any simulated driver. Every request is recorded on the machine. On Windows 9x "\\.\vdhcp.386"
// opens the DHCP client VxD (platform/sim/devices/dhcp_vxd.cpp), which has no DOS device name.
#include "platform/devices.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include "hostkit/sim/machine.h"
#include "platform/ndis.h"
#include "platform/sim/devices/dhcp_vxd.h"
#include "platform/sim/devices/usb_stack.h"
#include "platform/sim/kernel/handle_table.h"
#include "platform/system_info.h"

namespace Hostkit::sim {

namespace {

constexpr DWORD kNdisQueryGlobalStats = platform::ndis::kQueryGlobalStats;
constexpr DWORD kNdisSupportedList = platform::ndis::kSupportedList;
constexpr std::string_view kDevicePrefix = "\\Device\\";
constexpr std::string_view kLocalDevicePrefix = "\\\\.\\";

class DeviceObject : public KernelObject {
 public:
  DeviceObject(std::shared_ptr<Machine> machine, std::string name)
      : machine_(std::move(machine)), name_(std::move(name)) {}

  // The device, while the machine still has it.
  const SimDevice* Device() const {
    auto found = machine_->devices().find(name_);
    return found != machine_->devices().end() ? &found->second : nullptr;
  }

  void Record(DWORD controlCode, DWORD inSize, DWORD outSize) const {
    machine_->deviceRequests().push_back({name_, controlCode, inSize, outSize});
  }

 private:
  std::shared_ptr<Machine> machine_;
  std::string name_;
};

bool Fail(DWORD error) {
  platform::SetLastError(error);
  return false;
}

// The object identifiers a driver lists as supported: the ones it has, unless its table
// states the list itself.
std::vector<BYTE> SupportedList(const SimDevice& device) {
  std::vector<BYTE> list;
  for (const auto& [oid, data] : device.ndisObjects) {
    for (int shift = 0; shift < 32; shift += 8) {
      list.push_back(static_cast<BYTE>(oid >> shift));
    }
  }
  return list;
}

BOOL NdisQuery(const SimDevice& device, const void* in, DWORD inSize, void* out, DWORD outSize,
               DWORD* returned) {
  if (in == nullptr || inSize < sizeof(DWORD)) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  DWORD oid = 0;
  std::memcpy(&oid, in, sizeof oid);
  std::vector<BYTE> data;
  if (auto found = device.ndisObjects.find(oid); found != device.ndisObjects.end()) {
    data = found->second;
  } else if (oid == kNdisSupportedList) {
    data = SupportedList(device);
  } else {
    return Fail(ERROR_NOT_SUPPORTED);
  }
  if (data.size() > outSize || (out == nullptr && !data.empty())) {
    return Fail(ERROR_INSUFFICIENT_BUFFER);
  }
  std::copy(data.begin(), data.end(), static_cast<BYTE*>(out));
  *returned = static_cast<DWORD>(data.size());
  return TRUE;
}

}  // namespace

}  // namespace Hostkit::sim

namespace Hostkit::platform {

// All definitions of the name, the one in force first, each ending in a zero, and a final
// zero; the count includes every zero.
DWORD QueryDosDeviceA(const char* deviceName, char* targetPath, DWORD max) {
  try {
    auto machine = sim::ActiveMachine();
    if (machine->isWin9x()) {
      SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
      return 0;
    }
    if (deviceName == nullptr) {
      SetLastError(ERROR_INVALID_PARAMETER);  // listing every name is not simulated
      return 0;
    }
    auto found = machine->dosDevices().find(deviceName);
    if (found == machine->dosDevices().end() || found->second.empty()) {
      SetLastError(ERROR_FILE_NOT_FOUND);
      return 0;
    }
    std::string list;
    for (const std::string& target : found->second) {
      list += target;
      list += '\0';
    }
    list += '\0';
    if (targetPath == nullptr || list.size() > max) {
      SetLastError(ERROR_INSUFFICIENT_BUFFER);
      return 0;
    }
    std::copy(list.begin(), list.end(), targetPath);  // the list holds its own terminators
    return static_cast<DWORD>(list.size());
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return 0;
  }
}

BOOL DefineDosDeviceA(DWORD flags, const char* deviceName, const char* targetPath) {
  try {
    auto machine = sim::ActiveMachine();
    if (machine->isWin9x()) {
      return sim::Fail(ERROR_CALL_NOT_IMPLEMENTED);
    }
    if (deviceName == nullptr || *deviceName == '\0') {
      return sim::Fail(ERROR_INVALID_PARAMETER);
    }
    auto& definitions = machine->dosDevices()[deviceName];
    if ((flags & DDD_REMOVE_DEFINITION) == 0) {
      if (targetPath == nullptr) {
        return sim::Fail(ERROR_INVALID_PARAMETER);
      }
      definitions.insert(definitions.begin(), targetPath);
      return TRUE;
    }
    // Removal: the exact target when asked for (or given), else the definition in force.
    auto removed = definitions.begin();
    if (targetPath != nullptr) {
      removed = std::find(definitions.begin(), definitions.end(), std::string(targetPath));
    }
    if (removed == definitions.end()) {
      if (definitions.empty()) {
        machine->dosDevices().erase(deviceName);
      }
      return sim::Fail(ERROR_FILE_NOT_FOUND);
    }
    definitions.erase(removed);
    if (definitions.empty()) {
      machine->dosDevices().erase(deviceName);
    }
    return TRUE;
  } catch (...) {
    return sim::Fail(ERROR_NOT_ENOUGH_MEMORY);
  }
}

HANDLE CreateFileA(const char* fileName, DWORD /*access*/, DWORD /*shareMode*/,
                   SECURITY_ATTRIBUTES* /*security*/, DWORD disposition, DWORD /*flags*/,
                   HANDLE /*templateFile*/) {
  try {
    const std::string name = fileName != nullptr ? fileName : "";
    if (!name.starts_with(sim::kLocalDevicePrefix)) {
      SetLastError(ERROR_PATH_NOT_FOUND);  // the simulated process opens devices only
      return INVALID_HANDLE_VALUE;
    }
    if (disposition != OPEN_EXISTING) {
      SetLastError(ERROR_ACCESS_DENIED);
      return INVALID_HANDLE_VALUE;
    }
    auto machine = sim::ActiveMachine();
    DWORD fault = ERROR_SUCCESS;
    if (machine->faults().failNow(sim::FaultFamily::FileOpen, fault)) {
      SetLastError(fault);
      return INVALID_HANDLE_VALUE;
    }
    if (sim::IsDhcpVxdName(*machine, name.substr(sim::kLocalDevicePrefix.size()))) {
      HANDLE vxd = sim::AddHandle(std::make_shared<sim::DhcpVxdObject>(machine));
      if (vxd == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return INVALID_HANDLE_VALUE;
      }
      return vxd;
    }
    auto link = machine->dosDevices().find(name.substr(sim::kLocalDevicePrefix.size()));
    if (link == machine->dosDevices().end() || link->second.empty()) {
      SetLastError(ERROR_FILE_NOT_FOUND);
      return INVALID_HANDLE_VALUE;
    }
    const std::string& target = link->second.front();
    const std::string device = target.starts_with(sim::kDevicePrefix)
                                   ? target.substr(sim::kDevicePrefix.size())
                                   : std::string();
    if (device.empty() || machine->devices().count(device) == 0) {
      SetLastError(ERROR_FILE_NOT_FOUND);
      return INVALID_HANDLE_VALUE;
    }
    HANDLE handle = sim::AddHandle(std::make_shared<sim::DeviceObject>(machine, device));
    if (handle == nullptr) {
      SetLastError(ERROR_NOT_ENOUGH_MEMORY);
      return INVALID_HANDLE_VALUE;
    }
    return handle;
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return INVALID_HANDLE_VALUE;
  }
}

BOOL DeviceIoControl(HANDLE device, DWORD controlCode, void* inBuffer, DWORD inSize,
                     void* outBuffer, DWORD outSize, DWORD* bytesReturned,
                     OVERLAPPED* /*overlapped*/) {
  try {
    DWORD ignored = 0;
    DWORD& returned = bytesReturned != nullptr ? *bytesReturned : ignored;
    returned = 0;
    DWORD fault = ERROR_SUCCESS;
    if (sim::ActiveMachine()->faults().failNow(sim::FaultFamily::DeviceControl, fault)) {
      return sim::Fail(fault);
    }
    if (auto vxd = sim::FindHandleAs<sim::DhcpVxdObject>(device)) {
      return sim::DhcpVxdRequest(*vxd, controlCode, inBuffer, inSize, outBuffer, outSize, returned);
    }
    auto object = sim::FindHandleAs<sim::DeviceObject>(device);
    if (object == nullptr) {
      return sim::Fail(ERROR_INVALID_HANDLE);
    }
    const sim::SimDevice* served = object->Device();
    if (served == nullptr) {
      return sim::Fail(ERROR_GEN_FAILURE);  // the device went away
    }
    object->Record(controlCode, inSize, outSize);
    if (controlCode == sim::kNdisQueryGlobalStats && !served->ndisObjects.empty()) {
      return sim::NdisQuery(*served, inBuffer, inSize, outBuffer, outSize, &returned);
    }
    if (sim::IsUsbRequest(*served, controlCode)) {
      return sim::UsbRequest(*served, controlCode, inBuffer, inSize, outBuffer, outSize, &returned);
    }
    return sim::Fail(ERROR_INVALID_FUNCTION);
  } catch (...) {
    return sim::Fail(ERROR_NOT_ENOUGH_MEMORY);
  }
}

}  // namespace Hostkit::platform
