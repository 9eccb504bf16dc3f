// The Ethernet tuning on Windows 2000 and NT 4: DWORD values of the TCP/IP service and of the
// adapters' TCP/IP settings.
#include <string>
#include <vector>

#include "tweaks/broadband_tweak_impl.h"

namespace Hostkit::tweaks {

namespace {

unsigned long OrDefault(int value, unsigned long builtIn) {
  return value != kBuiltInDefault ? static_cast<unsigned long>(value) : builtIn;
}

}  // namespace

void TuneWin2000(RegWiz& registry, int mtu, int window) {
  // This path has no leading "System\": the value goes to a key of exactly this name, when
  // there is one, and not to the TCP/IP service's parameters.
  registry.SetKeyVal(HKEY_LOCAL_MACHINE, "CurrentControlSet\\Services\\Tcpip\\Parameters",
                     "EnablePMTUDiscovery", "1");
  const std::string interfaces = std::string(kTcpipParameters) + "\\Interfaces";
  std::vector<std::string> names;
  registry.GetSubKeyNames(HKEY_LOCAL_MACHINE, interfaces.c_str(), names);
  for (const std::string& name : names) {
    std::string path = interfaces;
    path += "\\";
    path += name;
    registry.SetDwordKeyVal(HKEY_LOCAL_MACHINE, path.c_str(), "MTU", OrDefault(mtu, 1500));
  }
  const unsigned long windowSize = OrDefault(window, 372300);
  registry.SetDwordKeyVal(HKEY_LOCAL_MACHINE, kTcpipParameters, "Tcp1323Opts", 3);
  registry.SetDwordKeyVal(HKEY_LOCAL_MACHINE, kTcpipParameters, "GlobalMaxTcpWindowSize",
                          windowSize);
  registry.SetDwordKeyVal(HKEY_LOCAL_MACHINE, kTcpipParameters, "TcpWindowSize", windowSize);
}

void TuneNT4(RegWiz& registry, int mtu, int window) {
  constexpr const char* kNetworkCards =
      "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\NetworkCards";
  std::vector<std::string> cards;
  registry.GetSubKeyNames(HKEY_LOCAL_MACHINE, kNetworkCards, cards);
  for (const std::string& card : cards) {
    std::string service;
    if (!registry.GetKeyVal(HKEY_LOCAL_MACHINE, (std::string(kNetworkCards) + "\\" + card).c_str(),
                            "ServiceName", service)) {
      continue;
    }
    // Only cards on a bus have a "BusNumber"; the others are not network hardware.
    const std::string parameters =
        "System\\CurrentControlSet\\Services\\" + service + "\\Parameters";
    if (registry.DoesValNameExist(HKEY_LOCAL_MACHINE, parameters.c_str(), "BusNumber")) {
      registry.SetDwordKeyVal(HKEY_LOCAL_MACHINE, (parameters + "\\Tcpip").c_str(), "MTU",
                              OrDefault(mtu, 1500));
    }
  }
  registry.SetDwordKeyVal(HKEY_LOCAL_MACHINE,
                          "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters", "TcpWindowSize",
                          OrDefault(window, 64240));
}

}  // namespace Hostkit::tweaks
