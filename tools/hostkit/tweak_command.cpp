// hostkit tweak / lan / sharing / cabs: the broadband tuning, the LAN switch, file and print
// sharing and the set-up source folder on the loaded machine.
#include <memory>
#include <ostream>
#include <string>

#include "command_line.h"
#include "commands.h"
#include "hostkit/broadband_tweak.h"
#include "hostkit/lan_switch.h"

namespace hostkit_tool {

int RunTweakBroadband(std::ostream& out, std::ostream& err) {
  return Done(Hostkit::BroadbandPerformanceTweak().TweakForPureEthernet(), "tweak broadband",
              "the TCP/IP parameter keys it tunes are missing", out, err);
}

int RunLan(const std::string& action, std::ostream& out, std::ostream& err) {
  if (action == "status") {
    Report report;
    report.Add("lanEnabled", "LAN enabled", Hostkit::IsLANEnabled());
    report.Add("autodial", "autodial", !Hostkit::IsLANEnabled());
    report.Print(out);
    return kDone;
  }
  return Done(Hostkit::EnableLAN(action == "on"), "lan " + action,
              "none of the Internet Settings keys that hold EnableAutodial exists", out, err);
}

void AddTweakCommands(CLI::App& app, CommandTable& run, std::ostream& out, std::ostream& err) {
  struct Args {
    std::string lan;
    std::string cabsFolder;
  };
  auto args = std::make_shared<Args>();
  CLI::App* tweak = app.add_subcommand("tweak", "TCP/IP tuning");
  tweak->require_subcommand(1);
  run[AddCommand(*tweak, "broadband", "tune TCP/IP and the browser for broadband Ethernet",
                 "hostkit tweak broadband")] = [&] { return RunTweakBroadband(out, err); };
  CLI::App* lan =
      AddCommand(app, "lan", "the LAN switch (automatic dialling off or on)", "hostkit lan status");
  lan->add_option("ACTION", args->lan, "on, off or status")
      ->required()
      ->check(CLI::IsMember({"on", "off", "status"}));
  run[lan] = [args, &out, &err] { return RunLan(args->lan, out, err); };
  CLI::App* sharing = app.add_subcommand("sharing", "Windows 9x file and print sharing");
  sharing->require_subcommand(1);
  run[AddCommand(*sharing, "status", "whether each half is on", "hostkit sharing status")] = [&] {
    return RunSharingStatus(out, err);
  };
  run[AddCommand(*sharing, "off", "switch file and print sharing off (Windows 9x)",
                 "hostkit sharing off")] = [&] { return RunSharingOff(out, err); };
  CLI::App* cabs = app.add_subcommand("cabs", "the Windows 9x set-up source folder");
  cabs->require_subcommand(1);
  CLI::App* set = AddCommand(*cabs, "set", "point Windows set-up at FOLDER (Windows 9x)",
                             "hostkit cabs set \"C:\\WINDOWS\\OPTIONS\\CABS\"");
  set->add_option("FOLDER", args->cabsFolder, "e.g. C:\\WINDOWS\\OPTIONS\\CABS")->required();
  run[set] = [args, &out, &err] { return RunCabsSet(args->cabsFolder, out, err); };
  run[AddCommand(*cabs, "restore", "put back the previous folder (Windows 9x)",
                 "hostkit cabs restore")] = [&] { return RunCabsRestore(out, err); };
}

}  // namespace hostkit_tool
