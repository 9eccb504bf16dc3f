// DhcpReleaseRenew: gives up or renews the DHCP lease of one adapter or of every DHCP adapter,
// then judges the outcome from the live state read after a fixed wait. Adapters are named by
// their live hardware-address text (LiveTcpipInfo::AdapterInfo::HardwareAddress or Cookie).
#pragma once

#include <string>

#include "hostkit/export.h"
#include "hostkit/shell.h"

namespace Hostkit {

class DhcpReleaseRenew_impl;

class HOSTKIT_API DhcpReleaseRenew {
 public:
  DhcpReleaseRenew();
  DhcpReleaseRenew(const DhcpReleaseRenew& other);
  DhcpReleaseRenew& operator=(const DhcpReleaseRenew& other);
  ~DhcpReleaseRenew();

  // True when afterwards the adapter is on DHCP without a usable address, or is not listed.
  // Blocks for 1 s.
  bool Release(const std::string& adapter);
  // True when afterwards the adapter is on DHCP with a usable address (not 0.0.0.0 and not an
  // automatic 169.254 address), or is not listed. Blocks for 3.7 s (3.9 s on Windows 9x).
  bool Renew(const std::string& adapter);
  bool ReleaseUsingCookie(const std::string& cookie);
  bool RenewUsingCookie(const std::string& cookie);
  // Every DHCP adapter in turn; true unless one of them failed.
  bool ReleaseAll();
  bool RenewAll();

 private:
  Pimpl<DhcpReleaseRenew_impl> impl_;
};

}  // namespace Hostkit
