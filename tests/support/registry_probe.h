// Small probes of the registry calls for the registry tests: create, set, query and enumerate
// through the seam, reporting results, sizes and buffers as the calls leave them.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"

namespace hostkit_test::registry_probe {

inline HKEY Create(HKEY parent, const char* path, DWORD* disposition = nullptr) {
  HKEY key = nullptr;
  EXPECT_EQ(Hostkit::platform::RegCreateKeyExA(parent, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                               &key, disposition),
            ERROR_SUCCESS)
      << path;
  return key;
}

inline LONG Set(HKEY key, const char* name, std::string_view data, DWORD type = REG_SZ) {
  return Hostkit::platform::RegSetValueExA(key, name, 0, type,
                                           reinterpret_cast<const BYTE*>(data.data()),
                                           static_cast<DWORD>(data.size()));
}

// The outcome of a call that fills a buffer: its result, the size it reported and the buffer,
// which starts as `capacity` bytes of 'X' followed by two more.
struct Filled {
  LONG status = ERROR_SUCCESS;
  DWORD size = 0;
  std::string buffer;
  DWORD type = REG_NONE;
};

inline Filled QueryInto(HKEY key, const char* name, DWORD capacity) {
  Filled out{ERROR_SUCCESS, capacity, std::string(capacity + 2, 'X')};
  out.status = Hostkit::platform::RegQueryValueExA(
      key, name, nullptr, &out.type, reinterpret_cast<BYTE*>(out.buffer.data()), &out.size);
  return out;
}

// A whole value exactly as stored: the size first, then the data.
inline Filled QueryBytes(HKEY key, const char* name) {
  DWORD size = 0;
  const LONG status =
      Hostkit::platform::RegQueryValueExA(key, name, nullptr, nullptr, nullptr, &size);
  Filled out =
      status == ERROR_SUCCESS ? QueryInto(key, name, size) : Filled{status, 0, {}, REG_NONE};
  out.buffer.resize(out.status == ERROR_SUCCESS ? out.size : 0);
  return out;
}

// A whole value, a string's terminator left out (the NT family stores one even when the writer
// did not count it).
inline Filled Query(HKEY key, const char* name) {
  Filled out = QueryBytes(key, name);
  if ((out.type == REG_SZ || out.type == REG_EXPAND_SZ) && !out.buffer.empty() &&
      out.buffer.back() == '\0') {
    out.buffer.pop_back();
  }
  return out;
}

inline Filled EnumKeyAt(HKEY key, DWORD index, DWORD capacity = 260) {
  Filled out{ERROR_SUCCESS, capacity, std::string(capacity + 2, 'X')};
  out.status = Hostkit::platform::RegEnumKeyExA(key, index, out.buffer.data(), &out.size, nullptr,
                                                nullptr, nullptr, nullptr);
  return out;
}

inline Filled EnumValueAt(HKEY key, DWORD index, DWORD capacity = 260) {
  Filled out{ERROR_SUCCESS, capacity, std::string(capacity + 2, 'X')};
  out.status = Hostkit::platform::RegEnumValueA(key, index, out.buffer.data(), &out.size, nullptr,
                                                &out.type, nullptr, nullptr);
  return out;
}

template <class Enumerate>
std::vector<std::string> Names(HKEY key, Enumerate enumerate) {
  std::vector<std::string> names;
  for (Filled f; (f = enumerate(key, static_cast<DWORD>(names.size()), 260)).status == 0;) {
    names.push_back(f.buffer.substr(0, f.size));
  }
  return names;
}
inline std::vector<std::string> Subkeys(HKEY key) { return Names(key, EnumKeyAt); }
inline std::vector<std::string> ValueNames(HKEY key) { return Names(key, EnumValueAt); }

// Deletes leaf first, which both families accept.
inline void DeleteTree(HKEY parent, const std::string& path) {
  HKEY key = nullptr;
  if (Hostkit::platform::RegOpenKeyExA(parent, path.c_str(), 0, KEY_READ, &key) == ERROR_SUCCESS) {
    for (const auto& name : Subkeys(key)) {
      DeleteTree(key, name);
    }
    Hostkit::platform::RegCloseKey(key);
    Hostkit::platform::RegDeleteKeyA(parent, path.c_str());
  }
}

}  // namespace hostkit_test::registry_probe
