// StaticTcpipInfo: the TCP/IP configuration the registry stores for each network adapter, as the
// adapter records of one enumeration.
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

class HOSTKIT_API StaticTcpipInfo {
 public:
  enum WINS_STATE : std::int32_t { WINS_DISABLED = 0, WINS_USE_DHCP = 1, WINS_ENABLED = 2 };

  enum FAILURE_REASON : std::int32_t { FAILURE_NONE = 0, FAILURE_UNKNOWN = 1 };

  // An adapter's identity for the setters: its device description on Windows 9x, its service
  // name on NT 4, its network-configuration instance identifier on 2000 and XP. Meaningful only
  // on the family that made it.
  class HOSTKIT_API Cookie {
   public:
    Cookie();
    // A copy of the zero-terminated text; null gives the empty cookie.
    Cookie(const WCHAR* text);  // NOLINT(google-explicit-constructor): a cookie is its text
    Cookie(const Cookie& other);
    Cookie& operator=(const Cookie& other);
    ~Cookie();

    const WCHAR* c_str() const;
    bool operator==(const Cookie& other) const;

   private:
    wstring text_;
  };

  // One adapter as one enumeration found it: a snapshot, changed only by enumerating again.
  class HOSTKIT_API AdapterInfo {
   public:
    AdapterInfo();
    AdapterInfo(const AdapterInfo& other);
    AdapterInfo& operator=(const AdapterInfo& other);
    ~AdapterInfo();

    Cookie GetCookie();
    wstring Name();
    wstring ServiceName();
    std::string DeviceDriver();
    std::string StaticIpAddress();
    std::string StaticSubnetMask();
    std::string StaticDefaultGateway();
    std::string HardwareAddress();
    std::string AdapterType();
    const std::vector<std::string>& StaticNameServers() const;
    std::string StaticDomainName();
    bool UsingDhcp() const;
    bool IsEthernetAdapter() const;
    // Every adapter that is not Ethernet counts as a PPP adapter, whatever it is.
    bool IsPppAdapter() const;
    bool IsBoundToTcpip() const;
    bool IsIndirectlyOrDirectlyBoundToTcpip() const;
    bool IsFunctional() const;
    bool IsAdapterEnabled() const;
    bool IsDnsStatic() const;
    WINS_STATE GetWinsState() const;
    const std::vector<std::string>& GetStaticWinsServers() const;

   private:
    friend struct AdapterRecordAccess;

    // The record's members, in order; the enumeration fills them through AdapterRecordAccess.
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
      // Windows 9x: the path of the adapter's TCP/IP binding key, for the broadband tuning.
      std::string tcpipBindingKey;
    };
    Fields fields_;
  };

  StaticTcpipInfo();
  StaticTcpipInfo(const StaticTcpipInfo& other);
  StaticTcpipInfo& operator=(const StaticTcpipInfo& other);
  ~StaticTcpipInfo();

  // Appends one record per network adapter of the running family's registry, in discovery
  // order. False on a system of no known family (nothing appended).
  bool GetAdapterInfo(std::vector<AdapterInfo>& adapters);

  // Setters of one adapter, named by its cookie. Each returns false without writing when the
  // cookie names no adapter of the running family, or on a system of no known family. Texts are
  // written as given: callers check address syntax first (IsValidIPAddress).
  bool SetStaticIpAddress(const Cookie& cookie, const char* address);
  bool SetStaticSubnetMask(const Cookie& cookie, const char* mask);
  bool SetStaticDefaultGateway(const Cookie& cookie, const char* gateway);
  bool EnableDHCP(const Cookie& cookie, bool enable);
  bool MakeDnsStatic(const Cookie& cookie, bool isStatic);
  bool SetStaticNameServers(const Cookie& cookie, const std::vector<std::string>& servers);
  bool SetDomainName(const Cookie& cookie, const char* domain);
  bool SetWinsState(const Cookie& cookie, WINS_STATE state);
  bool SetStaticWinsServers(const Cookie& cookie, const std::vector<std::string>& servers);

  // The machine's TCP/IP host name, and its DHCP identification (the computer name, which
  // takes effect at the next start of Windows).
  bool SetStaticHostName(const char* name);
  bool GetStaticHostName(std::string& name);
  bool SetDhcpIdentification(const char* name);
  bool GetDhcpIdentification(std::string& name);

  // Counts over `adapters`, or over a fresh enumeration when it is null.
  int NumNICs(std::vector<AdapterInfo>* adapters = nullptr);
  int NumTcpipBoundNICs(std::vector<AdapterInfo>* adapters = nullptr);
  int NumTcpipBoundAndEnabledNICs(std::vector<AdapterInfo>* adapters = nullptr);
  // The same count as NumTcpipBoundAndEnabledNICs: whether DHCP is on is not consulted.
  int NumEnabledDhcpNics(std::vector<AdapterInfo>* adapters = nullptr);
  // Any record, network card or not, that is not functional.
  bool IsNonFunctionalNicPresent(std::vector<AdapterInfo>* adapters = nullptr);
  // Always the empty text, false and the empty text.
  std::string BadNicDescription(std::vector<AdapterInfo>* adapters = nullptr);
  bool IsUnknownNicPresent(std::vector<AdapterInfo>* adapters = nullptr);
  std::string UnknownNicDescription(std::vector<AdapterInfo>* adapters = nullptr);
  // The index of the only Ethernet adapter that is bound, functional and enabled; -1 when none
  // or several are.
  int GetPrimaryNicIndex(std::vector<AdapterInfo> adapters);

  bool IsTcpipInstalled();
  // Always FAILURE_UNKNOWN: no operation records a reason.
  FAILURE_REASON GetLastError();
  int NumMicrosoftDialupAdapters();
  bool IsMicrosoftVpnInstalled();
  bool SetTcpipAsDefaultProtocol();
  // Windows 98 and Me: switches automatic private addressing; false elsewhere.
  bool EnableIPAC(bool enable);
  // Windows 95 with Dial-Up Networking 1.3 (the dial-up server and VPN components).
  bool IsMsDun13Installad();
  // TCP/IP is not installed by the library: Windows' network set-up does that from the Windows
  // source folder `source`. True when TCP/IP is installed already, false otherwise.
  bool InstallTcpip(const std::string& source);

 private:
  Pimpl<StaticTcpipInfo_impl> impl_;
};

}  // namespace Hostkit
