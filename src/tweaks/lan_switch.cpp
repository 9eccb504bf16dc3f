// The LAN switch: "EnableAutodial" written in every hardware profile's, the machine's, the
// default user's, the current user's and the current configuration's Internet Settings.
#include "hostkit/lan_switch.h"

#include <string>
#include <vector>

#include "hostkit/regwiz.h"

namespace Hostkit {

namespace {

constexpr const char* kAutodial = "EnableAutodial";
constexpr const char* kInternetSettings =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";
// Windows 9x's configuration keys and the current configuration spell "windows" in lower case.
constexpr const char* kLowerCaseInternetSettings =
    "Software\\Microsoft\\windows\\CurrentVersion\\Internet Settings";

std::vector<std::string> SubKeys(RegWiz& registry, const std::string& path) {
  std::vector<std::string> names;
  registry.GetSubKeyNames(HKEY_LOCAL_MACHINE, path.c_str(), names);
  return names;
}

bool WriteAutodial(bool enable) {
  RegWiz registry;
  const unsigned long value = enable ? 0 : 1;
  bool written = false;
  const auto write = [&](HKEY root, const std::string& path) {
    written = registry.SetDwordKeyVal(root, path.c_str(), kAutodial, value) || written;
  };
  for (const std::string& config : SubKeys(registry, "Config")) {
    write(HKEY_LOCAL_MACHINE, "Config\\" + config + "\\" + kLowerCaseInternetSettings);
  }
  write(HKEY_LOCAL_MACHINE, kInternetSettings);
  for (const std::string& system : SubKeys(registry, "SYSTEM")) {
    const std::string profiles = "SYSTEM\\" + system + "\\Hardware Profiles";
    for (const std::string& profile : SubKeys(registry, profiles)) {
      std::string path = profiles;
      path += "\\";
      path += profile;
      path += "\\";
      path += kInternetSettings;
      write(HKEY_LOCAL_MACHINE, path);
    }
  }
  write(HKEY_USERS, std::string(".Default\\") + kInternetSettings);
  write(HKEY_CURRENT_USER, kInternetSettings);
  write(HKEY_CURRENT_CONFIG, kLowerCaseInternetSettings);
  return written;
}

bool ReadLanEnabled() {
  RegWiz registry;
  unsigned long autodial = 0;
  unsigned long read = 0;
  if (registry.GetDwordKeyVal(HKEY_CURRENT_USER, kInternetSettings, kAutodial, read) ||
      registry.GetDwordKeyVal(HKEY_LOCAL_MACHINE,
                              "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Internet Settings",
                              kAutodial, read)) {
    autodial = read;
  }
  return autodial == 0;
}

}  // namespace

bool EnableLAN(bool enable) {
  try {
    return WriteAutodial(enable);
  } catch (...) {
    return false;
  }
}

bool IsLANEnabled() {
  try {
    return ReadLanEnabled();
  } catch (...) {
    return false;
  }
}

}  // namespace Hostkit
