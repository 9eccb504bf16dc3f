// hostkit live, dns, release and renew: the TCP/IP state in use now, and DHCP leases given up or
// renewed, through the library's LiveTcpipInfo and DhcpReleaseRenew.
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <functional>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "commands.h"
#include "common/host_thread.h"
#include "hostkit/dhcp_release_renew.h"
#include "hostkit/live_tcpip.h"

namespace hostkit_tool {

namespace {

using Hostkit::DhcpReleaseRenew;
using Hostkit::LiveTcpipInfo;
using LiveAdapter = LiveTcpipInfo::AdapterInfo;

// The library's fixed waits, for the progress line.
constexpr double kReleaseSeconds = 1.0;
constexpr double kRenewSeconds = 3.7;

void PrintTable(std::vector<LiveAdapter>& adapters, std::ostream& out) {
  for (size_t i = 0; i < adapters.size(); ++i) {
    LiveAdapter& a = adapters[i];
    out << "[" << i << "] " << Narrow(a.Description()) << "\n";
    if (!a.ServiceName().empty()) {
      out << "    name     " << Narrow(a.ServiceName()) << "\n";
    }
    out << "    hardware " << a.HardwareAddress()
        << (a.IsEthernetAdapter() ? "  Ethernet" : "  PPP") << "\n";
    out << "    address  " << a.IpAddrress() << " mask " << a.SubnetMask();
    if (!a.DefaultGateway().empty()) {
      out << " gateway " << a.DefaultGateway();
    }
    out << "\n    DHCP     " << (a.IsDhcp() ? "on" : "off");
    if (!a.DhcpServer().empty()) {
      out << "  server " << a.DhcpServer();
    }
    out << "\n";
  }
  if (adapters.empty()) {
    out << "no adapters in use\n";
  }
}

void PrintJson(std::vector<LiveAdapter>& adapters, std::ostream& out) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (LiveAdapter& a : adapters) {
    list.push_back({{"description", Narrow(a.Description())},
                    {"serviceName", Narrow(a.ServiceName())},
                    {"ipAddress", a.IpAddrress()},
                    {"subnetMask", a.SubnetMask()},
                    {"defaultGateway", a.DefaultGateway()},
                    {"hardwareAddress", a.HardwareAddress()},
                    {"dhcpServer", a.DhcpServer()},
                    {"dhcp", a.IsDhcp()},
                    {"ethernet", a.IsEthernetAdapter()}});
  }
  out << list.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << "\n";
}

// The hardware address an argument names: a number of `hostkit live`, or the address itself
// (in the lower-case form the library reports).
bool ResolveAdapter(const std::string& argument, std::string& address, std::ostream& err) {
  std::vector<LiveAdapter> adapters;
  LiveTcpipInfo().GetAdapterInfo(adapters);
  if (!argument.empty() && argument.find_first_not_of("0123456789") == std::string::npos) {
    const size_t index = std::stoul(argument);
    if (index >= adapters.size()) {
      err << "hostkit: there is no adapter " << argument << " (see `hostkit live`)\n";
      return false;
    }
    address = adapters[index].HardwareAddress();
    return true;
  }
  address = argument;
  for (char& c : address) {
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return true;
}

// Runs `operation`; on a terminal a line tells what is happening and about how long is left of
// the library's fixed waits (on a simulated machine they pass in no real time).
bool WithProgress(const std::string& what, double seconds, const std::function<bool()>& operation,
                  std::ostream& out) {
  if (isatty(STDOUT_FILENO) == 0) {
    return operation();
  }
  bool result = false;
  hostkit_common::HostThread worker([&] { result = operation(); });
  if (!worker.Started()) {
    return operation();
  }
  const auto start = std::chrono::steady_clock::now();
  while (!worker.WaitFor(100)) {
    const double elapsed =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    char line[160];
    std::snprintf(line, sizeof line, "\r%s: about %.1f s left   ", what.c_str(),
                  seconds > elapsed ? seconds - elapsed : 0.0);
    out << line << std::flush;
  }
  out << "\r" << std::string(what.size() + 24, ' ') << "\r";
  return result;
}

}  // namespace

int RunLive(bool json, std::ostream& out, std::ostream& err) {
  std::vector<LiveAdapter> adapters;
  if (!LiveTcpipInfo().GetAdapterInfo(adapters)) {
    err << "hostkit: neither IP Helper nor the SNMP agent answered\n";
    return 1;
  }
  if (json) {
    PrintJson(adapters, out);
  } else {
    PrintTable(adapters, out);
  }
  return 0;
}

int RunDns(std::ostream& out, std::ostream& /*err*/) {
  LiveTcpipInfo live;
  std::vector<std::string> servers;
  const bool serversKnown = live.GetDnsServers(servers);
  out << "servers      ";
  if (!serversKnown || servers.empty()) {
    out << "-";
  }
  for (size_t i = 0; i < servers.size(); ++i) {
    out << (i > 0 ? ", " : "") << servers[i];
  }
  Hostkit::wstring domain;
  out << "\ndomain       "
      << (live.GetDomainName(domain) && !domain.empty() ? Narrow(domain) : "-");
  std::vector<Hostkit::wstring> searchList;
  live.GetDomainSearchList(searchList);
  out << "\nsearch list  ";
  if (searchList.empty()) {
    out << "-";
  }
  for (size_t i = 0; i < searchList.size(); ++i) {
    out << (i > 0 ? ", " : "") << Narrow(searchList[i]);
  }
  out << "\n";
  return 0;
}

int RunDhcp(bool renew, const std::string& adapter, bool all, std::ostream& out,
            std::ostream& err) {
  DhcpReleaseRenew dhcp;
  const char* verb = renew ? "renew" : "release";
  if (all) {
    const bool ok = WithProgress(
        renew ? "renewing every DHCP lease" : "releasing every DHCP lease",
        renew ? kRenewSeconds : kReleaseSeconds,
        [&] { return renew ? dhcp.RenewAll() : dhcp.ReleaseAll(); }, out);
    return Done(ok, std::string(verb) + " every DHCP lease", out, err);
  }
  std::string address;
  if (!ResolveAdapter(adapter, address, err)) {
    return 1;
  }
  const bool ok = WithProgress(
      std::string(renew ? "renewing the lease of " : "releasing the lease of ") + address,
      renew ? kRenewSeconds : kReleaseSeconds,
      [&] { return renew ? dhcp.Renew(address) : dhcp.Release(address); }, out);
  return Done(ok, std::string(verb) + " the lease of " + address, out, err);
}

}  // namespace hostkit_tool
