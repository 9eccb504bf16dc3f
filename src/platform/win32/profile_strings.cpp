// Profile-string calls forwarded to kernel32.
#include "platform/profile_strings.h"

namespace Hostkit::platform {

BOOL WritePrivateProfileStringA(const char* section, const char* key, const char* value,
                                const char* file) {
  return ::WritePrivateProfileStringA(section, key, value, file);
}
DWORD GetPrivateProfileStringA(const char* section, const char* key, const char* defaultValue,
                               char* buffer, DWORD size, const char* file) {
  return ::GetPrivateProfileStringA(section, key, defaultValue, buffer, size, file);
}

}  // namespace Hostkit::platform
