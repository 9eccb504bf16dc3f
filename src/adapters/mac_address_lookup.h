// Reading a network adapter's hardware address from its driver, by the adapter's service name.
#pragma once

#include <string>

#include "hostkit/win_types.h"

namespace Hostkit::adapters {

// Asks the adapter's driver for its current 802.3 address (or, failing that, its current or
// permanent WAN address) through the NDIS statistics query, defining a temporary DOS device
// name for the driver when it has none. `address` receives "XX-XX-XX-XX-XX-XX", or
// "00-00-00-00-00-00" when no address was obtained; true when one was.
bool QueryAdapterMacAddress(const wstring& serviceName, std::string& address);

}  // namespace Hostkit::adapters
