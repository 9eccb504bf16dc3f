// hostkit setup-broadband: the typical request of a set-up program after a broadband modem was
// connected. Backs up the keys it changes, switches the one network card to DHCP, renews its
// lease, optionally sets the browser's proxy and home page, and reports before and after.
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "command_line.h"
#include "commands.h"
#include "hostkit/configure_ie.h"
#include "hostkit/dhcp_release_renew.h"
#include "hostkit/live_tcpip.h"
#include "hostkit/os.h"
#include "hostkit/registry_backup.h"
#include "hostkit/static_tcpip.h"

namespace hostkit_tool {

namespace {

using Hostkit::StaticTcpipInfo;
using Adapter = StaticTcpipInfo::AdapterInfo;

struct BroadbandArgs {
  std::string backup;
  std::string proxyHost;
  int proxyPort = 0;
  std::string homePage;
};

// The stored and live settings of the adapter with this hardware address.
nlohmann::ordered_json State(const std::string& cookie, const std::string& hardwareAddress) {
  nlohmann::ordered_json state = nlohmann::ordered_json::object();
  std::vector<Adapter> adapters;
  StaticTcpipInfo().GetAdapterInfo(adapters);
  for (Adapter& a : adapters) {
    if (Narrow(a.GetCookie().c_str()) == cookie) {
      state["storedDhcp"] = a.UsingDhcp();
      state["storedAddress"] = a.UsingDhcp() ? "" : a.StaticIpAddress();
    }
  }
  std::vector<Hostkit::LiveTcpipInfo::AdapterInfo> live;
  Hostkit::LiveTcpipInfo().GetAdapterInfo(live);
  for (auto& a : live) {
    if (HardwareAddressText(a.HardwareAddress()) == HardwareAddressText(hardwareAddress)) {
      state["liveDhcp"] = a.IsDhcp();
      state["liveAddress"] = a.IpAddrress();
      state["liveGateway"] = a.DefaultGateway();
    }
  }
  return state;
}

// The keys the command changes, for the backup: the TCP/IP settings of the family, and the
// browser's keys when it sets them.
std::vector<std::pair<HKEY, std::string>> KeysToChange(const BroadbandArgs& args) {
  std::vector<std::pair<HKEY, std::string>> keys;
  if (Hostkit::OS().IsWin9x()) {
    keys.emplace_back(HKEY_LOCAL_MACHINE, "System\\CurrentControlSet\\Services\\Class\\NetTrans");
  } else {
    keys.emplace_back(HKEY_LOCAL_MACHINE, "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters");
    keys.emplace_back(HKEY_LOCAL_MACHINE, "SYSTEM\\CurrentControlSet\\Services");
  }
  if (!args.proxyHost.empty()) {
    keys.emplace_back(HKEY_CURRENT_USER,
                      "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings");
  }
  if (!args.homePage.empty()) {
    keys.emplace_back(HKEY_CURRENT_USER, "Software\\Microsoft\\Internet Explorer\\Main");
  }
  return keys;
}

bool Backup(const BroadbandArgs& args, std::ostream& out, std::string& error) {
  Hostkit::RegistryBackup backup;
  for (const auto& [root, path] : KeysToChange(args)) {
    backup.AddRegistryKey(root, Wide(path).c_str());
  }
  if (!WriteHostFile(
          args.backup,
          [&](const Hostkit::wstring& file) { return backup.SaveRegistry(file.c_str()); }, error)) {
    return false;
  }
  out << "backed up the keys it changes to " << args.backup << "\n";
  return true;
}

void PrintState(const char* when, const nlohmann::ordered_json& state, std::ostream& out) {
  const auto text = [&](const char* key) {
    return state.contains(key) ? state[key].get<std::string>() : std::string("-");
  };
  const auto flag = [&](const char* key) {
    return state.contains(key) && state[key].get<bool>() ? "DHCP" : "static";
  };
  out << when << ": stored " << flag("storedDhcp")
      << (text("storedAddress").empty() ? "" : " " + text("storedAddress")) << ", live "
      << flag("liveDhcp") << " " << text("liveAddress") << "\n";
}

int RunSetupBroadband(const BroadbandArgs& args, std::ostream& out, std::ostream& err) {
  StaticTcpipInfo info;
  std::vector<Adapter> adapters;
  if (!info.GetAdapterInfo(adapters)) {
    return Fail("setup-broadband failed: the machine's Windows release is not known", err);
  }
  const int primary = info.GetPrimaryNicIndex(adapters);
  if (primary < 0) {
    return Fail("setup-broadband changed nothing: " + std::to_string(info.NumNICs(&adapters)) +
                    " network cards are present and " +
                    std::to_string(info.NumTcpipBoundAndEnabledNICs(&adapters)) +
                    " of them are bound to TCP/IP and enabled; it needs exactly one (see "
                    "`hostkit summary`)",
                err);
  }
  Adapter& card = adapters[static_cast<size_t>(primary)];
  const std::string cookie = Narrow(card.GetCookie().c_str());
  const std::string address = card.HardwareAddress();
  const nlohmann::ordered_json before = State(cookie, address);
  out << "adapter: [" << primary << "] " << Narrow(card.Name()) << " ("
      << HardwareAddressText(address) << ")\n";
  std::string error;
  if (!args.backup.empty() && !Backup(args, out, error)) {
    return Fail("setup-broadband changed nothing: the backup failed: " + error, err);
  }
  const bool wasStatic = !card.UsingDhcp();
  if (!info.EnableDHCP(card.GetCookie(), true)) {
    return Fail("setup-broadband failed: the adapter's TCP/IP keys could not be written", err);
  }
  bool renewed = false;
  if (!wasStatic && !address.empty()) {
    renewed = Hostkit::DhcpReleaseRenew().Renew(address);
  }
  Hostkit::ConfigureIE ie;
  if (!args.proxyHost.empty() && !ie.UseProxyServer(Wide(args.proxyHost), args.proxyPort)) {
    return Fail("setup-broadband failed: the proxy could not be set (Internet Settings missing)",
                err);
  }
  if (!args.homePage.empty() && !ie.SetHomePage(Wide(args.homePage))) {
    return Fail("setup-broadband failed: the home page could not be set", err);
  }
  const nlohmann::ordered_json after = State(cookie, address);
  PrintState("before", before, out);
  PrintState("after", after, out);
  if (wasStatic) {
    out << "restart needed: the adapter had a static address; Windows takes the DHCP setting "
           "only when it starts again, so restart the computer to finish\n";
    return kDone;
  }
  if (address.empty()) {
    out << "renewal not checked: this release's stored record has no hardware address for the "
           "adapter; run `hostkit renew --all` to renew its lease\n";
    return kDone;
  }
  if (!renewed) {
    return Fail(
        "setup-broadband: the adapter is set to DHCP, but no usable address arrived "
        "from a DHCP server (is the modem connected and on?)",
        err);
  }
  out << "setup-broadband: done\n";
  return kDone;
}

}  // namespace

void AddSetupBroadbandCommand(CLI::App& app, CommandTable& run, std::ostream& out,
                              std::ostream& err) {
  auto args = std::make_shared<BroadbandArgs>();
  CLI::App* command = AddCommand(
      app, "setup-broadband",
      "switch the one network card to DHCP, renew its lease, optionally set the browser",
      "hostkit setup-broadband --backup before-broadband.reg --home-page http://www.example.com/");
  command->add_option("--backup", args->backup, "save the keys it changes to this .reg first");
  CLI::Option* host = command->add_option("--proxy", args->proxyHost, "the browser's proxy host");
  command->add_option("--proxy-port", args->proxyPort, "the proxy's port, 1 to 65535")
      ->check(CLI::Range(1, 65535))
      ->needs(host);
  host->needs("--proxy-port");
  command->add_option("--home-page", args->homePage, "the browser's home page");
  run[command] = [args, &out, &err] { return RunSetupBroadband(*args, out, err); };
}

}  // namespace hostkit_tool
