/// \file
/// DhcpReleaseRenew: gives up or renews the DHCP lease of one adapter or of every DHCP adapter,
/// then judges the outcome from the live state read after a fixed wait. Adapters are named by
/// their live hardware-address text (LiveTcpipInfo::AdapterInfo::HardwareAddress or Cookie).
#pragma once

#include <string>

#include "hostkit/export.h"
#include "hostkit/shell.h"

namespace Hostkit {

class DhcpReleaseRenew_impl;

/// Gives up or renews DHCP leases through the family's DHCP mechanism and judges the outcome by
/// reading the live state after a fixed wait (the calls block for seconds).
class HOSTKIT_API DhcpReleaseRenew {
 public:
  ///@{
  /// Creates, copies (each copy owns its own implementation object) and destroys
  /// the object.
  DhcpReleaseRenew();
  DhcpReleaseRenew(const DhcpReleaseRenew& other);
  DhcpReleaseRenew& operator=(const DhcpReleaseRenew& other);
  ~DhcpReleaseRenew();
  ///@}

  /// True when afterwards the adapter is on DHCP without a usable address, or is not listed.
  /// Blocks for 1 s.
  bool Release(const std::string& adapter);
  /// True when afterwards the adapter is on DHCP with a usable address (not 0.0.0.0 and not an
  /// automatic 169.254 address), or is not listed. Blocks for 3.7 s (3.9 s on Windows 9x).
  bool Renew(const std::string& adapter);
  /// The same as Release: the cookie is the live hardware-address text.
  bool ReleaseUsingCookie(const std::string& cookie);
  /// The same as Renew: the cookie is the live hardware-address text.
  bool RenewUsingCookie(const std::string& cookie);
  ///@{
  /// Every DHCP adapter in turn; true unless one of them failed.
  bool ReleaseAll();
  bool RenewAll();
  ///@}

 private:
  Pimpl<DhcpReleaseRenew_impl> impl_;
};

}  // namespace Hostkit
