// BroadbandPerformanceTweak: the shell, the browser's connection limits shared by every family
// it tunes, and the choice of the family branch.
#include "hostkit/broadband_tweak.h"

#include "foundation/shell_impl.h"
#include "tweaks/broadband_tweak_impl.h"

namespace Hostkit {

template class Pimpl<BroadbandPerformanceTweak_impl>;

BroadbandPerformanceTweak::BroadbandPerformanceTweak() = default;
BroadbandPerformanceTweak::BroadbandPerformanceTweak(const BroadbandPerformanceTweak& other) =
    default;
BroadbandPerformanceTweak& BroadbandPerformanceTweak::operator=(
    const BroadbandPerformanceTweak& other) = default;
BroadbandPerformanceTweak::~BroadbandPerformanceTweak() = default;

bool BroadbandPerformanceTweak::TweakForPPPOA() {
  return Forward(impl_, false, [](BroadbandPerformanceTweak_impl&) {
    return BroadbandPerformanceTweak_impl::TweakForPPPOA();
  });
}
bool BroadbandPerformanceTweak::TweakForPPPOE() {
  return Forward(impl_, false, [](BroadbandPerformanceTweak_impl&) {
    return BroadbandPerformanceTweak_impl::TweakForPPPOE();
  });
}
bool BroadbandPerformanceTweak::TweakForPureEthernet() {
  return Forward(impl_, false, [](BroadbandPerformanceTweak_impl&) {
    return BroadbandPerformanceTweak_impl::TweakForPureEthernet();
  });
}

bool BroadbandPerformanceTweak_impl::TweakForPureEthernet() {
  OS os;
  // Windows XP tunes itself well enough; it is deliberately left alone.
  if (os.IsWinXP()) {
    return true;
  }
  RegWiz registry;
  constexpr const char* kInternetSettings =
      "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";
  registry.SetDwordKeyVal(HKEY_CURRENT_USER, kInternetSettings, "MaxConnectionsPer1_0Server", 4);
  registry.SetDwordKeyVal(HKEY_CURRENT_USER, kInternetSettings, "MaxConnectionsPerServer", 8);
  if (os.IsWin9x()) {
    tweaks::TuneWin9x(registry, os, tweaks::kBuiltInDefault, tweaks::kBuiltInDefault);
  } else if (os.IsWin2000()) {
    tweaks::TuneWin2000(registry, tweaks::kBuiltInDefault, tweaks::kBuiltInDefault);
  } else if (os.IsWinNT()) {
    tweaks::TuneNT4(registry, tweaks::kBuiltInDefault, tweaks::kBuiltInDefault);
  }
  return true;
}

}  // namespace Hostkit
