// hostkit reg query: a key's values with their types and data, then its subkeys.
#include <algorithm>
#include <cstdio>
#include <ostream>
#include <string>
#include <vector>

#include "commands.h"
#include "foundation/reg_file.h"
#include "hostkit/regwiz.h"
#include "platform/registry.h"

namespace hostkit_tool {

bool ParseKeyName(const std::string& text, KeyName& key) {
  const size_t split = text.find('\\');
  const std::string rootName = text.substr(0, split);
  Hostkit::wstring wideRoot(rootName.begin(), rootName.end());
  key.root = Hostkit::regfile::RootFromName(wideRoot);
  if (key.root == nullptr) {
    return false;
  }
  key.path = split == std::string::npos ? std::string() : text.substr(split + 1);
  while (!key.path.empty() && key.path.back() == '\\') {
    key.path.pop_back();
  }
  key.full = Hostkit::regfile::RootName(key.root);
  if (!key.path.empty()) {
    key.full += "\\" + key.path;
  }
  return true;
}

namespace {

std::string TypeName(DWORD type) {
  static const char* const kNames[] = {
      "REG_NONE",
      "REG_SZ",
      "REG_EXPAND_SZ",
      "REG_BINARY",
      "REG_DWORD",
      "REG_DWORD_BIG_ENDIAN",
      "REG_LINK",
      "REG_MULTI_SZ",
      "REG_RESOURCE_LIST",
      "REG_FULL_RESOURCE_DESCRIPTOR",
      "REG_RESOURCE_REQUIREMENTS_LIST",
      "REG_QWORD",
  };
  if (type < sizeof kNames / sizeof kNames[0]) {
    return kNames[type];
  }
  char text[16];
  std::snprintf(text, sizeof text, "0x%x", static_cast<unsigned>(type));
  return text;
}

std::string HexBytes(const std::vector<BYTE>& data) {
  std::string text;
  char digits[4];
  for (BYTE b : data) {
    std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned>(b));
    text += digits;
  }
  return text;
}

// The data as reg.exe shows it: text up to its terminator, several strings joined by "\0",
// numbers in hex, anything else as hex bytes.
std::string DataText(DWORD type, const std::vector<BYTE>& data) {
  const std::string bytes(data.begin(), data.end());
  if (type == REG_SZ || type == REG_EXPAND_SZ) {
    return FromAnsi(bytes.substr(0, bytes.find('\0')));
  }
  if (type == REG_MULTI_SZ) {
    std::string text;
    for (size_t start = 0; start < bytes.size() && bytes[start] != '\0';) {
      const size_t end = std::min(bytes.find('\0', start), bytes.size());
      text += (start == 0 ? "" : "\\0") + FromAnsi(bytes.substr(start, end - start));
      start = end + 1;
    }
    return text;
  }
  if ((type == REG_DWORD || type == REG_DWORD_BIG_ENDIAN) && data.size() == 4) {
    unsigned long value = 0;
    for (int i = 0; i < 4; ++i) {
      const BYTE b = type == REG_DWORD ? data[3 - i] : data[i];
      value = (value << 8) | b;
    }
    char text[16];
    std::snprintf(text, sizeof text, "0x%lx", value);
    return text;
  }
  return HexBytes(data);
}

// Appends each value of the open key to `values`; false when one cannot be read.
bool ReadValues(HKEY key, nlohmann::ordered_json& values) {
  std::vector<char> name(16384);
  std::vector<BYTE> data(1024);
  for (DWORD index = 0;; ++index) {
    DWORD nameSize = static_cast<DWORD>(name.size());
    DWORD dataSize = static_cast<DWORD>(data.size());
    DWORD type = REG_NONE;
    LONG result = Hostkit::platform::RegEnumValueA(key, index, name.data(), &nameSize, nullptr,
                                                   &type, data.data(), &dataSize);
    if (result == ERROR_MORE_DATA && dataSize > data.size()) {
      data.resize(dataSize);
      nameSize = static_cast<DWORD>(name.size());
      result = Hostkit::platform::RegEnumValueA(key, index, name.data(), &nameSize, nullptr, &type,
                                                data.data(), &dataSize);
    }
    if (result == ERROR_NO_MORE_ITEMS) {
      return true;
    }
    if (result != ERROR_SUCCESS) {
      return false;
    }
    values.push_back(
        {{"name", FromAnsi(std::string(name.data(), nameSize))},
         {"type", TypeName(type)},
         {"data", DataText(type, std::vector<BYTE>(data.begin(), data.begin() + dataSize))}});
  }
}

}  // namespace

int RunRegQuery(const std::string& key, std::ostream& out, std::ostream& err) {
  KeyName name;
  std::string ansi;
  if (!ToAnsi(key, ansi) || !ParseKeyName(ansi, name)) {
    return UsageError("\"" + key + "\" names no key of the machine", err);
  }
  const std::string full = FromAnsi(name.full);
  Hostkit::RegWiz registry;
  if (!registry.DoesKeyExist(name.root, name.path.c_str())) {
    return Fail("key not found: " + full, err);
  }
  HKEY open = nullptr;
  const LONG result =
      Hostkit::platform::RegOpenKeyExA(name.root, name.path.c_str(), 0, KEY_READ, &open);
  if (result != ERROR_SUCCESS) {
    return Fail("cannot open " + full + " (error " + std::to_string(result) + ")", err);
  }
  nlohmann::ordered_json values = nlohmann::ordered_json::array();
  const bool valuesRead = ReadValues(open, values);
  Hostkit::platform::RegCloseKey(open);
  std::vector<std::string> subkeys;
  if (!valuesRead || !registry.GetSubKeyNames(name.root, name.path.c_str(), subkeys)) {
    return Fail("cannot read " + full, err);
  }
  nlohmann::ordered_json subkeyList = nlohmann::ordered_json::array();
  for (const std::string& subkey : subkeys) {
    subkeyList.push_back(FromAnsi(subkey));
  }
  if (JsonOutput()) {
    PrintJson({{"key", full}, {"values", values}, {"subkeys", subkeyList}}, out);
    return kDone;
  }
  out << full << "\n";
  for (const auto& value : values) {
    const std::string valueName = value["name"].get<std::string>();
    out << "    " << (valueName.empty() ? "(Default)" : valueName) << "    "
        << value["type"].get<std::string>() << "    " << value["data"].get<std::string>() << "\n";
  }
  if (!subkeys.empty()) {
    out << "\n";
  }
  for (const auto& subkey : subkeyList) {
    out << full << "\\" << subkey.get<std::string>() << "\n";
  }
  return kDone;
}

}  // namespace hostkit_tool
