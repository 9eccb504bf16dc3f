// BroadbandPerformanceTweak: TCP/IP and browser connection settings tuned for a broadband
// Ethernet connection, written to the registry for the next start.
#pragma once

#include "hostkit/export.h"
#include "hostkit/shell.h"

namespace Hostkit {

class BroadbandPerformanceTweak_impl;

class HOSTKIT_API BroadbandPerformanceTweak {
 public:
  BroadbandPerformanceTweak();
  BroadbandPerformanceTweak(const BroadbandPerformanceTweak& other);
  BroadbandPerformanceTweak& operator=(const BroadbandPerformanceTweak& other);
  ~BroadbandPerformanceTweak();

  // There is no tuning for PPP over ATM or over Ethernet: both write nothing and answer false.
  bool TweakForPPPOA();
  bool TweakForPPPOE();
  // Writes the browser's connection limits and the family's MTU and receive-window settings
  // (Windows XP is left as it is). True whatever the individual writes answered.
  bool TweakForPureEthernet();

 private:
  Pimpl<BroadbandPerformanceTweak_impl> impl_;
};

}  // namespace Hostkit
