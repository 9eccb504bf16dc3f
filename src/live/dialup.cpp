// DialUp: detecting, installing and pruning the Windows 9x dial-up components, and switching
// automatic dialling on everywhere the system may look for it.
#include "hostkit/dialup.h"

#include <string>
#include <vector>

#include "foundation/shell_impl.h"
#include "hostkit/os.h"
#include "hostkit/regwiz.h"
#include "live/dialup_components.h"
#include "platform/process.h"

namespace Hostkit {

class DialUp_impl {
 public:
  static bool IsMsDun13Installed();
  static bool IsMicrosoftVpnInstalled();
  static int NumMicrosoftDialupAdapters();
  static void RemoveDialupAdaptersNotBoundToTcpip();
  static bool InstallVpn();
  static bool InstallDialUpAdapters(int wanted);
  static bool EnableDialUp(const wstring& entry);
};

template class Pimpl<DialUp_impl>;

namespace {

constexpr std::size_t kMaxArguments = 100;

// The component installers run only where Dial-Up Networking is installed this way.
bool IsWin98OrMe() {
  OS os;
  return os.IsWin9x() && !os.IsWin95();
}

// Makes the component installer treat the optional component as absent: its "Installed" value,
// where there is one, becomes "0".
void MarkComponentNotInstalled(RegWiz& registry, const std::string& component) {
  const std::string key =
      "Software\\Microsoft\\Windows\\CurrentVersion\\Setup\\OptionalComponents\\" + component;
  if (registry.DoesValNameExist(HKEY_LOCAL_MACHINE, key.c_str(), "Installed")) {
    registry.SetKeyVal(HKEY_LOCAL_MACHINE, key.c_str(), "Installed", "0");
  }
}

// Cuts the command line at blanks into at most 100 arguments, the first naming the program, and
// waits for the program. Its outcome is not examined.
void RunAndWait(const std::string& commandLine) {
  std::vector<std::string> arguments;
  std::size_t start = 0;
  while (arguments.size() < kMaxArguments) {
    start = commandLine.find_first_not_of(' ', start);
    if (start == std::string::npos) {
      break;
    }
    const std::size_t end = commandLine.find(' ', start);
    arguments.push_back(commandLine.substr(start, end - start));
    start = end;
  }
  if (arguments.empty()) {
    return;
  }
  std::vector<const char*> argv;
  argv.reserve(arguments.size() + 1);
  for (const std::string& argument : arguments) {
    argv.push_back(argument.c_str());
  }
  argv.push_back(nullptr);
  platform::SpawnAndWait(argv.data());
}

// `path` + "\\" + `name` + `rest`.
wstring Below(wstring path, const wstring& name, const wstring& rest) {
  path += HK_WIDE('\\');
  path += name;
  path += rest;
  return path;
}

void InstallComponent(RegWiz& registry, const std::string& component) {
  MarkComponentNotInstalled(registry, component);
  RunAndWait("rundll.exe rnasetup.dll,InstallOptionalComponent " + component);
}

}  // namespace

bool DialUp_impl::IsMsDun13Installed() {
  if (!OS().IsWin95()) {
    return false;
  }
  RegWiz registry;
  return live::AreDun13ComponentsRegistered(registry);
}

bool DialUp_impl::IsMicrosoftVpnInstalled() {
  if (!OS().IsWin9x()) {
    return false;
  }
  RegWiz registry;
  return live::IsVpnAdapterInstalled(registry);
}

int DialUp_impl::NumMicrosoftDialupAdapters() {
  if (!OS().IsWin9x()) {
    return 0;
  }
  RegWiz registry;
  return live::CountDialupAdapters(registry);
}

void DialUp_impl::RemoveDialupAdaptersNotBoundToTcpip() {
  if (!OS().IsWin9x()) {
    return;
  }
  RegWiz registry;
  live::RemoveUnboundDialupAdapter(registry);
  live::RemoveForeignOrUnboundAdapter(registry);
}

bool DialUp_impl::InstallVpn() {
  if (!IsWin98OrMe()) {
    return false;
  }
  RegWiz registry;
  InstallComponent(registry, "VPN");
  return true;
}

bool DialUp_impl::InstallDialUpAdapters(int wanted) {
  if (!IsWin98OrMe()) {
    return false;
  }
  RemoveDialupAdaptersNotBoundToTcpip();
  int adapters = NumMicrosoftDialupAdapters();
  if (adapters == 0) {
    RegWiz registry;
    InstallComponent(registry, "RNA");
    adapters = 1;  // Dial-Up Networking brings one dial-up adapter
  }
  // The VPN component brings a second one.
  return adapters < wanted ? InstallVpn() : true;
}

bool DialUp_impl::EnableDialUp(const wstring& entry) {
  // Configuration and hardware-profile keys spell "windows" in lower case. The "HKLM\" prefix
  // of the two walks is part of the path below HKEY_LOCAL_MACHINE.
  const wstring lowerSettings =
      HK_WIDE("\\Software\\Microsoft\\windows\\CurrentVersion\\Internet Settings");
  const wstring config = HK_WIDE("HKLM\\Config");
  const wstring system = HK_WIDE("HKLM\\SYSTEM");
  RegWiz registry;
  bool written = false;
  const auto enable = [&](HKEY root, const wstring& path) {
    written = registry.SetDwordKeyVal(root, path.c_str(), HK_WIDE("EnableAutodial"), 1) || written;
  };
  std::vector<wstring> configs;
  registry.GetSubKeyNames(HKEY_LOCAL_MACHINE, config.c_str(), configs);
  for (const wstring& name : configs) {
    enable(HKEY_LOCAL_MACHINE, Below(config, name, lowerSettings));
  }
  enable(HKEY_LOCAL_MACHINE,
         HK_WIDE("Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings"));
  // One counter serves the walk over the control sets and the walk over each set's hardware
  // profiles: a set is written (in its first profile) once for each profile number from the
  // counter up to its profile count, and the walk over the sets resumes after that number.
  std::vector<wstring> sets;
  registry.GetSubKeyNames(HKEY_LOCAL_MACHINE, system.c_str(), sets);
  for (std::size_t i = 0; i < sets.size(); ++i) {
    const wstring profiles = Below(system, sets[i], HK_WIDE("\\Hardware Profiles"));
    std::vector<wstring> names;
    registry.GetSubKeyNames(HKEY_LOCAL_MACHINE, profiles.c_str(), names);
    for (; i < names.size(); ++i) {
      enable(HKEY_LOCAL_MACHINE, Below(profiles, names.front(), lowerSettings));
    }
  }
  enable(HKEY_LOCAL_MACHINE,
         HK_WIDE("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Internet Settings"));
  enable(HKEY_USERS,
         HK_WIDE(".Default\\Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings"));
  enable(HKEY_CURRENT_USER,
         HK_WIDE("Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings"));
  enable(HKEY_CURRENT_CONFIG, lowerSettings.substr(1));
  if (!entry.empty()) {
    // The phonebook entry dialled for the Internet; these writes do not count for the result.
    const WCHAR* autoDial = HK_WIDE("SOFTWARE\\Microsoft\\RAS AutoDial");
    const WCHAR* autoDialDefault = HK_WIDE("SOFTWARE\\Microsoft\\RAS AutoDial\\Default");
    registry.SetKeyVal(HKEY_CURRENT_USER, HK_WIDE("RemoteAccess"), HK_WIDE("InternetProfile"),
                       entry.c_str());
    registry.CreateKey(HKEY_LOCAL_MACHINE, autoDial);
    registry.CreateKey(HKEY_LOCAL_MACHINE, autoDialDefault);
    registry.SetKeyVal(HKEY_LOCAL_MACHINE, autoDialDefault, HK_WIDE("DefaultInternet"),
                       entry.c_str());
  }
  return written;
}

DialUp::DialUp() = default;
DialUp::DialUp(const DialUp& other) = default;
DialUp& DialUp::operator=(const DialUp& other) = default;
DialUp::~DialUp() = default;

bool DialUp::IsMsDun13Installed() {
  return Forward(impl_, false, [](DialUp_impl&) { return DialUp_impl::IsMsDun13Installed(); });
}
bool DialUp::IsMicrosoftVpnInstalled() {
  return Forward(impl_, false, [](DialUp_impl&) { return DialUp_impl::IsMicrosoftVpnInstalled(); });
}
int DialUp::NumMicrosoftDialupAdapters() {
  return Forward(impl_, 0, [](DialUp_impl&) { return DialUp_impl::NumMicrosoftDialupAdapters(); });
}
void DialUp::RemoveDialupAdaptersNotBoundToTcpip() {
  Forward(impl_, false, [](DialUp_impl&) {
    DialUp_impl::RemoveDialupAdaptersNotBoundToTcpip();
    return true;
  });
}
bool DialUp::InstallVpn() {
  return Forward(impl_, false, [](DialUp_impl&) { return DialUp_impl::InstallVpn(); });
}
bool DialUp::InstallDialUpAdapters(int wanted) {
  return Forward(impl_, false,
                 [&](DialUp_impl&) { return DialUp_impl::InstallDialUpAdapters(wanted); });
}
bool DialUp::EnableDialUp(const wstring& entry) {
  return Forward(impl_, false, [&](DialUp_impl&) { return DialUp_impl::EnableDialUp(entry); });
}

}  // namespace Hostkit
