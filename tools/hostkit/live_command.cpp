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
    out << "    hardware " << HardwareAddressText(a.HardwareAddress())
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

void PrintJsonList(std::vector<LiveAdapter>& adapters, std::ostream& out) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (LiveAdapter& a : adapters) {
    list.push_back({{"description", Narrow(a.Description())},
                    {"serviceName", Narrow(a.ServiceName())},
                    {"ipAddress", a.IpAddrress()},
                    {"subnetMask", a.SubnetMask()},
                    {"defaultGateway", a.DefaultGateway()},
                    {"hardwareAddress", HardwareAddressText(a.HardwareAddress())},
                    {"dhcpServer", a.DhcpServer()},
                    {"dhcp", a.IsDhcp()},
                    {"ethernet", a.IsEthernetAdapter()}});
  }
  PrintJson(list, out);
}

// The hardware address an argument names, as the library reports it: a number of `hostkit
// live`, or an address of one of its adapters written in either case with "-" or ":".
bool ResolveAdapter(const std::string& argument, std::string& address, std::ostream& err) {
  std::vector<LiveAdapter> adapters;
  LiveTcpipInfo().GetAdapterInfo(adapters);
  if (argument.find_first_not_of("0123456789") == std::string::npos) {
    const size_t index = std::stoul(argument);
    if (index >= adapters.size()) {
      err << "hostkit: there is no adapter " << argument << " (see `hostkit live`)\n";
      return false;
    }
    address = adapters[index].HardwareAddress();
    return true;
  }
  for (LiveAdapter& adapter : adapters) {
    if (HardwareAddressText(adapter.HardwareAddress()) == HardwareAddressText(argument)) {
      address = adapter.HardwareAddress();
      return true;
    }
  }
  err << "hostkit: no adapter in use has the hardware address " << HardwareAddressText(argument)
      << " (see `hostkit live`)\n";
  return false;
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

// The library judges a release or renewal by the live state it reads afterwards.
std::string DhcpReason(bool renew) {
  return renew ? "no usable address arrived from the DHCP server (see `hostkit live`)"
               : "the adapter still holds an address afterwards (see `hostkit live`)";
}

}  // namespace

int RunLive(std::ostream& out, std::ostream& err) {
  std::vector<LiveAdapter> adapters;
  if (!LiveTcpipInfo().GetAdapterInfo(adapters)) {
    return Fail("neither IP Helper nor the SNMP agent answered", err);
  }
  if (JsonOutput()) {
    PrintJsonList(adapters, out);
  } else {
    PrintTable(adapters, out);
  }
  return kDone;
}

int RunDns(bool raw, std::ostream& out, std::ostream& /*err*/) {
  LiveTcpipInfo live;
  std::vector<std::string> servers;
  live.GetDnsServers(servers);
  nlohmann::ordered_json serverList = nlohmann::ordered_json::array();
  for (const std::string& server : servers) {
    if (raw || !server.empty()) {
      serverList.push_back(FromAnsi(server));
    }
  }
  Hostkit::wstring domain;
  live.GetDomainName(domain);
  std::vector<Hostkit::wstring> searchList;
  live.GetDomainSearchList(searchList);
  nlohmann::ordered_json search = nlohmann::ordered_json::array();
  for (const Hostkit::wstring& entry : searchList) {
    if (raw || !entry.empty()) {
      search.push_back(Narrow(entry));
    }
  }
  Report report;
  report.Add("servers", "servers", serverList);
  report.Add("domain", "domain",
             domain.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(Narrow(domain)));
  report.Add("searchList", "search list", search);
  report.Print(out);
  return kDone;
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
    return Done(ok, std::string(verb) + " every DHCP lease", DhcpReason(renew), out, err);
  }
  std::string address;
  if (!ResolveAdapter(adapter, address, err)) {
    return 1;
  }
  const bool ok = WithProgress(
      std::string(renew ? "renewing the lease of " : "releasing the lease of ") + address,
      renew ? kRenewSeconds : kReleaseSeconds,
      [&] { return renew ? dhcp.Renew(address) : dhcp.Release(address); }, out);
  return Done(ok, std::string(verb) + " the lease of " + HardwareAddressText(address),
              DhcpReason(renew), out, err);
}

}  // namespace hostkit_tool
