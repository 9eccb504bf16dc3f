// BroadbandPerformanceTweak_impl and the family branches of the Ethernet tuning. Each branch
// takes an MTU and a receive-window size, where kBuiltInDefault stands for the branch's own
// default.
#pragma once

#include "hostkit/os.h"
#include "hostkit/regwiz.h"

namespace Hostkit {

class BroadbandPerformanceTweak_impl {
 public:
  static bool TweakForPPPOA() { return false; }
  static bool TweakForPPPOE() { return false; }
  static bool TweakForPureEthernet();
};

namespace tweaks {

constexpr int kBuiltInDefault = -1;
constexpr const char* kTcpipParameters = "System\\CurrentControlSet\\Services\\Tcpip\\Parameters";

// "MaxMTU" in the TCP/IP binding of every enabled Ethernet adapter, "DefaultRcvWindow" of MSTCP.
void TuneWin9x(RegWiz& registry, OS& os, int mtu, int window);
// Path MTU discovery, the MTU of every TCP/IP interface, window scaling and the window sizes.
void TuneWin2000(RegWiz& registry, int mtu, int window);
// The MTU of every bus-attached network card's TCP/IP settings, and the window size.
void TuneNT4(RegWiz& registry, int mtu, int window);

}  // namespace tweaks

}  // namespace Hostkit
