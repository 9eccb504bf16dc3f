// The implementation objects behind LiveTcpipInfo and its adapter records.
#pragma once

#include <string>
#include <vector>

#include "hostkit/live_tcpip.h"

namespace Hostkit {

// One live adapter record, members in order.
class LiveAdapterInfo_impl {
 public:
  wstring description;
  wstring serviceName;
  std::string ipAddress;
  std::string subnetMask;
  std::string defaultGateway;
  std::string hardwareAddress;
  std::string dhcpServer;
  bool dhcp = false;
  bool ethernet = false;
};

// Stateless: every call binds IP Helper (and the SNMP agent when needed) afresh.
class LiveTcpipInfo_impl {
 public:
  using AdapterInfo = LiveTcpipInfo::AdapterInfo;

  bool GetAdapterInfo(std::vector<AdapterInfo>& adapters);
  bool GetDnsServers(std::vector<std::string>& servers);
  bool GetDomainName(wstring& domain);
  bool GetDomainSearchList(std::vector<wstring>& domains);

  // A shell record holding `fields` (an empty shell when its allocation failed).
  static AdapterInfo Record(const LiveAdapterInfo_impl& fields);
};

}  // namespace Hostkit
