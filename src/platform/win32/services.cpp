// The service control manager forwarded to advapi32.
#include "platform/services.h"

namespace Hostkit::platform {

SC_HANDLE OpenSCManagerA(const char* machineName, const char* databaseName, DWORD access) {
  return ::OpenSCManagerA(machineName, databaseName, access);
}
SC_HANDLE OpenServiceA(SC_HANDLE manager, const char* serviceName, DWORD access) {
  return ::OpenServiceA(manager, serviceName, access);
}
BOOL QueryServiceStatus(SC_HANDLE service, SERVICE_STATUS* status) {
  return ::QueryServiceStatus(service, status);
}
BOOL CloseServiceHandle(SC_HANDLE handle) { return ::CloseServiceHandle(handle); }

}  // namespace Hostkit::platform
