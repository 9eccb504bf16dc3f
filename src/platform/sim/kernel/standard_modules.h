// The modules every simulated machine starts with; a profile or a test may take entries away.
#pragma once

#include "hostkit/sim/machine.h"

namespace Hostkit::sim {

// "shell32.dll" with SHGetSpecialFolderPathA.
void AddStandardModules(Machine& machine);

// "setupapi.dll" with the device-information calls (Windows 98 and later, 2000 and XP) and
// "cfgmgr32.dll" with the device-node state (2000 and XP).
void AddSetupApiModule(Machine& machine);

// "rasapi32.dll" over the machine's Remote Access state (every release: a profile without
// Dial-Up Networking names it absent).
void AddRasModule(Machine& machine);

// "IPHLPAPI.DLL" over the live network (Windows 98, Me and the NT family) and "dhcpcsvc.dll"
// with the DHCP client's acquire and release calls (the NT family).
void AddIpHelperModule(Machine& machine);

// The DHCP client VxD "vdhcp.386" of Windows 95/98/Me (platform/sim/devices/dhcp_vxd.h).
void AddDhcpVxd(Machine& machine);

// "SNMPAPI.DLL" with the SNMP memory calls and "INETMIB1.DLL", the extension agent serving the
// MIB-II view of the live network (every release).
void AddSnmpModules(Machine& machine);

}  // namespace Hostkit::sim
