// Service state through the service control manager.
#include "foundation/service_state.h"

#include "platform/services.h"

namespace Hostkit {

bool IsServiceRunning(const std::string& name, DWORD managerAccess, DWORD serviceAccess) {
  SC_HANDLE manager = platform::OpenSCManagerA(nullptr, nullptr, managerAccess);
  if (manager == nullptr) {
    return false;
  }
  bool running = false;
  SC_HANDLE service = platform::OpenServiceA(manager, name.c_str(), serviceAccess);
  if (service != nullptr) {
    SERVICE_STATUS status{};
    running = platform::QueryServiceStatus(service, &status) != FALSE &&
              status.dwCurrentState == SERVICE_RUNNING;
    platform::CloseServiceHandle(service);
  }
  platform::CloseServiceHandle(manager);
  return running;
}

}  // namespace Hostkit
