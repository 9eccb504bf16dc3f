// Rules the family branches of the stored TCP/IP enumeration share.
#include <algorithm>

#include "hostkit/strings.h"
#include "tcpip_static/enumeration.h"

namespace Hostkit::tcpip {

std::string LowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return text;
}

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

std::string BusEnumerator(const std::string& device, const std::string& enumRoot) {
  const std::size_t start = enumRoot.size() + 1;
  if (device.size() < start) {
    return {};
  }
  const std::size_t end = device.find('\\', start);
  return end == std::string::npos ? std::string() : device.substr(start, end - start);
}

std::vector<std::string> ServerTokens(const std::string& list) {
  std::vector<std::string> tokens;
  std::size_t start = list.find_first_not_of(" ,");
  while (start != std::string::npos) {
    const std::size_t end = list.find_first_of(" ,", start);
    tokens.push_back(list.substr(start, end - start));
    start = end == std::string::npos ? end : list.find_first_not_of(" ,", end);
  }
  return tokens;
}

bool IsDisabledInCurrentConfig(RegWiz& registry, const std::string& path) {
  unsigned long flags = 0;
  return registry.DoesKeyExist(HKEY_CURRENT_CONFIG, path.c_str()) &&
         registry.GetDwordKeyVal(HKEY_CURRENT_CONFIG, path.c_str(), "CSConfigFlags", flags) &&
         (flags & 1U) != 0;
}

std::string ReadText(RegWiz& registry, const std::string& path, const char* name) {
  std::string value;
  if (!registry.GetKeyVal(HKEY_LOCAL_MACHINE, path.c_str(), name, value)) {
    value.clear();
  }
  return value;
}

wstring ReadWideText(RegWiz& registry, const std::string& path, const WCHAR* name) {
  wstring widePath;
  wstring value;
  if (!ConvertANSIToUnicode(path, widePath) ||
      !registry.GetKeyVal(HKEY_LOCAL_MACHINE, widePath.c_str(), name, value)) {
    value.clear();
  }
  return value;
}

}  // namespace Hostkit::tcpip
