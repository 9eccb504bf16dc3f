/// \file
/// BroadbandPerformanceTweak: TCP/IP and browser connection settings tuned for a broadband
/// Ethernet connection, written to the registry for the next start.
#pragma once

#include "hostkit/export.h"
#include "hostkit/shell.h"

namespace Hostkit {

class BroadbandPerformanceTweak_impl;

/// Tunes TCP/IP and the browser's connection limits for a broadband connection; the settings
/// take effect at the next start of Windows.
class HOSTKIT_API BroadbandPerformanceTweak {
 public:
  ///@{
  /// Creates, copies (each copy owns its own implementation object) and destroys
  /// the object.
  BroadbandPerformanceTweak();
  BroadbandPerformanceTweak(const BroadbandPerformanceTweak& other);
  BroadbandPerformanceTweak& operator=(const BroadbandPerformanceTweak& other);
  ~BroadbandPerformanceTweak();
  ///@}

  ///@{
  /// There is no tuning for PPP over ATM or over Ethernet: both write nothing and answer false.
  bool TweakForPPPOA();
  bool TweakForPPPOE();
  ///@}

  /// Writes the browser's connection limits and the family's MTU and receive-window settings
  /// (Windows XP is left as it is). True whatever the individual writes answered.
  bool TweakForPureEthernet();

 private:
  Pimpl<BroadbandPerformanceTweak_impl> impl_;
};

}  // namespace Hostkit
