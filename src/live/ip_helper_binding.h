// IP Helper ("IPHLPAPI.DLL") bound at run time: the adapter list, the default routes, the DNS
// facts and the per-adapter DHCP requests. Usable only when all six entries are found.
#pragma once

#include <string>
#include <vector>

#include "hostkit/win_types.h"

namespace Hostkit::live {

// One adapter entry of IP Helper as the live records are assembled from it. The description
// holds the entry's adapter name and the service name its description; the record built from
// the row exchanges them back.
struct IpHelperRow {
  Hostkit::wstring description;
  Hostkit::wstring serviceName;
  std::string ipAddress;
  std::string subnetMask;
  std::string defaultGateway;   // the last default route through the entry's index; or empty
  std::string hardwareAddress;  // lower-case pairs joined by "-"
  std::string dhcpServer;
  bool dhcp = false;
  bool ethernet = false;
};

class IpHelperBinding {
 public:
  IpHelperBinding();  // loads the module and looks up the entries
  ~IpHelperBinding();
  IpHelperBinding(const IpHelperBinding&) = delete;
  IpHelperBinding& operator=(const IpHelperBinding&) = delete;

  bool Usable() const;

  // The adapter rows in list order; false when unusable or the adapter list call fails.
  bool AdapterRows(std::vector<IpHelperRow>& rows) const;
  // GetNetworkParams: the DNS servers in order, and the domain name; false when unusable or
  // the call fails.
  bool DnsServers(std::vector<std::string>& servers) const;
  bool DomainName(std::string& domain) const;
  // Releases or renews the lease of the adapter IP Helper names `adapterName`, through its
  // GetInterfaceInfo entry; false when no entry matches or the call fails.
  bool ReleaseAddress(const Hostkit::wstring& adapterName) const;
  bool RenewAddress(const Hostkit::wstring& adapterName) const;

 private:
  bool failed_ = true;
  FARPROC ipReleaseAddress_ = nullptr;
  FARPROC ipRenewAddress_ = nullptr;
  FARPROC getInterfaceInfo_ = nullptr;
  FARPROC getAdaptersInfo_ = nullptr;
  FARPROC getNetworkParams_ = nullptr;
  FARPROC getIpForwardTable_ = nullptr;
  HMODULE module_ = nullptr;

  bool AddressRequest(const Hostkit::wstring& adapterName, FARPROC request) const;
};

}  // namespace Hostkit::live
