// The simulated service control manager: NT family only, administrators only for full access,
// services and their states from the machine.
#include "platform/services.h"

#include <memory>
#include <string>
#include <utility>

#include "hostkit/sim/machine.h"
#include "platform/sim/kernel/handle_table.h"
#include "platform/system_info.h"

namespace Hostkit::sim {

namespace {

// Rights that only administrators are granted on the manager and on services.
constexpr DWORD kManagerAdminRights = 0x0002 | 0x0008 | 0x0010 | 0x0020 | 0x00010000 | 0x00040000 |
                                      0x00080000;  // create, lock, ..., DELETE, WRITE_DAC/OWNER
constexpr DWORD kServiceAdminRights =
    0x0002 | 0x0010 | 0x0020 | 0x0040 | 0x00010000 | 0x00040000 | 0x00080000;

class ServiceManagerObject : public KernelObject {
 public:
  explicit ServiceManagerObject(std::shared_ptr<Machine> machine) : machine(std::move(machine)) {}
  std::shared_ptr<Machine> machine;
};

class ServiceObject : public KernelObject {
 public:
  ServiceObject(std::shared_ptr<Machine> machine, std::string name)
      : machine(std::move(machine)), name(std::move(name)) {}
  std::shared_ptr<Machine> machine;
  std::string name;
};

SC_HANDLE AsServiceHandle(HANDLE handle) { return static_cast<SC_HANDLE>(handle); }

SC_HANDLE Fail(DWORD error) {
  platform::SetLastError(error);
  return nullptr;
}

}  // namespace

}  // namespace Hostkit::sim

namespace Hostkit::platform {

SC_HANDLE OpenSCManagerA(const char* machineName, const char* /*databaseName*/, DWORD access) {
  try {
    auto machine = sim::ActiveMachine();
    if (machine->isWin9x() || machine->release() == sim::Release::Unknown) {
      return sim::Fail(ERROR_CALL_NOT_IMPLEMENTED);
    }
    if (machineName != nullptr && *machineName != '\0') {
      return sim::Fail(ERROR_BAD_NETPATH);  // no other computer is reachable
    }
    if ((access & sim::kManagerAdminRights) != 0 && !machine->facts().administrator) {
      return sim::Fail(ERROR_ACCESS_DENIED);
    }
    HANDLE handle = sim::AddHandle(std::make_shared<sim::ServiceManagerObject>(machine));
    return handle != nullptr ? sim::AsServiceHandle(handle) : sim::Fail(ERROR_NOT_ENOUGH_MEMORY);
  } catch (...) {
    return sim::Fail(ERROR_NOT_ENOUGH_MEMORY);
  }
}

SC_HANDLE OpenServiceA(SC_HANDLE manager, const char* serviceName, DWORD access) {
  try {
    auto object = sim::FindHandleAs<sim::ServiceManagerObject>(manager);
    if (object == nullptr) {
      return sim::Fail(ERROR_INVALID_HANDLE);
    }
    if (serviceName == nullptr || object->machine->services().count(serviceName) == 0) {
      return sim::Fail(ERROR_SERVICE_DOES_NOT_EXIST);
    }
    if ((access & sim::kServiceAdminRights) != 0 && !object->machine->facts().administrator) {
      return sim::Fail(ERROR_ACCESS_DENIED);
    }
    HANDLE handle =
        sim::AddHandle(std::make_shared<sim::ServiceObject>(object->machine, serviceName));
    return handle != nullptr ? sim::AsServiceHandle(handle) : sim::Fail(ERROR_NOT_ENOUGH_MEMORY);
  } catch (...) {
    return sim::Fail(ERROR_NOT_ENOUGH_MEMORY);
  }
}

BOOL QueryServiceStatus(SC_HANDLE service, SERVICE_STATUS* status) {
  try {
    auto object = sim::FindHandleAs<sim::ServiceObject>(service);
    if (object == nullptr) {
      SetLastError(ERROR_INVALID_HANDLE);
      return FALSE;
    }
    auto found = object->machine->services().find(object->name);
    if (status == nullptr || found == object->machine->services().end()) {
      SetLastError(status == nullptr ? ERROR_INVALID_PARAMETER : ERROR_SERVICE_DOES_NOT_EXIST);
      return FALSE;
    }
    *status = SERVICE_STATUS{};
    status->dwServiceType = SERVICE_KERNEL_DRIVER;
    status->dwCurrentState = found->second.state;
    return TRUE;
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return FALSE;
  }
}

BOOL CloseServiceHandle(SC_HANDLE handle) {
  const bool service = sim::FindHandleAs<sim::ServiceObject>(handle) != nullptr ||
                       sim::FindHandleAs<sim::ServiceManagerObject>(handle) != nullptr;
  if (!service || !sim::RemoveHandle(handle)) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  return TRUE;
}

}  // namespace Hostkit::platform
