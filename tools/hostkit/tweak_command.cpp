// hostkit tweak / hostkit lan: the broadband tuning and the LAN switch on the loaded machine.
#include <ostream>
#include <string>

#include "commands.h"
#include "hostkit/broadband_tweak.h"
#include "hostkit/lan_switch.h"

namespace hostkit_tool {

int RunTweakBroadband(std::ostream& out, std::ostream& err) {
  return Done(Hostkit::BroadbandPerformanceTweak().TweakForPureEthernet(), "tweak broadband", out,
              err);
}

int RunLan(const std::string& action, std::ostream& out, std::ostream& err) {
  if (action == "status") {
    out << "LAN: " << (Hostkit::IsLANEnabled() ? "enabled" : "disabled (autodial on)") << "\n";
    return 0;
  }
  return Done(Hostkit::EnableLAN(action == "on"), "lan " + action, out, err);
}

}  // namespace hostkit_tool
