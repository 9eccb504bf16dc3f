// hostkit dialup: the dial-up components and automatic dialling on the loaded machine, through
// the library's DialUp.
#include <ostream>
#include <string>
#include <vector>

#include "commands.h"
#include "hostkit/dialup.h"

namespace hostkit_tool {

int RunDialupStatus(std::ostream& out, std::ostream& /*err*/) {
  Hostkit::DialUp dialup;
  out << "Dial-Up Networking 1.3: " << (dialup.IsMsDun13Installed() ? "yes" : "no") << "\n"
      << "VPN adapter:            " << (dialup.IsMicrosoftVpnInstalled() ? "yes" : "no") << "\n"
      << "dial-up adapters:       " << dialup.NumMicrosoftDialupAdapters() << "\n";
  return 0;
}

int RunDialupInstall(int adapters, bool vpn, std::ostream& out, std::ostream& err) {
  std::vector<std::string> before;
  RecordedPrograms(before);
  Hostkit::DialUp dialup;
  bool ok = dialup.InstallDialUpAdapters(adapters);
  if (ok && vpn) {
    ok = dialup.InstallVpn();
  }
  std::vector<std::string> after;
  if (RecordedPrograms(after)) {
    out << (after.size() > before.size() ? "started (recorded by the simulated machine, not run):\n"
                                         : "nothing started\n");
    for (std::size_t i = before.size(); i < after.size(); ++i) {
      out << "  " << after[i] << "\n";
    }
  }
  return Done(ok, "dialup install", out, err);
}

int RunDialupAutodial(const std::string& entry, std::ostream& out, std::ostream& err) {
  return Done(Hostkit::DialUp().EnableDialUp(Wide(entry)),
              entry.empty() ? "dialup autodial" : "dialup autodial " + entry, out, err);
}

}  // namespace hostkit_tool
