// Asking the service control manager whether a service is running.
#pragma once

#include <string>

#include "hostkit/win_types.h"

namespace Hostkit {

// Opens the manager and the service with the given rights and asks the service's state; false
// when any step is refused or the service is not running.
bool IsServiceRunning(const std::string& name, DWORD managerAccess, DWORD serviceAccess);

}  // namespace Hostkit
