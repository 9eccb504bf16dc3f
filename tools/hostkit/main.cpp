// hostkit: runs the library's queries and changes on a machine and prints what they answer.
#include <CLI/CLI.hpp>
#include <exception>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "command_line.h"
#include "commands.h"
#include "hostkit/strings.h"

namespace {

using hostkit_tool::AddCommand;

int Run(int argc, char** argv) {
  CLI::App app{"hostkit: asks the Hostkit3 library about a Windows machine and changes it"};
  app.fallthrough();  // the global options may also follow the command
  app.set_version_flag("--version", Hostkit::GetVersion());
  hostkit_tool::GlobalOptions global;
  app.add_option("--machine", global.machine,
                 "machine profile (JSON) to run on instead of the built-in Windows XP home PC");
  app.add_option("--save", global.save,
                 "after a successful command, save the machine as this profile (FILE.json) or "
                 "into this folder, with its registry and a copy of its drives");
  app.add_flag("--force", global.force, "let --save overwrite the loaded profile");
  app.add_flag("--json", global.json, "reading commands print one JSON document");
  app.require_subcommand(1);
  // What each command runs once the machine is loaded.
  std::map<CLI::App*, std::function<int()>> run;
  std::ostream& out = std::cout;
  std::ostream& err = std::cerr;

  CLI::App* os =
      AddCommand(app, "os", "release, version, language and administrator facts", "hostkit os");
  run[os] = [&] { return hostkit_tool::RunOs(out, err); };
  CLI::App* hardware = AddCommand(app, "hardware", "processors, speed, vendor, memory and drives",
                                  "hostkit hardware");
  run[hardware] = [&] { return hostkit_tool::RunHardware(out, err); };

  CLI::App* adapters = AddCommand(
      app, "adapters", "stored TCP/IP settings of every network adapter", "hostkit adapters");
  run[adapters] = [&] { return hostkit_tool::RunAdapters(out, err); };
  hostkit_tool::AddAdapterCommands(app, run, out, err);
  CLI::App* hostname =
      AddCommand(app, "hostname", "print or set the TCP/IP host name", "hostkit hostname HOMEPC");
  std::string hostName;
  hostname->add_option("NAME", hostName, "the new host name")
      ->check(hostkit_tool::HostNameValidator());
  run[hostname] = [&] { return hostkit_tool::RunHostName(hostName, out, err); };
  CLI::App* summary = AddCommand(
      app, "summary", "adapter counts, primary adapter, TCP/IP installation", "hostkit summary");
  run[summary] = [&] { return hostkit_tool::RunSummary(out, err); };

  CLI::App* live =
      AddCommand(app, "live", "TCP/IP state every adapter uses now", "hostkit live --json");
  run[live] = [&] { return hostkit_tool::RunLive(out, err); };
  CLI::App* dns =
      AddCommand(app, "dns", "DNS servers, domain and search list in use", "hostkit dns");
  bool dnsRaw = false;
  dns->add_flag("--raw", dnsRaw, "the library's server list as it is, empty entries included");
  run[dns] = [&] { return hostkit_tool::RunDns(dnsRaw, out, err); };
  std::string dhcpAdapter;
  bool dhcpAll = false;
  CLI::App* release =
      AddCommand(app, "release", "give up an adapter's DHCP lease", "hostkit release 0");
  CLI::App* renew =
      AddCommand(app, "renew", "renew an adapter's DHCP lease", "hostkit renew --all");
  for (CLI::App* command : {release, renew}) {
    CLI::Option* all = command->add_flag("--all", dhcpAll, "every adapter on DHCP");
    command
        ->add_option("ADAPTER", dhcpAdapter,
                     "hardware address (00-0C-76-3A-5E-21) or number from `hostkit live`")
        ->check(hostkit_tool::AdapterNumberOrHardwareAddress())
        ->excludes(all);
    command->require_option(1);
    run[command] = [&, command] {
      return hostkit_tool::RunDhcp(command == renew, dhcpAdapter, dhcpAll, out, err);
    };
  }

  CLI::App* reg = app.add_subcommand("reg", "registry commands");
  reg->require_subcommand(1);
  CLI::App* query =
      AddCommand(*reg, "query", "list a key's values and subkeys",
                 "hostkit reg query \"HKLM\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\"");
  std::string key;
  query->add_option("KEY", key, "the key, e.g. HKLM\\SOFTWARE\\Microsoft")
      ->required()
      ->check(hostkit_tool::KeyNameValidator());
  run[query] = [&] { return hostkit_tool::RunRegQuery(key, out, err); };
  CLI::App* backup = AddCommand(app, "backup", "save registry keys to a .reg file",
                                "hostkit backup \"HKCU\\Software\\Microsoft\" -o backup.reg");
  std::vector<std::string> backupKeys;
  std::string backupFile;
  backup->add_option("KEY", backupKeys, "keys to save, e.g. HKCU\\Software\\Vendor")
      ->required()
      ->check(hostkit_tool::KeyNameValidator());
  backup->add_option("-o,--output", backupFile, "the .reg file to write")->required();
  run[backup] = [&] { return hostkit_tool::RunBackup(backupKeys, backupFile, out, err); };

  hostkit_tool::AddBrowserCommands(app, run, out, err);
  hostkit_tool::AddMailCommands(app, run, out, err);
  hostkit_tool::AddTweakCommands(app, run, out, err);
  hostkit_tool::AddWindowCommands(app, run, out, err);
  hostkit_tool::AddDialupCommands(app, run, out, err);
  hostkit_tool::AddDevicesCommands(app, run, out, err);
  hostkit_tool::AddRasCommands(app, run, out, err);
  hostkit_tool::AddSetupBroadbandCommand(app, run, out, err);
  hostkit_tool::AddMachineCommands(app, run, out, err);

  if (!hostkit_tool::CheckArgumentsAreUtf8(argc, argv, err)) {
    return hostkit_tool::kUsage;
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return hostkit_tool::ReportParseError(app, e, out, err);
  }
  hostkit_tool::SetJsonOutput(global.json);
  std::string error;
  if (!hostkit_tool::UseMachine(global.machine, error)) {
    return hostkit_tool::Fail(error, err);
  }
  for (const auto& [command, action] : run) {
    if (command->parsed()) {
      return hostkit_tool::RunChange(global, action, err);
    }
  }
  return hostkit_tool::kUsage;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& e) {
    std::cerr << "hostkit: " << e.what() << "\n";
  } catch (...) {
    std::cerr << "hostkit: unexpected failure\n";
  }
  return hostkit_tool::kFailed;
}
