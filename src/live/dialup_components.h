// The Windows 9x registry model of the dial-up components: root-enumerated network devices
// ("Enum\Root\Net\S", with "Driver" naming a class entry and "Bindings" listing the protocols
// bound to the device), their class entries ("DeviceVxDs" naming the driver file) and the
// registered optional components. These rules hold without regard to the running family; the
// callers decide where they apply. Shared by DialUp and StaticTcpipInfo.
#pragma once

#include "hostkit/regwiz.h"

namespace Hostkit::live {

// The devices whose class entry's driver is the PPP driver "pppmac.vxd".
int CountDialupAdapters(RegWiz& registry);
// The first class entry driven by "netpptp.sys" is the driver of some device.
bool IsVpnAdapterInstalled(RegWiz& registry);
// Both the dial-up server ("RNASERV") and the VPN client ("VPN") are optional components.
bool AreDun13ComponentsRegistered(RegWiz& registry);

// Removes at most one device: the first dial-up adapter without a TCP/IP binding.
void RemoveUnboundDialupAdapter(RegWiz& registry);
// Removes at most one device: the first that is not a dial-up adapter at all, or is a dial-up
// adapter without a TCP/IP binding.
void RemoveForeignOrUnboundAdapter(RegWiz& registry);

}  // namespace Hostkit::live
