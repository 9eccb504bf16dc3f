// The simulated machine's live TCP/IP state and its DHCP client.
#include "hostkit/sim/live_network.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <string_view>

#include "hostkit/sim/machine.h"

namespace Hostkit::sim {

namespace {

void DropDefaultRoutes(LiveNetwork& network, DWORD index) {
  std::erase_if(network.routes, [index](const LiveRoute& route) {
    return route.interfaceIndex == index && route.destination == "0.0.0.0" &&
           route.mask == "0.0.0.0";
  });
}

// 169.254.x.y from the hardware address's last two bytes; the subnets 169.254.0 and
// 169.254.255 are reserved, so x is kept within 1 to 254.
std::string AutomaticPrivateAddress(const std::vector<BYTE>& hardware) {
  const unsigned high = hardware.size() >= 2 ? hardware[hardware.size() - 2] : 0;
  const unsigned low = hardware.empty() ? 1 : hardware.back();
  const unsigned x = 1 + high % 254;
  return "169.254." + std::to_string(x) + "." + std::to_string(low);
}

}  // namespace

LiveInterface* LiveNetwork::byIndex(DWORD index) {
  for (LiveInterface& interface : interfaces) {
    if (interface.index == index) {
      return &interface;
    }
  }
  return nullptr;
}

LiveInterface* LiveNetwork::byName(const std::string& name) {
  for (LiveInterface& interface : interfaces) {
    if (NoCaseEqual(interface.name, name)) {
      return &interface;
    }
  }
  return nullptr;
}

LiveInterface* LiveNetwork::byHardwareAddress(const std::vector<BYTE>& address) {
  for (LiveInterface& interface : interfaces) {
    if (interface.hardwareAddress == address) {
      return &interface;
    }
  }
  return nullptr;
}

void ReleaseLease(LiveNetwork& network, LiveInterface& interface, const std::string& via) {
  network.dhcpRequests.push_back({DhcpRequest::Kind::Release, via, interface.index});
  if (!interface.dhcp) {
    return;
  }
  interface.address.clear();
  interface.mask.clear();
  interface.dhcpServer.clear();
  DropDefaultRoutes(network, interface.index);
}

void RenewLease(LiveNetwork& network, LiveInterface& interface, const std::string& via) {
  network.dhcpRequests.push_back({DhcpRequest::Kind::Renew, via, interface.index});
  if (!interface.dhcp) {
    return;
  }
  DropDefaultRoutes(network, interface.index);
  if (!interface.server) {
    interface.address = AutomaticPrivateAddress(interface.hardwareAddress);
    interface.mask = "255.255.0.0";
    interface.dhcpServer.clear();
    return;
  }
  const DhcpServerModel& server = *interface.server;
  interface.address = server.leaseAddress;
  interface.mask = server.leaseMask;
  interface.dhcpServer = server.address;
  if (!server.leaseGateway.empty()) {
    network.routes.push_back({"0.0.0.0", "0.0.0.0", server.leaseGateway, interface.index});
  }
  if (!server.domain.empty()) {
    network.domain = server.domain;
  }
}

bool ParseDottedQuad(const std::string& text, BYTE (&bytes)[4]) {
  std::string_view rest = text;
  for (int part = 0; part < 4; ++part) {
    if (part > 0) {
      if (rest.empty() || rest.front() != '.') {
        return false;
      }
      rest.remove_prefix(1);
    }
    unsigned value = 0;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
    if (error != std::errc() || end == rest.data() || end - rest.data() > 3 || value > 255) {
      return false;
    }
    bytes[part] = static_cast<BYTE>(value);
    rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
  }
  return rest.empty();
}

}  // namespace Hostkit::sim
