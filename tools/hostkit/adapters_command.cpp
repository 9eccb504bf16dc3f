// hostkit adapters: the stored TCP/IP configuration of every network adapter, as the library's
// StaticTcpipInfo enumerates it.
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "commands.h"
#include "hostkit/static_tcpip.h"
#include "hostkit/strings.h"

namespace hostkit_tool {

namespace {

using Hostkit::StaticTcpipInfo;
using Adapter = StaticTcpipInfo::AdapterInfo;

std::string Join(const std::vector<std::string>& items, const char* separator) {
  std::string joined;
  for (const std::string& item : items) {
    joined += (joined.empty() ? "" : separator) + item;
  }
  return joined;
}

const char* WinsText(StaticTcpipInfo::WINS_STATE state) {
  switch (state) {
    case StaticTcpipInfo::WINS_DISABLED:
      return "off";
    case StaticTcpipInfo::WINS_USE_DHCP:
      return "from DHCP";
    case StaticTcpipInfo::WINS_ENABLED:
      return "on";
  }
  return "?";
}

std::string Flags(const Adapter& adapter) {
  std::vector<std::string> flags;
  flags.emplace_back(adapter.IsEthernetAdapter() ? "Ethernet" : "PPP");
  if (adapter.IsBoundToTcpip()) {
    flags.emplace_back("bound");
  } else if (adapter.IsIndirectlyOrDirectlyBoundToTcpip()) {
    flags.emplace_back("bound indirectly");
  } else {
    flags.emplace_back("not bound");
  }
  flags.emplace_back(adapter.IsAdapterEnabled() ? "enabled" : "disabled");
  flags.emplace_back(adapter.IsFunctional() ? "functional" : "not functional");
  return Join(flags, ", ");
}

std::string AddressText(Adapter& adapter) {
  if (!adapter.IsIndirectlyOrDirectlyBoundToTcpip()) {
    return "-";
  }
  if (adapter.UsingDhcp()) {
    return "DHCP";
  }
  std::string text = adapter.StaticIpAddress() + " mask " + adapter.StaticSubnetMask();
  if (!adapter.StaticDefaultGateway().empty()) {
    text += " gateway " + adapter.StaticDefaultGateway();
  }
  return text;
}

void PrintTable(std::vector<Adapter>& adapters, std::ostream& out) {
  for (size_t i = 0; i < adapters.size(); ++i) {
    Adapter& a = adapters[i];
    out << "[" << i << "] " << Narrow(a.Name()) << "\n";
    out << "    cookie   " << Narrow(a.GetCookie().c_str()) << "\n";
    out << "    type     " << (a.AdapterType().empty() ? "-" : FromAnsi(a.AdapterType()));
    if (!a.HardwareAddress().empty()) {
      out << "  hardware " << HardwareAddressText(a.HardwareAddress());
    }
    if (!a.DeviceDriver().empty()) {
      out << "  driver " << FromAnsi(a.DeviceDriver());
    }
    out << "\n    address  " << AddressText(a) << "\n";
    out << "    DNS      "
        << (a.StaticNameServers().empty() ? "-" : Join(a.StaticNameServers(), ", "))
        << (a.IsDnsStatic() ? " (static)" : "")
        << (a.StaticDomainName().empty() ? "" : "  domain " + FromAnsi(a.StaticDomainName()))
        << "\n";
    out << "    WINS     " << WinsText(a.GetWinsState());
    if (!a.GetStaticWinsServers().empty()) {
      out << "  " << Join(a.GetStaticWinsServers(), ", ");
    }
    out << "\n    flags    " << Flags(a) << "\n";
  }
  if (adapters.empty()) {
    out << "no network adapters\n";
  }
}

void PrintJsonList(std::vector<Adapter>& adapters, std::ostream& out) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (Adapter& a : adapters) {
    list.push_back({{"name", Narrow(a.Name())},
                    {"cookie", Narrow(a.GetCookie().c_str())},
                    {"serviceName", Narrow(a.ServiceName())},
                    {"deviceDriver", FromAnsi(a.DeviceDriver())},
                    {"adapterType", FromAnsi(a.AdapterType())},
                    {"hardwareAddress", HardwareAddressText(a.HardwareAddress())},
                    {"dhcp", a.UsingDhcp()},
                    {"ipAddress", a.StaticIpAddress()},
                    {"subnetMask", a.StaticSubnetMask()},
                    {"defaultGateway", a.StaticDefaultGateway()},
                    {"dnsServers", a.StaticNameServers()},
                    {"dnsStatic", a.IsDnsStatic()},
                    {"domain", FromAnsi(a.StaticDomainName())},
                    {"winsState", WinsText(a.GetWinsState())},
                    {"winsServers", a.GetStaticWinsServers()},
                    {"ethernet", a.IsEthernetAdapter()},
                    {"boundToTcpip", a.IsBoundToTcpip()},
                    {"boundDirectlyOrIndirectly", a.IsIndirectlyOrDirectlyBoundToTcpip()},
                    {"enabled", a.IsAdapterEnabled()},
                    {"functional", a.IsFunctional()}});
  }
  PrintJson(list, out);
}

}  // namespace

int RunAdapters(std::ostream& out, std::ostream& err) {
  std::vector<Adapter> adapters;
  if (!StaticTcpipInfo().GetAdapterInfo(adapters)) {
    return Fail("the machine's Windows release is not known", err);
  }
  if (JsonOutput()) {
    PrintJsonList(adapters, out);
  } else {
    PrintTable(adapters, out);
  }
  return 0;
}

}  // namespace hostkit_tool
