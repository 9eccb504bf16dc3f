// A registry key a test may change, put back as it was when the test ends: a key the test had
// to create is deleted with everything below it (from the first missing part of its path on);
// an existing key gets its values back exactly, by type and bytes, and loses those added.
#pragma once

#include <string>
#include <vector>

#include "platform/registry.h"
#include "support/registry_probe.h"

namespace hostkit_test {

class SavedKey {
 public:
  SavedKey(HKEY root, std::string path) : root_(root), path_(std::move(path)) {
    std::size_t end = 0;
    while (end != std::string::npos) {
      end = path_.find('\\', end + 1);
      const std::string prefix = path_.substr(0, end);
      if (!Exists(prefix)) {
        created_ = prefix;
        break;
      }
    }
    HKEY key = nullptr;
    if (created_.empty()) {
      if (Hostkit::platform::RegOpenKeyExA(root_, path_.c_str(), 0, KEY_READ, &key) ==
          ERROR_SUCCESS) {
        values_ = ReadValues(key);
        Hostkit::platform::RegCloseKey(key);
      }
    } else if (Hostkit::platform::RegCreateKeyExA(root_, path_.c_str(), 0, nullptr, 0,
                                                  KEY_ALL_ACCESS, nullptr, &key,
                                                  nullptr) == ERROR_SUCCESS) {
      Hostkit::platform::RegCloseKey(key);
    }
  }
  ~SavedKey() {
    if (!created_.empty()) {
      registry_probe::DeleteTree(root_, created_);
      return;
    }
    HKEY key = nullptr;
    if (Hostkit::platform::RegOpenKeyExA(root_, path_.c_str(), 0, KEY_ALL_ACCESS, &key) !=
        ERROR_SUCCESS) {
      return;
    }
    for (const Value& value : ReadValues(key)) {
      Hostkit::platform::RegDeleteValueA(key, value.name.c_str());
    }
    for (const Value& value : values_) {
      Hostkit::platform::RegSetValueExA(key, value.name.c_str(), 0, value.type, value.data.data(),
                                        static_cast<DWORD>(value.data.size()));
    }
    Hostkit::platform::RegCloseKey(key);
  }
  SavedKey(const SavedKey&) = delete;
  SavedKey& operator=(const SavedKey&) = delete;

 private:
  struct Value {
    std::string name;
    DWORD type;
    std::vector<BYTE> data;
  };

  bool Exists(const std::string& path) const {
    HKEY key = nullptr;
    if (Hostkit::platform::RegOpenKeyExA(root_, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
      return false;
    }
    Hostkit::platform::RegCloseKey(key);
    return true;
  }

  static std::vector<Value> ReadValues(HKEY key) {
    std::vector<Value> values;
    for (DWORD index = 0;; ++index) {
      std::string name(16384, '\0');
      std::vector<BYTE> data(65536);
      DWORD nameSize = static_cast<DWORD>(name.size());
      DWORD dataSize = static_cast<DWORD>(data.size());
      DWORD type = 0;
      if (Hostkit::platform::RegEnumValueA(key, index, name.data(), &nameSize, nullptr, &type,
                                           data.data(), &dataSize) != ERROR_SUCCESS) {
        break;
      }
      name.resize(nameSize);
      data.resize(dataSize);
      values.push_back({name, type, data});
    }
    return values;
  }

  HKEY root_;
  std::string path_;
  std::string created_;  // the first part of the path that did not exist, if any
  std::vector<Value> values_;
};

}  // namespace hostkit_test
