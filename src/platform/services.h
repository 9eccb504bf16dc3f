// The service control manager (advapi32): opening it and a service, and asking a service's state.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

SC_HANDLE OpenSCManagerA(const char* machineName, const char* databaseName, DWORD access);
SC_HANDLE OpenServiceA(SC_HANDLE manager, const char* serviceName, DWORD access);
BOOL QueryServiceStatus(SC_HANDLE service, SERVICE_STATUS* status);
BOOL CloseServiceHandle(SC_HANDLE handle);

}  // namespace Hostkit::platform
