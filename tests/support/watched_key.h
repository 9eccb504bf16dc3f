// A registry key and everything below it, watched by a test: Changes() lists the values that
// differ from when the watch began, and the end of the watch puts them back. A key missing at
// the start is deleted with its subtree at the end.
#pragma once

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/registry.h"
#include "support/registry_probe.h"

namespace hostkit_test {

class WatchedKey {
 public:
  WatchedKey(HKEY root, std::string path)
      : root_(root), path_(std::move(path)), existed_(Read(start_)) {}
  ~WatchedKey() {
    if (!existed_) {
      registry_probe::DeleteTree(root_, path_);
      return;
    }
    Values now;
    Read(now);
    for (const auto& [where, value] : now) {
      if (start_.count(where) == 0) {
        Put(where, nullptr);
      }
    }
    for (const auto& [where, value] : start_) {
      const auto found = now.find(where);
      if (found == now.end() || found->second != value) {
        Put(where, &value);
      }
    }
  }
  WatchedKey(const WatchedKey&) = delete;
  WatchedKey& operator=(const WatchedKey&) = delete;

  // "subkey|name=data" for each value added, changed or removed since the watch began, sorted;
  // data is "dword:N", the text in quotes, or "type N, M bytes", and "-" for a removed value.
  std::vector<std::string> Changes() const {
    Values now;
    Read(now);
    std::vector<std::string> changes;
    for (const auto& [where, value] : now) {
      const auto found = start_.find(where);
      if (found == start_.end() || found->second != value) {
        changes.push_back(where.first + "|" + where.second + "=" + Describe(value));
      }
    }
    for (const auto& [where, value] : start_) {
      if (now.count(where) == 0) {
        changes.push_back(where.first + "|" + where.second + "=-");
      }
    }
    std::sort(changes.begin(), changes.end());
    return changes;
  }

  // The same changes as a registry file states them, with the whole key path: a "[key]" line
  // per changed key (in name order), then its values in REGEDIT4 syntax ("name"="text",
  // "name"=dword:0000000a, "name"=hex(7):..), a removed value as "name"=-.
  std::string RegDiff() const {
    Values now;
    Read(now);
    std::map<std::string, std::map<std::string, std::string>> keys;
    for (const auto& [where, value] : now) {
      const auto found = start_.find(where);
      if (found == start_.end() || found->second != value) {
        keys[where.first][where.second] = RegData(value);
      }
    }
    for (const auto& [where, value] : start_) {
      if (now.count(where) == 0) {
        keys[where.first][where.second] = "-";
      }
    }
    std::string text;
    for (const auto& [sub, values] : keys) {
      text += "[" + RootName() + "\\" + (sub.empty() ? path_ : Below(path_, sub)) + "]\n";
      for (const auto& [name, data] : values) {
        text += (name.empty() ? "@" : Quoted(name)) + "=" + data + "\n";
      }
    }
    return text;
  }

 private:
  using Value = std::pair<DWORD, std::string>;                          // type and bytes
  using Values = std::map<std::pair<std::string, std::string>, Value>;  // (subkey, name)

  static std::string Describe(const Value& value) {
    std::string data = value.second;
    if (value.first == REG_DWORD && data.size() == 4) {
      DWORD number = 0;
      std::copy(data.begin(), data.end(), reinterpret_cast<char*>(&number));
      return "dword:" + std::to_string(number);
    }
    if (value.first == REG_SZ) {
      if (!data.empty() && data.back() == '\0') {
        data.pop_back();
      }
      return "\"" + data + "\"";
    }
    return "type " + std::to_string(value.first) + ", " + std::to_string(data.size()) + " bytes";
  }

  static std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
      if (c == '\\' || c == '"') {
        quoted += '\\';
      }
      quoted += c;
    }
    return quoted + "\"";
  }

  static std::string RegData(const Value& value) {
    std::string data = value.second;
    if (value.first == REG_SZ) {
      if (!data.empty() && data.back() == '\0') {
        data.pop_back();
      }
      return Quoted(data);
    }
    char text[16];
    if (value.first == REG_DWORD && data.size() == 4) {
      DWORD number = 0;
      std::copy(data.begin(), data.end(), reinterpret_cast<char*>(&number));
      std::snprintf(text, sizeof text, "dword:%08lx", static_cast<unsigned long>(number));
      return text;
    }
    std::string hex =
        value.first == REG_BINARY ? "hex:" : "hex(" + std::to_string(value.first) + "):";
    for (size_t i = 0; i < data.size(); ++i) {
      std::snprintf(text, sizeof text, i == 0 ? "%02x" : ",%02x",
                    static_cast<unsigned>(static_cast<unsigned char>(data[i])));
      hex += text;
    }
    return hex;
  }

  std::string RootName() const {
    return root_ == HKEY_LOCAL_MACHINE  ? "HKEY_LOCAL_MACHINE"
           : root_ == HKEY_CURRENT_USER ? "HKEY_CURRENT_USER"
                                        : "HKEY_USERS";
  }

  static std::string Below(std::string path, const std::string& name) {
    path += '\\';
    path += name;
    return path;
  }

  bool Read(Values& values) const { return ReadKey(path_, "", values); }

  bool ReadKey(const std::string& path, const std::string& sub, Values& values) const {
    HKEY key = nullptr;
    if (Hostkit::platform::RegOpenKeyExA(root_, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
      return false;
    }
    for (const std::string& name : registry_probe::ValueNames(key)) {
      const registry_probe::Filled bytes = registry_probe::QueryBytes(key, name.c_str());
      values[{sub, name}] = {bytes.type, bytes.buffer};
    }
    const std::vector<std::string> subkeys = registry_probe::Subkeys(key);
    Hostkit::platform::RegCloseKey(key);
    for (const std::string& subkey : subkeys) {
      ReadKey(Below(path, subkey), sub.empty() ? subkey : Below(sub, subkey), values);
    }
    return true;
  }

  // Sets the value as it was, or deletes it when `value` is null.
  void Put(const std::pair<std::string, std::string>& where, const Value* value) const {
    const std::string path = where.first.empty() ? path_ : path_ + "\\" + where.first;
    HKEY key = nullptr;
    if (Hostkit::platform::RegOpenKeyExA(root_, path.c_str(), 0, KEY_ALL_ACCESS, &key) !=
        ERROR_SUCCESS) {
      return;
    }
    if (value == nullptr) {
      Hostkit::platform::RegDeleteValueA(key, where.second.c_str());
    } else {
      Hostkit::platform::RegSetValueExA(key, where.second.c_str(), 0, value->first,
                                        reinterpret_cast<const BYTE*>(value->second.data()),
                                        static_cast<DWORD>(value->second.size()));
    }
    Hostkit::platform::RegCloseKey(key);
  }

  HKEY root_;
  std::string path_;
  Values start_;
  bool existed_;
};

}  // namespace hostkit_test
