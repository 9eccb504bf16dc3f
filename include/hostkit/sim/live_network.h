/// \file
/// The live TCP/IP state of a simulated machine: what its running network stack uses now, as
/// IP Helper, the SNMP agent's MIB-II view, the DHCP client and the Windows 9x DHCP VxD report it,
/// and the DHCP server each interface reaches. Release and renewal change it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "hostkit/export.h"
#include "hostkit/win_types.h"

namespace Hostkit::sim {

///@{
/// MIB-II interface types used by the simulated stack.
inline constexpr DWORD kIfTypeEthernet = 6;
inline constexpr DWORD kIfTypePpp = 23;
inline constexpr DWORD kIfTypeLoopback = 24;
///@}

/// The loopback interface every stack has; it is not part of `LiveNetwork::interfaces` and takes
/// this index, which an interface of the profile may therefore not use.
inline constexpr DWORD kLoopbackIndex = 1;

/// What the DHCP server an interface reaches hands out on a renewal.
struct DhcpServerModel {
  std::string address;       ///< the server's own address, dotted
  std::string leaseAddress;  ///< the address the lease gives, dotted
  std::string leaseMask;     ///< the lease's subnet mask, dotted
  std::string leaseGateway;  ///< empty: the lease brings no default route
  std::string domain;        ///< the DNS domain the server supplies (empty: none)
};

/// One interface of the running TCP/IP stack, as IP Helper, SNMP and the DHCP client see it.
struct LiveInterface {
  DWORD index = 0;               ///< interface index, as routes and IP Helper name it (never 1)
  std::string name;              ///< the adapter name IP Helper reports (NT family: the instance
                                 /// identifier "{GUID}"; 9x: a number such as "0000")
  std::string description;       ///< as the driver describes the adapter
  DWORD type = kIfTypeEthernet;  ///< MIB-II interface type (kIfTypeEthernet, ...)
  std::vector<BYTE> hardwareAddress;  ///< the hardware address's bytes
  std::string address;                ///< dotted quad; empty: no address bound
  std::string mask;                   ///< dotted quad; empty with no address
  bool dhcp = false;                  ///< the address comes from DHCP
  std::string dhcpServer;             ///< the server that gave the current lease (empty: none)
  /// The server that answers this interface's DHCP requests; none: no server answers, and a
  /// renewal ends with an automatic private address.
  std::optional<DhcpServerModel> server;
};

/// One row of the routing table.
struct LiveRoute {
  std::string destination;   ///< the destination, dotted ("0.0.0.0" for the default route)
  std::string mask;          ///< the destination's mask, dotted
  std::string nextHop;       ///< the gateway, dotted
  DWORD interfaceIndex = 0;  ///< the interface the route leaves by
};

/// A request the DHCP client received, oldest first in `LiveNetwork::dhcpRequests`.
struct DhcpRequest {
  /// Which operation was asked for.
  enum class Kind { Release, Renew };
  Kind kind = Kind::Release;  ///< release or renewal
  std::string via;            ///< "iphlpapi", "dhcpcsvc" or "vxd"
  DWORD interfaceIndex = 0;   ///< the interface it was asked for
};

/// The TCP/IP state the machine's running stack uses now.
struct LiveNetwork {
  std::vector<LiveInterface> interfaces;  ///< the interfaces, loopback aside
  std::vector<LiveRoute> routes;          ///< in table order
  std::vector<std::string> dnsServers;    ///< the DNS servers in use, in order
  std::string domain;                     ///< the DNS domain in use
  std::vector<DhcpRequest> dhcpRequests;  ///< the DHCP client's requests so far, oldest first

  /// The interface of that index; null when there is none.
  LiveInterface* byIndex(DWORD index);
  /// The interface of that adapter name, without regard to case; null when there is none.
  LiveInterface* byName(const std::string& name);
  /// The interface of that hardware address; null when there is none.
  LiveInterface* byHardwareAddress(const std::vector<BYTE>& address);
};

///@{
/// The DHCP client's two operations on one interface; they record the request and change the
/// state as Windows' client does:
/// - Release gives the lease back: no address, no DHCP server, no default route through it.
///   Nothing happens on an interface that is not on DHCP.
/// - Renew asks the interface's server: the lease it offers becomes the address, the server the
///   DHCP server and the lease's gateway the interface's default route. With no server the
///   interface configures itself an automatic private address 169.254.x.y (x and y from the last
///   two bytes of its hardware address, kept out of the reserved first and last subnets) with mask
///   255.255.0.0 and no gateway. Nothing happens on an interface that is not on DHCP.
HOSTKIT_API void ReleaseLease(LiveNetwork& network, LiveInterface& interface,
                              const std::string& via);
HOSTKIT_API void RenewLease(LiveNetwork& network, LiveInterface& interface, const std::string& via);
///@}

/// "a.b.c.d" to its four bytes in memory order; false for anything else.
HOSTKIT_API bool ParseDottedQuad(const std::string& text, BYTE (&bytes)[4]);

}  // namespace Hostkit::sim
