// The registry calls of the seam, chosen by character type, so that an operation is written once
// for narrow and wide text; and an open key that closes itself.
#pragma once

#include <string>

#include "hostkit/win_types.h"
#include "platform/registry.h"

namespace Hostkit::registry {

template <class Ch>
struct Calls;

template <>
struct Calls<char> {
  static LONG Open(HKEY root, const char* path, REGSAM access, HKEY* key) {
    return platform::RegOpenKeyExA(root, path, 0, access, key);
  }
  static LONG Create(HKEY root, const char* path, HKEY* key) {
    return platform::RegCreateKeyExA(root, path, 0, nullptr, REG_OPTION_NON_VOLATILE,
                                     KEY_ALL_ACCESS, nullptr, key, nullptr);
  }
  static LONG Query(HKEY key, const char* name, DWORD* type, BYTE* data, DWORD* size) {
    return platform::RegQueryValueExA(key, name, nullptr, type, data, size);
  }
  static LONG Set(HKEY key, const char* name, DWORD type, const BYTE* data, DWORD size) {
    return platform::RegSetValueExA(key, name, 0, type, data, size);
  }
  static LONG DeleteValue(HKEY key, const char* name) {
    return platform::RegDeleteValueA(key, name);
  }
  static LONG DeleteKey(HKEY root, const char* path) { return platform::RegDeleteKeyA(root, path); }
  static LONG EnumKey(HKEY key, DWORD index, char* name, DWORD* nameSize) {
    return platform::RegEnumKeyExA(key, index, name, nameSize, nullptr, nullptr, nullptr, nullptr);
  }
  static LONG EnumValueName(HKEY key, DWORD index, char* name, DWORD* nameSize) {
    return platform::RegEnumValueA(key, index, name, nameSize, nullptr, nullptr, nullptr, nullptr);
  }
  static LONG EnumValue(HKEY key, DWORD index, char* name, DWORD* nameSize, DWORD* type, BYTE* data,
                        DWORD* dataSize) {
    return platform::RegEnumValueA(key, index, name, nameSize, nullptr, type, data, dataSize);
  }
};

template <>
struct Calls<WCHAR> {
  static LONG Open(HKEY root, const WCHAR* path, REGSAM access, HKEY* key) {
    return platform::RegOpenKeyExW(root, path, 0, access, key);
  }
  static LONG Create(HKEY root, const WCHAR* path, HKEY* key) {
    return platform::RegCreateKeyExW(root, path, 0, nullptr, REG_OPTION_NON_VOLATILE,
                                     KEY_ALL_ACCESS, nullptr, key, nullptr);
  }
  static LONG Query(HKEY key, const WCHAR* name, DWORD* type, BYTE* data, DWORD* size) {
    return platform::RegQueryValueExW(key, name, nullptr, type, data, size);
  }
  static LONG Set(HKEY key, const WCHAR* name, DWORD type, const BYTE* data, DWORD size) {
    return platform::RegSetValueExW(key, name, 0, type, data, size);
  }
  static LONG DeleteValue(HKEY key, const WCHAR* name) {
    return platform::RegDeleteValueW(key, name);
  }
  static LONG DeleteKey(HKEY root, const WCHAR* path) {
    return platform::RegDeleteKeyW(root, path);
  }
  static LONG EnumKey(HKEY key, DWORD index, WCHAR* name, DWORD* nameSize) {
    return platform::RegEnumKeyExW(key, index, name, nameSize, nullptr, nullptr, nullptr, nullptr);
  }
  static LONG EnumValueName(HKEY key, DWORD index, WCHAR* name, DWORD* nameSize) {
    return platform::RegEnumValueW(key, index, name, nameSize, nullptr, nullptr, nullptr, nullptr);
  }
  static LONG EnumValue(HKEY key, DWORD index, WCHAR* name, DWORD* nameSize, DWORD* type,
                        BYTE* data, DWORD* dataSize) {
    return platform::RegEnumValueW(key, index, name, nameSize, nullptr, type, data, dataSize);
  }
};

// A key opened for the length of one operation.
template <class Ch>
class OpenKey {
 public:
  OpenKey(HKEY root, const Ch* path, REGSAM access)
      : result_(Calls<Ch>::Open(root, path, access, &key_)) {}
  ~OpenKey() {
    if (key_ != nullptr) {
      platform::RegCloseKey(key_);
    }
  }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;

  bool ok() const { return result_ == ERROR_SUCCESS && key_ != nullptr; }
  HKEY get() const { return key_; }

 private:
  HKEY key_ = nullptr;
  LONG result_;
};

}  // namespace Hostkit::registry
