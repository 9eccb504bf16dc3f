// The Ethernet tuning on Windows 95, 98 and Me: text values in the TCP/IP bindings of the
// enabled Ethernet adapters and in MSTCP's key.
#include <string>
#include <vector>

#include "hostkit/static_tcpip.h"
#include "tcpip_static/adapter_record.h"
#include "tweaks/broadband_tweak_impl.h"

namespace Hostkit::tweaks {

void TuneWin9x(RegWiz& registry, OS& os, int mtu, int window) {
  const std::string mtuText = mtu != kBuiltInDefault ? std::to_string(mtu) : "1500";
  std::vector<StaticTcpipInfo::AdapterInfo> adapters;
  StaticTcpipInfo().GetAdapterInfo(adapters);
  for (const StaticTcpipInfo::AdapterInfo& adapter : adapters) {
    const std::string& binding = AdapterRecordAccess::Of(adapter).tcpipBindingKey;
    if (adapter.IsEthernetAdapter() && adapter.IsAdapterEnabled() && !binding.empty()) {
      registry.SetKeyVal(HKEY_LOCAL_MACHINE, binding.c_str(), "MaxMTU", mtuText.c_str());
    }
  }
  // Windows 98 and Me default to a larger receive window than Windows 95.
  std::string windowText = (os.IsWin98() || os.IsWinME()) ? "256960" : "64240";
  if (window != kBuiltInDefault) {
    windowText = std::to_string(window);
  }
  registry.SetKeyVal(HKEY_LOCAL_MACHINE, "System\\CurrentControlSet\\Services\\VxD\\MSTCP",
                     "DefaultRcvWindow", windowText.c_str());
}

}  // namespace Hostkit::tweaks
