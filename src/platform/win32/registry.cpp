// Registry calls forwarded to advapi32. The narrow calls are imported; the wide ones are looked
// up when called, as Windows 95 does not export them all (the library takes the narrow path
// there).
#include "platform/registry.h"

#include "platform/win32/late_binding.h"

namespace Hostkit::platform {

namespace {
constexpr LONG kMissing = ERROR_CALL_NOT_IMPLEMENTED;
}  // namespace

LONG RegOpenKeyExA(HKEY key, const char* subKey, DWORD options, REGSAM access, HKEY* result) {
  return ::RegOpenKeyExA(key, subKey, options, access, result);
}
LONG RegOpenKeyExW(HKEY key, const WCHAR* subKey, DWORD options, REGSAM access, HKEY* result) {
  return win32::CallEntry<decltype(&::RegOpenKeyExW)>(win32::kAdvapi32, "RegOpenKeyExW", kMissing,
                                                      key, subKey, options, access, result);
}
LONG RegCreateKeyExA(HKEY key, const char* subKey, DWORD reserved, char* keyClass, DWORD options,
                     REGSAM access, void* security, HKEY* result, DWORD* disposition) {
  return ::RegCreateKeyExA(key, subKey, reserved, keyClass, options, access,
                           static_cast<SECURITY_ATTRIBUTES*>(security), result, disposition);
}
LONG RegCreateKeyExW(HKEY key, const WCHAR* subKey, DWORD reserved, WCHAR* keyClass, DWORD options,
                     REGSAM access, void* security, HKEY* result, DWORD* disposition) {
  return win32::CallEntry<decltype(&::RegCreateKeyExW)>(
      win32::kAdvapi32, "RegCreateKeyExW", kMissing, key, subKey, reserved, keyClass, options,
      access, static_cast<SECURITY_ATTRIBUTES*>(security), result, disposition);
}
LONG RegCloseKey(HKEY key) { return ::RegCloseKey(key); }

LONG RegQueryValueExA(HKEY key, const char* name, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* size) {
  return ::RegQueryValueExA(key, name, reserved, type, data, size);
}
LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* size) {
  return win32::CallEntry<decltype(&::RegQueryValueExW)>(
      win32::kAdvapi32, "RegQueryValueExW", kMissing, key, name, reserved, type, data, size);
}
LONG RegSetValueExA(HKEY key, const char* name, DWORD reserved, DWORD type, const BYTE* data,
                    DWORD size) {
  return ::RegSetValueExA(key, name, reserved, type, data, size);
}
LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                    DWORD size) {
  return win32::CallEntry<decltype(&::RegSetValueExW)>(win32::kAdvapi32, "RegSetValueExW", kMissing,
                                                       key, name, reserved, type, data, size);
}
LONG RegDeleteValueA(HKEY key, const char* name) { return ::RegDeleteValueA(key, name); }
LONG RegDeleteValueW(HKEY key, const WCHAR* name) {
  return win32::CallEntry<decltype(&::RegDeleteValueW)>(win32::kAdvapi32, "RegDeleteValueW",
                                                        kMissing, key, name);
}
LONG RegDeleteKeyA(HKEY key, const char* subKey) { return ::RegDeleteKeyA(key, subKey); }
LONG RegDeleteKeyW(HKEY key, const WCHAR* subKey) {
  return win32::CallEntry<decltype(&::RegDeleteKeyW)>(win32::kAdvapi32, "RegDeleteKeyW", kMissing,
                                                      key, subKey);
}

LONG RegEnumKeyExA(HKEY key, DWORD index, char* name, DWORD* nameSize, DWORD* reserved,
                   char* keyClass, DWORD* classSize, FILETIME* lastWrite) {
  return ::RegEnumKeyExA(key, index, name, nameSize, reserved, keyClass, classSize, lastWrite);
}
LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* nameSize, DWORD* reserved,
                   WCHAR* keyClass, DWORD* classSize, FILETIME* lastWrite) {
  return win32::CallEntry<decltype(&::RegEnumKeyExW)>(win32::kAdvapi32, "RegEnumKeyExW", kMissing,
                                                      key, index, name, nameSize, reserved,
                                                      keyClass, classSize, lastWrite);
}
LONG RegEnumValueA(HKEY key, DWORD index, char* name, DWORD* nameSize, DWORD* reserved, DWORD* type,
                   BYTE* data, DWORD* dataSize) {
  return ::RegEnumValueA(key, index, name, nameSize, reserved, type, data, dataSize);
}
LONG RegEnumValueW(HKEY key, DWORD index, WCHAR* name, DWORD* nameSize, DWORD* reserved,
                   DWORD* type, BYTE* data, DWORD* dataSize) {
  return win32::CallEntry<decltype(&::RegEnumValueW)>(win32::kAdvapi32, "RegEnumValueW", kMissing,
                                                      key, index, name, nameSize, reserved, type,
                                                      data, dataSize);
}

}  // namespace Hostkit::platform
