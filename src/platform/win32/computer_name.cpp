// The computer name forwarded to kernel32.
#include "platform/computer_name.h"

namespace Hostkit::platform {

BOOL GetComputerNameA(char* name, DWORD* size) {
  return ::GetComputerNameA(name, reinterpret_cast<LPDWORD>(size));
}
BOOL SetComputerNameA(const char* name) { return ::SetComputerNameA(name); }

}  // namespace Hostkit::platform
