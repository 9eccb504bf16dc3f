// Restart and power-down requests on the simulated machine: recorded on the machine, never
// acted on. The NT family requires the caller to have enabled SeShutdownPrivilege on the
// process token first, as Windows does.
#include "platform/shutdown.h"

#include <cstring>
#include <string>

#include "hostkit/sim/machine.h"
#include "platform/system_info.h"

namespace Hostkit::sim {

namespace {

bool MayShutDown(Machine& machine) {
  if (machine.release() == Release::Unknown) {
    platform::SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
    return false;
  }
  if (!machine.isWin9x() && machine.enabledPrivileges().count("SeShutdownPrivilege") == 0) {
    platform::SetLastError(ERROR_PRIVILEGE_NOT_HELD);
    return false;
  }
  return true;
}

// Null, empty, the computer name or "\\" + the computer name.
bool IsLocalMachine(const char* name, const std::string& computerName) {
  if (name == nullptr || *name == '\0') {
    return true;
  }
  std::string requested(name);
  if (requested.rfind("\\\\", 0) == 0) {
    requested.erase(0, 2);
  }
  return !NoCaseLess()(requested, computerName) && !NoCaseLess()(computerName, requested);
}

}  // namespace

}  // namespace Hostkit::sim

namespace Hostkit::platform {

BOOL ExitWindowsEx(UINT flags, DWORD /*reserved*/) {
  auto machine = sim::ActiveMachine();
  if (!sim::MayShutDown(*machine)) {
    return FALSE;
  }
  try {
    machine->shutdownRequests().push_back(
        {"ExitWindowsEx", (flags & EWX_REBOOT) != 0, (flags & EWX_FORCE) != 0, flags});
    return TRUE;
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return FALSE;
  }
}

BOOL InitiateSystemShutdownA(char* machineName, char* /*message*/, DWORD /*timeout*/,
                             BOOL forceAppsClosed, BOOL rebootAfterShutdown) {
  auto machine = sim::ActiveMachine();
  if (machine->isWin9x()) {
    SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
    return FALSE;
  }
  if (!sim::IsLocalMachine(machineName, machine->facts().computerName)) {
    SetLastError(ERROR_BAD_NETPATH);
    return FALSE;
  }
  if (!sim::MayShutDown(*machine)) {
    return FALSE;
  }
  try {
    machine->shutdownRequests().push_back(
        {"InitiateSystemShutdown", rebootAfterShutdown != FALSE, forceAppsClosed != FALSE, 0});
    return TRUE;
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return FALSE;
  }
}

}  // namespace Hostkit::platform
