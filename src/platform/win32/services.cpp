// The service control manager of advapi32, which only the NT family has: looked up when called.
#include "platform/services.h"

#include "platform/win32/late_binding.h"

namespace Hostkit::platform {

SC_HANDLE OpenSCManagerA(const char* machineName, const char* databaseName, DWORD access) {
  return win32::CallEntry<decltype(&::OpenSCManagerA)>(win32::kAdvapi32, "OpenSCManagerA",
                                                       static_cast<SC_HANDLE>(nullptr), machineName,
                                                       databaseName, access);
}
SC_HANDLE OpenServiceA(SC_HANDLE manager, const char* serviceName, DWORD access) {
  return win32::CallEntry<decltype(&::OpenServiceA)>(win32::kAdvapi32, "OpenServiceA",
                                                     static_cast<SC_HANDLE>(nullptr), manager,
                                                     serviceName, access);
}
BOOL QueryServiceStatus(SC_HANDLE service, SERVICE_STATUS* status) {
  return win32::CallEntry<decltype(&::QueryServiceStatus)>(win32::kAdvapi32, "QueryServiceStatus",
                                                           BOOL{FALSE}, service, status);
}
BOOL CloseServiceHandle(SC_HANDLE handle) {
  return win32::CallEntry<decltype(&::CloseServiceHandle)>(win32::kAdvapi32, "CloseServiceHandle",
                                                           BOOL{FALSE}, handle);
}

}  // namespace Hostkit::platform
