// hostkit adapter, hostname and summary: changing the stored TCP/IP settings of one adapter and
// of the machine through the library's StaticTcpipInfo, and its summary counts.
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "command_line.h"
#include "commands.h"
#include "hostkit/patterns.h"
#include "hostkit/static_tcpip.h"

namespace hostkit_tool {

namespace {

using Hostkit::StaticTcpipInfo;
using Adapter = StaticTcpipInfo::AdapterInfo;

// The adapter named by its cookie, or by its number in `hostkit adapters`.
bool FindAdapter(const std::string& name, Adapter& found, std::ostream& err) {
  std::vector<Adapter> adapters;
  StaticTcpipInfo().GetAdapterInfo(adapters);
  for (Adapter& adapter : adapters) {
    if (Narrow(adapter.GetCookie().c_str()) == name) {
      found = adapter;
      return true;
    }
  }
  if (!name.empty() && name.size() < 9 &&
      name.find_first_not_of("0123456789") == std::string::npos &&
      std::stoul(name) < adapters.size()) {
    found = adapters[std::stoul(name)];
    return true;
  }
  err << "hostkit: no adapter has the cookie or number \"" << name
      << "\" (see `hostkit adapters`)\n";
  return false;
}

std::string Join(const std::vector<std::string>& items) {
  std::string joined;
  for (const std::string& item : items) {
    joined += (joined.empty() ? "" : ", ") + item;
  }
  return joined;
}

// Why a change of an adapter's stored settings fails: the library writes only keys that exist.
const char* const kAdapterKeys =
    "the library could not write the adapter's TCP/IP keys (it never creates a missing key)";

bool SetStatic(StaticTcpipInfo& info, const StaticTcpipInfo::Cookie& cookie,
               const std::vector<std::string>& args) {
  return info.EnableDHCP(cookie, false) && info.SetStaticIpAddress(cookie, args[0].c_str()) &&
         info.SetStaticSubnetMask(cookie, args[1].c_str()) &&
         info.SetStaticDefaultGateway(cookie, args.size() > 2 ? args[2].c_str() : "");
}

// WINS servers switch WINS on; "off" (or no servers) switches it off.
bool SetWins(StaticTcpipInfo& info, const StaticTcpipInfo::Cookie& cookie,
             const std::vector<std::string>& servers) {
  if (!info.SetWinsState(cookie, StaticTcpipInfo::WINS_DISABLED)) {
    return false;
  }
  if (servers.empty()) {
    return true;
  }
  if (!info.SetStaticWinsServers(cookie, servers)) {
    return false;
  }
  info.SetWinsState(cookie, StaticTcpipInfo::WINS_ENABLED);  // NT 4 refuses: servers suffice there
  return true;
}

}  // namespace

int RunAdapterChange(const std::string& adapter, const std::string& action,
                     const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  Adapter found;
  if (!FindAdapter(adapter, found, err)) {
    return kFailed;
  }
  const StaticTcpipInfo::Cookie cookie = found.GetCookie();
  const std::string on = " on [" + adapter + "] " + Narrow(found.Name());
  StaticTcpipInfo info;
  if (action == "dhcp") {
    return Done(info.EnableDHCP(cookie, true), "DHCP" + on, kAdapterKeys, out, err);
  }
  if (action == "static") {
    return Done(SetStatic(info, cookie, args), "static address " + args[0] + on, kAdapterKeys, out,
                err);
  }
  if (action == "dns") {
    return Done(
        info.SetStaticNameServers(cookie, args) && info.MakeDnsStatic(cookie, !args.empty()),
        (args.empty() ? "DNS servers cleared" : "DNS servers " + Join(args)) + on, kAdapterKeys,
        out, err);
  }
  if (action == "domain") {
    return Done(info.SetDomainName(cookie, args[0].c_str()), "domain " + args[0] + on, kAdapterKeys,
                out, err);
  }
  std::vector<std::string> servers = args;
  if (servers.size() == 1 && servers[0] == "off") {
    servers.clear();
  }
  return Done(SetWins(info, cookie, servers),
              (servers.empty() ? "WINS off" : "WINS servers " + Join(servers)) + on, kAdapterKeys,
              out, err);
}

void AddAdapterCommands(CLI::App& app, CommandTable& run, std::ostream& out, std::ostream& err) {
  struct Args {
    std::string adapter;
    std::vector<std::string> values;
  };
  auto args = std::make_shared<Args>();
  CLI::App* adapter = app.add_subcommand("adapter", "change one adapter's stored TCP/IP settings");
  adapter->add_option("ADAPTER", args->adapter, "cookie or number from `hostkit adapters`")
      ->required();
  adapter->require_subcommand(1);
  const auto action = [&](const std::string& name, const std::string& description,
                          const std::string& example) {
    CLI::App* command = AddCommand(*adapter, name, description, "hostkit adapter 0 " + example);
    run[command] = [args, name, &out, &err] {
      return RunAdapterChange(args->adapter, name, args->values, out, err);
    };
    return command;
  };
  action("dhcp", "take the address from DHCP", "dhcp");
  CLI::App* fixed = action("static", "a static address: IP MASK [GATEWAY]",
                           "static 192.168.1.50 255.255.255.0 192.168.1.1");
  fixed->add_option("IP MASK GATEWAY", args->values, "the address, mask and optional gateway")
      ->expected(2, 3)
      ->required()
      ->check(CLI::ValidIPV4);
  action("dns", "static DNS servers (none: clear them)", "dns 192.168.1.1 10.0.0.1")
      ->add_option("SERVER", args->values, "DNS server addresses")
      ->check(CLI::ValidIPV4);
  action("domain", "the DNS domain", "domain home.example")
      ->add_option("NAME", args->values, "a valid domain name")
      ->expected(1)
      ->required()
      ->check(CLI::Validator(
          [](std::string& name) {
            return Hostkit::IsValidDomainName(name.c_str())
                       ? std::string()
                       : "\"" + name + "\" is not a valid domain name";
          },
          "DOMAIN"));
  action("wins", "WINS servers, or off", "wins off")
      ->add_option("SERVER", args->values, "WINS server addresses, or off")
      ->required()
      ->check(CLI::ValidIPV4 | CLI::IsMember({"off"}));
}

int RunHostName(const std::string& name, std::ostream& out, std::ostream& err) {
  StaticTcpipInfo info;
  if (name.empty()) {
    std::string current;
    if (!info.GetStaticHostName(current)) {
      return Fail("the host name cannot be read: the machine's TCP/IP parameters have none", err);
    }
    Report report;
    report.Add("hostName", "host name", FromAnsi(current));
    report.Print(out);
    return kDone;
  }
  std::string ansi;
  if (!ToAnsi(name, ansi)) {
    return UsageError("\"" + name + "\" has no form in the machine's code page", err);
  }
  return Done(info.SetStaticHostName(ansi.c_str()), "host name " + name,
              "the machine's TCP/IP parameter keys are missing", out, err);
}

int RunSummary(std::ostream& out, std::ostream& err) {
  StaticTcpipInfo info;
  std::vector<Adapter> adapters;
  if (!info.GetAdapterInfo(adapters)) {
    return Fail("the machine's Windows release is not known", err);
  }
  const int primary = info.GetPrimaryNicIndex(adapters);
  Report report;
  report.Add("adapters", "adapters", adapters.size());
  report.Add("networkCards", "network cards", info.NumNICs(&adapters));
  report.Add("boundToTcpip", "bound to TCP/IP", info.NumTcpipBoundNICs(&adapters));
  report.Add("boundAndEnabled", "bound and enabled", info.NumTcpipBoundAndEnabledNICs(&adapters));
  report.Add("nonFunctionalPresent", "non-functional present",
             info.IsNonFunctionalNicPresent(&adapters));
  report.Add("primaryAdapter", "primary adapter",
             primary < 0 ? nlohmann::ordered_json() : nlohmann::ordered_json(primary));
  report.Add("primaryAdapterName", "primary adapter name",
             primary < 0
                 ? nlohmann::ordered_json()
                 : nlohmann::ordered_json(Narrow(adapters[static_cast<size_t>(primary)].Name())));
  report.Add("tcpipInstalled", "TCP/IP installed", info.IsTcpipInstalled());
  report.Add("dialupAdapters", "dial-up adapters", info.NumMicrosoftDialupAdapters());
  report.Add("vpnInstalled", "VPN installed", info.IsMicrosoftVpnInstalled());
  report.Print(out);
  return kDone;
}

}  // namespace hostkit_tool
