// Summary questions over the adapter records and about the TCP/IP installation.
#include "tcpip_static/adapter_summary.h"

#include <algorithm>

#include "hostkit/os.h"
#include "hostkit/regwiz.h"
#include "live/dialup_components.h"
#include "tcpip_static/enumeration.h"
#include "tcpip_static/setters.h"

namespace Hostkit::tcpip {

namespace {

constexpr const char* kNetClass = "System\\CurrentControlSet\\Services\\Class\\Net";

}  // namespace

int CountAdapters(const std::vector<AdapterInfo>& adapters, const AdapterTest& test) {
  return static_cast<int>(std::count_if(adapters.begin(), adapters.end(), test));
}

int PrimaryNicIndex(const std::vector<AdapterInfo>& adapters) {
  int found = -1;
  int qualifying = 0;
  for (size_t i = 0; i < adapters.size(); ++i) {
    const AdapterInfo& a = adapters[i];
    if (a.IsEthernetAdapter() && a.IsBoundToTcpip() && a.IsFunctional() && a.IsAdapterEnabled()) {
      ++qualifying;
      found = static_cast<int>(i);
    }
  }
  return qualifying == 1 ? found : -1;
}

bool IsTcpipInstalled() {
  OS os;
  RegWiz registry;
  if (os.IsWin9x()) {
    return registry.DoesKeyExist(HKEY_LOCAL_MACHINE,
                                 "System\\CurrentControlSet\\Services\\VxD\\MSTCP");
  }
  if (os.IsWinXP()) {
    return true;
  }
  if (os.IsWin2000()) {
    return registry.DoesKeyExist(HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\TCPIP\\CurrentVersion");
  }
  if (os.IsWinNT4()) {
    return registry.DoesKeyExist(HKEY_LOCAL_MACHINE, kNtTcpipParameters);
  }
  return false;
}

// The dial-up rules are the DialUp class's, here without its family limits.
int NumMicrosoftDialupAdapters() {
  RegWiz registry;
  return live::CountDialupAdapters(registry);
}

bool IsMicrosoftVpnInstalled() {
  RegWiz registry;
  return live::IsVpnAdapterInstalled(registry);
}

// The protocol class entry with the same number as each adapter entry becomes that adapter's
// default protocol; the dial-up adapter keeps its own.
bool SetTcpipAsDefaultProtocol() {
  RegWiz registry;
  std::vector<std::string> entries;
  registry.GetSubKeyNames(HKEY_LOCAL_MACHINE, kNetClass, entries);
  for (const std::string& entry : entries) {
    if (ReadText(registry, std::string(kNetClass) + "\\" + entry, "DriverDesc") !=
        "Dial-Up Adapter") {
      const std::string key =
          "System\\CurrentControlSet\\Services\\Class\\NetTrans\\" + entry + "\\Ndi\\Default";
      registry.SetKeyVal(HKEY_LOCAL_MACHINE, key.c_str(), "", "True");
    }
  }
  return true;
}

bool EnableIPAC(bool enable) {
  OS os;
  if (!os.IsWin98() && !os.IsWinME()) {
    return false;
  }
  return RegWiz().SetDwordKeyVal(HKEY_LOCAL_MACHINE,
                                 "System\\CurrentControlSet\\Services\\VxD\\DHCP",
                                 "IPAutoconfigurationEnabled", enable ? 1 : 0);
}

// Dial-Up Networking 1.3 brings the dial-up server and the VPN client as optional components
// of Windows 95.
bool IsMsDun13Installad() {
  if (!OS().IsWin95()) {
    return false;
  }
  RegWiz registry;
  return live::AreDun13ComponentsRegistered(registry);
}

}  // namespace Hostkit::tcpip
