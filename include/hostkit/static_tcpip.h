/// \file
/// StaticTcpipInfo: the TCP/IP configuration the registry stores for each network adapter, as the
/// adapter records of one enumeration.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hostkit/export.h"
#include "hostkit/shell.h"
#include "hostkit/win_types.h"

namespace Hostkit {

class StaticTcpipInfo_impl;
struct AdapterRecordAccess;

/// The TCP/IP settings the registry stores for each network adapter (what takes effect at the
/// next start), enumerated per family, and their setters. The setters name an adapter by the
/// Cookie of an enumeration on the same system.
class HOSTKIT_API StaticTcpipInfo {
 public:
  /// How NetBIOS name resolution (WINS) is configured for an adapter.
  enum WINS_STATE : std::int32_t { WINS_DISABLED = 0, WINS_USE_DHCP = 1, WINS_ENABLED = 2 };

  /// What GetLastError reports.
  enum FAILURE_REASON : std::int32_t { FAILURE_NONE = 0, FAILURE_UNKNOWN = 1 };

  /// An adapter's identity for the setters: its device description on Windows 9x, its service
  /// name on NT 4, its network-configuration instance identifier on 2000 and XP. Meaningful only
  /// on the family that made it.
  class HOSTKIT_API Cookie {
   public:
    Cookie();
    /// A copy of the zero-terminated text; null gives the empty cookie.
    Cookie(const WCHAR* text);  // NOLINT(google-explicit-constructor): a cookie is its text
    ///@{
    /// Copies and destroys the cookie.
    Cookie(const Cookie& other);
    Cookie& operator=(const Cookie& other);
    ~Cookie();
    ///@}

    /// The cookie's text, zero-terminated; valid as long as the cookie is unchanged.
    const WCHAR* c_str() const;
    /// Whether both hold the same text (compared exactly).
    bool operator==(const Cookie& other) const;

   private:
    wstring text_;
  };

  /// One adapter as one enumeration found it: a snapshot, changed only by enumerating again.
  class HOSTKIT_API AdapterInfo {
   public:
    ///@{
    /// Creates an empty record, copies and destroys it.
    AdapterInfo();
    AdapterInfo(const AdapterInfo& other);
    AdapterInfo& operator=(const AdapterInfo& other);
    ~AdapterInfo();
    ///@}

    /// The adapter's identity for the setters.
    Cookie GetCookie();
    /// The adapter's name: its device description ("Title" of the network card on NT 4).
    wstring Name();
    /// NT 4: the service name; 2000 and XP: the network-configuration instance identifier;
    /// empty on Windows 9x.
    wstring ServiceName();
    /// Windows 9x: the driver files of the adapter's class key.
    std::string DeviceDriver();
    ///@{
    /// The stored fixed address, mask and gateway, dotted quads.
    std::string StaticIpAddress();
    std::string StaticSubnetMask();
    std::string StaticDefaultGateway();
    ///@}
    /// NT family: the hardware address the adapter's driver reports ("00-0C-76-3A-5E-21");
    /// empty when it cannot be read, and always on Windows 9x.
    std::string HardwareAddress();
    /// The bus the device is enumerated on ("PCI", "Root", ...); "NTUnknown" on NT 4.
    std::string AdapterType();
    /// The DNS servers stored for the adapter, in stored order.
    const std::vector<std::string>& StaticNameServers() const;
    /// The stored DNS domain.
    std::string StaticDomainName();
    /// Whether the adapter obtains its address by DHCP.
    bool UsingDhcp() const;
    /// Whether the adapter is classified as a physical network card (adapter_classification.h).
    bool IsEthernetAdapter() const;
    /// Every adapter that is not Ethernet counts as a PPP adapter, whatever it is.
    bool IsPppAdapter() const;
    /// Whether TCP/IP is bound to the adapter directly.
    bool IsBoundToTcpip() const;
    /// Whether TCP/IP reaches the adapter directly or through another binding.
    bool IsIndirectlyOrDirectlyBoundToTcpip() const;
    /// Whether the device is present and working.
    bool IsFunctional() const;
    /// Whether the adapter is enabled in the device or binding configuration.
    bool IsAdapterEnabled() const;
    /// Whether DNS servers are set statically for the adapter.
    bool IsDnsStatic() const;
    /// How WINS is configured for the adapter.
    WINS_STATE GetWinsState() const;
    /// The WINS servers stored for the adapter, in stored order.
    const std::vector<std::string>& GetStaticWinsServers() const;

   private:
    friend struct AdapterRecordAccess;

    /// The record's members, in order; the enumeration fills them through AdapterRecordAccess.
    struct Fields {
      Cookie cookie;
      wstring name;
      wstring serviceName;
      std::string deviceDriver;
      std::string staticIpAddress;
      std::string staticSubnetMask;
      std::string staticDefaultGateway;
      std::string hardwareAddress;
      std::string adapterType;
      std::vector<std::string> staticNameServers;
      std::string staticDomainName;
      bool usingDhcp = false;
      bool ethernet = false;
      bool boundToTcpip = false;
      bool boundDirectlyOrIndirectly = false;
      bool functional = false;
      bool enabled = false;
      bool dnsStatic = false;
      WINS_STATE winsState = WINS_DISABLED;
      std::vector<std::string> staticWinsServers;
      /// Windows 9x: the path of the adapter's TCP/IP binding key, for the broadband tuning.
      std::string tcpipBindingKey;
    };
    Fields fields_;
  };

  ///@{
  /// Creates, copies (each copy owns its own implementation object) and destroys
  /// the object.
  StaticTcpipInfo();
  StaticTcpipInfo(const StaticTcpipInfo& other);
  StaticTcpipInfo& operator=(const StaticTcpipInfo& other);
  ~StaticTcpipInfo();
  ///@}

  /// Appends one record per network adapter of the running family's registry, in discovery
  /// order. False on a system of no known family (nothing appended).
  bool GetAdapterInfo(std::vector<AdapterInfo>& adapters);

  ///@{
  /// Setters of one adapter, named by its cookie. Each returns false without writing when the
  /// cookie names no adapter of the running family, or on a system of no known family. Texts are
  /// written as given: callers check address syntax first (IsValidIPAddress).
  bool SetStaticIpAddress(const Cookie& cookie, const char* address);
  bool SetStaticSubnetMask(const Cookie& cookie, const char* mask);
  bool SetStaticDefaultGateway(const Cookie& cookie, const char* gateway);
  bool EnableDHCP(const Cookie& cookie, bool enable);
  bool MakeDnsStatic(const Cookie& cookie, bool isStatic);
  bool SetStaticNameServers(const Cookie& cookie, const std::vector<std::string>& servers);
  bool SetDomainName(const Cookie& cookie, const char* domain);
  bool SetWinsState(const Cookie& cookie, WINS_STATE state);
  bool SetStaticWinsServers(const Cookie& cookie, const std::vector<std::string>& servers);
  ///@}

  ///@{
  /// The machine's TCP/IP host name, and its DHCP identification (the computer name, which
  /// takes effect at the next start of Windows).
  bool SetStaticHostName(const char* name);
  bool GetStaticHostName(std::string& name);
  bool SetDhcpIdentification(const char* name);
  bool GetDhcpIdentification(std::string& name);
  ///@}

  /// Counts over `adapters`, or over a fresh enumeration when it is null.
  int NumNICs(std::vector<AdapterInfo>* adapters = nullptr);
  /// The number of network cards bound to TCP/IP.
  int NumTcpipBoundNICs(std::vector<AdapterInfo>* adapters = nullptr);
  /// The number of network cards bound to TCP/IP, functional and enabled.
  int NumTcpipBoundAndEnabledNICs(std::vector<AdapterInfo>* adapters = nullptr);
  /// The same count as NumTcpipBoundAndEnabledNICs: whether DHCP is on is not consulted.
  int NumEnabledDhcpNics(std::vector<AdapterInfo>* adapters = nullptr);
  /// Any record, network card or not, that is not functional.
  bool IsNonFunctionalNicPresent(std::vector<AdapterInfo>* adapters = nullptr);
  ///@{
  /// Always the empty text, false and the empty text.
  std::string BadNicDescription(std::vector<AdapterInfo>* adapters = nullptr);
  bool IsUnknownNicPresent(std::vector<AdapterInfo>* adapters = nullptr);
  std::string UnknownNicDescription(std::vector<AdapterInfo>* adapters = nullptr);
  ///@}
  /// The index of the only Ethernet adapter that is bound, functional and enabled; -1 when none
  /// or several are.
  int GetPrimaryNicIndex(std::vector<AdapterInfo> adapters);

  /// Whether TCP/IP is installed on the running family.
  bool IsTcpipInstalled();
  /// Always FAILURE_UNKNOWN: no operation records a reason.
  FAILURE_REASON GetLastError();
  /// The same as DialUp::NumMicrosoftDialupAdapters.
  int NumMicrosoftDialupAdapters();
  /// The same as DialUp::IsMicrosoftVpnInstalled.
  bool IsMicrosoftVpnInstalled();
  /// Windows 9x: makes TCP/IP the default protocol of every network adapter but the dial-up
  /// adapter. Always true.
  bool SetTcpipAsDefaultProtocol();
  /// Windows 98 and Me: switches automatic private addressing; false elsewhere.
  bool EnableIPAC(bool enable);
  /// Windows 95 with Dial-Up Networking 1.3 (the dial-up server and VPN components).
  bool IsMsDun13Installad();
  /// TCP/IP is not installed by the library: Windows' network set-up does that from the Windows
  /// source folder `source`. True when TCP/IP is installed already, false otherwise.
  bool InstallTcpip(const std::string& source);

 private:
  Pimpl<StaticTcpipInfo_impl> impl_;
};

}  // namespace Hostkit
