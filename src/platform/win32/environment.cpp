// Environment variables forwarded to kernel32.
#include "platform/environment.h"

namespace Hostkit::platform {

DWORD ExpandEnvironmentStringsA(const char* source, char* destination, DWORD size) {
  return ::ExpandEnvironmentStringsA(source, destination, size);
}

}  // namespace Hostkit::platform
