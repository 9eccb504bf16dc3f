// The DHCP client outside IP Helper: "dhcpcsvc.dll" on the NT family (bound once per process)
// and the DHCP VxD ("\\.\vdhcp.386") on Windows 95/98/Me.
#pragma once

#include <string>
#include <vector>

#include "hostkit/win_types.h"

namespace Hostkit::live {

// DhcpReleaseParameters / DhcpAcquireParameters for the adapter named `serviceName`; the
// entries' own results are not examined, so these report success whenever the entry exists.
bool DhcpClientRelease(const std::string& serviceName);
bool DhcpClientAcquire(const std::string& serviceName);

// What the Windows 9x DHCP client knows of one adapter.
struct VxdDhcpEntry {
  std::string hardwareAddress;  // lower-case pairs joined by "-"
  std::string dhcpServer;       // dotted quad
  bool dhcp = false;
};

// The DHCP VxD's adapters, and the DNS domain DHCP supplied; false when the VxD cannot be
// opened or does not answer.
bool QueryDhcpVxd(std::vector<VxdDhcpEntry>& entries);
bool QueryDhcpVxdDomain(std::string& domain);
// The VxD's release and renew requests for the adapter with this hardware address (as above).
bool VxdReleaseLease(const std::string& hardwareAddress);
bool VxdRenewLease(const std::string& hardwareAddress);

}  // namespace Hostkit::live
