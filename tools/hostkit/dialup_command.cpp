// hostkit dialup: the dial-up components and automatic dialling on the loaded machine, through
// the library's DialUp.
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "command_line.h"
#include "commands.h"
#include "hostkit/dialup.h"
#include "hostkit/os.h"

namespace hostkit_tool {

int RunDialupStatus(std::ostream& out, std::ostream& /*err*/) {
  Hostkit::DialUp dialup;
  Report report;
  report.Add("dun13Installed", "Dial-Up Networking 1.3", dialup.IsMsDun13Installed());
  report.Add("vpnInstalled", "VPN adapter", dialup.IsMicrosoftVpnInstalled());
  report.Add("dialupAdapters", "dial-up adapters", dialup.NumMicrosoftDialupAdapters());
  report.Print(out);
  return kDone;
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
  return Done(ok, "dialup install",
              Hostkit::OS().IsWin9x() ? "the installer did not leave the components in place"
                                      : "only Windows 95, 98 and Me install these components",
              out, err);
}

int RunDialupAutodial(const std::string& entry, std::ostream& out, std::ostream& err) {
  return Done(Hostkit::DialUp().EnableDialUp(Wide(entry)),
              entry.empty() ? "dialup autodial" : "dialup autodial " + entry,
              "the RemoteAccess keys of the current user are missing", out, err);
}

void AddDialupCommands(CLI::App& app, CommandTable& run, std::ostream& out, std::ostream& err) {
  struct Args {
    int adapters = 1;
    bool vpn = false;
    std::string entry;
  };
  auto args = std::make_shared<Args>();
  CLI::App* dialup = app.add_subcommand("dialup", "Windows 9x dial-up components, autodial");
  dialup->require_subcommand(1);
  run[AddCommand(*dialup, "status", "components and dial-up adapters", "hostkit dialup status")] =
      [&] { return RunDialupStatus(out, err); };
  CLI::App* install =
      AddCommand(*dialup, "install", "install dial-up adapters (and the VPN component)",
                 "hostkit dialup install --adapters 1");
  install->add_option("--adapters", args->adapters, "dial-up adapters wanted, 1 to 9 (default 1)")
      ->check(CLI::Range(1, 9));
  install->add_flag("--vpn", args->vpn, "install the VPN component as well");
  run[install] = [args, &out, &err] {
    return RunDialupInstall(args->adapters, args->vpn, out, err);
  };
  CLI::App* autodial =
      AddCommand(*dialup, "autodial", "switch automatic dialling on for a phonebook entry",
                 "hostkit dialup autodial \"My ISP\"");
  autodial->add_option("ENTRY", args->entry, "the phonebook entry to dial");
  run[autodial] = [args, &out, &err] { return RunDialupAutodial(args->entry, out, err); };
}

}  // namespace hostkit_tool
