// The MIB-II interface rows read through the SNMP agent when IP Helper is not available.
#pragma once

#include <string>
#include <vector>

#include "hostkit/win_types.h"

namespace Hostkit::live {

struct SnmpInterfaceRow {
  Hostkit::wstring description;  // without the line feed the walk's text ends with
  std::string ipAddress;         // empty when the interface has no address
  std::string subnetMask;
  std::string defaultGateway;
  std::string hardwareAddress;  // lower-case pairs joined by "-", as IP Helper's are formatted
  DWORD type = 0;
};

// Walks the agent's view and builds one row per interface in ifIndex order, loopback dropped;
// false when the agent cannot be initialised or the walk fails.
bool ReadSnmpInterfaceRows(std::vector<SnmpInterfaceRow>& rows);

}  // namespace Hostkit::live
