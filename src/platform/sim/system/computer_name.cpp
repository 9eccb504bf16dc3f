// The simulated machine's computer name. The name in use is the machine's fact; a new name is
// stored in the registry where Windows keeps it for the next start, after the checks Windows
// makes (at most 15 characters, none of the characters NetBIOS names cannot hold).
#include "platform/computer_name.h"

#include <cstring>
#include <string>

#include "hostkit/sim/machine.h"
#include "platform/registry.h"
#include "platform/system_info.h"

namespace Hostkit::platform {

namespace {

constexpr DWORD kMaxComputerNameLength = 15;
constexpr LONG kBufferOverflow = 111;
constexpr const char* kInvalidCharacters = " \"*+,/:;<=>?[\\]|";
constexpr const char* kNextName = "System\\CurrentControlSet\\Control\\ComputerName\\ComputerName";

}  // namespace

BOOL GetComputerNameA(char* name, DWORD* size) {
  try {
    if (size == nullptr) {
      SetLastError(ERROR_INVALID_PARAMETER);
      return FALSE;
    }
    const std::string current = sim::ActiveMachine()->facts().computerName;
    if (name == nullptr || *size <= current.size()) {
      *size = static_cast<DWORD>(current.size() + 1);
      SetLastError(kBufferOverflow);
      return FALSE;
    }
    std::memcpy(name, current.c_str(), current.size() + 1);
    *size = static_cast<DWORD>(current.size());
    return TRUE;
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return FALSE;
  }
}

BOOL SetComputerNameA(const char* name) {
  if (name == nullptr || *name == '\0' || std::strlen(name) > kMaxComputerNameLength ||
      std::strpbrk(name, kInvalidCharacters) != nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  HKEY key = nullptr;
  LONG result = RegCreateKeyExA(HKEY_LOCAL_MACHINE, kNextName, 0, nullptr, 0, KEY_SET_VALUE,
                                nullptr, &key, nullptr);
  if (result == ERROR_SUCCESS) {
    result = RegSetValueExA(key, "ComputerName", 0, REG_SZ, reinterpret_cast<const BYTE*>(name),
                            static_cast<DWORD>(std::strlen(name) + 1));
    RegCloseKey(key);
  }
  if (result != ERROR_SUCCESS) {
    SetLastError(static_cast<DWORD>(result));
    return FALSE;
  }
  return TRUE;
}

}  // namespace Hostkit::platform
