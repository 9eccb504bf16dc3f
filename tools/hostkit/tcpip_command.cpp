// hostkit adapter, hostname and summary: changing the stored TCP/IP settings of one adapter and
// of the machine through the library's StaticTcpipInfo, and its summary counts.
#include <ostream>
#include <string>
#include <vector>

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
  if (!name.empty() && name.find_first_not_of("0123456789") == std::string::npos &&
      std::stoul(name) < adapters.size()) {
    found = adapters[std::stoul(name)];
    return true;
  }
  err << "hostkit: no adapter has the cookie or number \"" << name << "\"\n";
  return false;
}

bool CheckAddresses(const std::vector<std::string>& addresses, std::ostream& err) {
  for (const std::string& address : addresses) {
    if (!Hostkit::IsValidIPAddress(address.c_str())) {
      err << "hostkit: \"" << address << "\" is not an IP address\n";
      return false;
    }
  }
  return true;
}

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
    return 1;
  }
  const StaticTcpipInfo::Cookie cookie = found.GetCookie();
  const std::string what = action + " on " + Narrow(found.Name());
  StaticTcpipInfo info;
  if (action == "dhcp") {
    return Done(info.EnableDHCP(cookie, true), what, out, err);
  }
  if (action == "static") {
    if (args.size() < 2 || args.size() > 3) {
      err << "hostkit: static takes IP MASK [GATEWAY]\n";
      return 1;
    }
    return CheckAddresses(args, err) ? Done(SetStatic(info, cookie, args), what, out, err) : 1;
  }
  if (action == "dns") {
    if (!CheckAddresses(args, err)) {
      return 1;
    }
    return Done(
        info.SetStaticNameServers(cookie, args) && info.MakeDnsStatic(cookie, !args.empty()), what,
        out, err);
  }
  if (action == "domain") {
    if (args.size() != 1 || !Hostkit::IsValidDomainName(args[0].c_str())) {
      err << "hostkit: domain takes one valid domain name\n";
      return 1;
    }
    return Done(info.SetDomainName(cookie, args[0].c_str()), what, out, err);
  }
  std::vector<std::string> servers = args;
  if (servers.size() == 1 && servers[0] == "off") {
    servers.clear();
  }
  return CheckAddresses(servers, err) ? Done(SetWins(info, cookie, servers), what, out, err) : 1;
}

int RunHostName(const std::string& name, std::ostream& out, std::ostream& err) {
  StaticTcpipInfo info;
  if (name.empty()) {
    std::string current;
    if (!info.GetStaticHostName(current)) {
      err << "hostkit: the host name cannot be read\n";
      return 1;
    }
    out << current << "\n";
    return 0;
  }
  if (!Hostkit::IsValidHostName(name.c_str())) {
    err << "hostkit: \"" << name << "\" is not a valid host name\n";
    return 1;
  }
  return Done(info.SetStaticHostName(name.c_str()), "host name " + name, out, err);
}

int RunSummary(std::ostream& out, std::ostream& err) {
  StaticTcpipInfo info;
  std::vector<Adapter> adapters;
  if (!info.GetAdapterInfo(adapters)) {
    err << "hostkit: the machine's Windows release is not known\n";
    return 1;
  }
  const int primary = info.GetPrimaryNicIndex(adapters);
  out << "adapters:                 " << adapters.size() << "\n"
      << "network cards:            " << info.NumNICs(&adapters) << "\n"
      << "bound to TCP/IP:          " << info.NumTcpipBoundNICs(&adapters) << "\n"
      << "bound and enabled:        " << info.NumTcpipBoundAndEnabledNICs(&adapters) << "\n"
      << "non-functional present:   " << (info.IsNonFunctionalNicPresent(&adapters) ? "yes" : "no")
      << "\n"
      << "primary adapter:          "
      << (primary < 0 ? std::string("none")
                      : "[" + std::to_string(primary) + "] " +
                            Narrow(adapters[static_cast<size_t>(primary)].Name()))
      << "\n"
      << "TCP/IP installed:         " << (info.IsTcpipInstalled() ? "yes" : "no") << "\n"
      << "dial-up adapters:         " << info.NumMicrosoftDialupAdapters() << "\n"
      << "VPN installed:            " << (info.IsMicrosoftVpnInstalled() ? "yes" : "no") << "\n";
  return 0;
}

}  // namespace hostkit_tool
