/// \file
/// LiveTcpipInfo: the TCP/IP state the running system uses now (as opposed to what is stored for
/// the next start, which StaticTcpipInfo reads): per adapter its current address, mask, default
/// gateway, hardware address and DHCP facts; system-wide the DNS servers, domain and search list.
/// It asks IP Helper where that can be bound, else the SNMP agent's MIB-II tables; the registry is
/// the last source for the DNS facts.
#pragma once

#include <string>
#include <vector>

#include "hostkit/export.h"
#include "hostkit/shell.h"
#include "hostkit/win_types.h"

namespace Hostkit {

class LiveTcpipInfo_impl;
class LiveAdapterInfo_impl;

/// The TCP/IP state in use now: per adapter its address, mask, gateway, hardware address and
/// DHCP facts, and the DNS servers, domain and search list.
class HOSTKIT_API LiveTcpipInfo {
 public:
  /// One adapter as one reading of the live state found it.
  class HOSTKIT_API AdapterInfo {
   public:
    ///@{
    /// Creates, copies (each copy owns its own implementation object) and destroys
    /// the object.
    AdapterInfo();
    AdapterInfo(const AdapterInfo& other);
    AdapterInfo& operator=(const AdapterInfo& other);
    ~AdapterInfo();
    ///@}

    /// On Windows 2000/XP the connection's display name when the stored adapter is known.
    wstring Description();
    /// The adapter name IP Helper reports (2000/XP: the instance identifier); empty on 9x.
    wstring ServiceName();
    std::string IpAddrress();  ///< the current address; "0.0.0.0" when none is bound
    /// The subnet mask of the address.
    std::string SubnetMask();
    std::string DefaultGateway();  ///< the default gateway; empty without a route through it
    /// The hardware address, lower-case pairs joined by "-", for example "00-a0-c9-12-34-56".
    std::string HardwareAddress();
    std::string DhcpServer();  ///< the DHCP server's address; filled on Windows 95/98/Me only
    /// The live record's identity: its hardware-address text.
    std::string Cookie();
    /// Whether the adapter has DHCP enabled.
    bool IsDhcp() const;
    /// Whether the adapter is an Ethernet adapter.
    bool IsEthernetAdapter() const;
    bool IsPppAdapter() const;  ///< whether it is not Ethernet (every other adapter counts as PPP)

   private:
    friend class LiveTcpipInfo_impl;
    Pimpl<LiveAdapterInfo_impl> impl_;
  };

  ///@{
  /// Creates, copies (each copy owns its own implementation object) and destroys
  /// the object.
  LiveTcpipInfo();
  LiveTcpipInfo(const LiveTcpipInfo& other);
  LiveTcpipInfo& operator=(const LiveTcpipInfo& other);
  ~LiveTcpipInfo();
  ///@}

  /// Clears `adapters` and fills it; false (and left empty) when neither IP Helper nor the SNMP
  /// agent answered.
  bool GetAdapterInfo(std::vector<AdapterInfo>& adapters);
  /// The DNS servers in the order found; true when a source answered.
  bool GetDnsServers(std::vector<std::string>& servers);
  /// The DNS domain; false only on 2000/XP when IP Helper does not answer.
  bool GetDomainName(wstring& domain);
  /// The DNS suffix search list as stored; always true.
  bool GetDomainSearchList(std::vector<wstring>& domains);

 private:
  Pimpl<LiveTcpipInfo_impl> impl_;
};

}  // namespace Hostkit
