// Stored TCP/IP settings on Windows NT 4: addresses in the "Parameters\Tcpip" key of the
// adapter's service (the cookie), DNS in the machine-wide TCP/IP parameters, WINS servers in
// NetBT's key of the adapter.
#include "hostkit/strings.h"
#include "tcpip_static/setters_nt.h"

namespace Hostkit::tcpip {

namespace {

constexpr const char* kServices = "System\\CurrentControlSet\\Services\\";
constexpr const char* kNetBtAdapters = "System\\CurrentControlSet\\Services\\NetBT\\Adapters\\";

class Nt4Setters : public NtSetters {
 public:
  // DNS is machine-wide here: the card need not have TCP/IP parameters of its own.
  bool SetNameServers(const Cookie& /*cookie*/, const std::vector<std::string>& servers) override {
    return TcpipReady() && WriteText(kNtTcpipParameters, "NameServer", JoinServers(servers, " "));
  }

  bool SetDomainName(const Cookie& /*cookie*/, const std::string& domain) override {
    return TcpipReady() && WriteText(kNtTcpipParameters, "Domain", domain);
  }

  bool SetWinsState(const Cookie& cookie, WinsState state) override {
    return state == StaticTcpipInfo::WINS_DISABLED && SetWinsServers(cookie, {});
  }

  // The first two servers, as "NameServer" and "NameServerBackup" in wide text; an absent server
  // is written as empty text.
  bool SetWinsServers(const Cookie& cookie, const std::vector<std::string>& servers) override {
    std::string service;
    if (!CookieText(cookie, service) || service.empty()) {
      return false;
    }
    wstring key;
    wstring primary;
    wstring backup;
    if (!ConvertANSIToUnicode(kNetBtAdapters + service, key) ||
        !ConvertANSIToUnicode(servers.empty() ? "" : servers[0], primary) ||
        !ConvertANSIToUnicode(servers.size() < 2 ? "" : servers[1], backup)) {
      return false;
    }
    registry_.SetKeyVal(HKEY_LOCAL_MACHINE, key.c_str(), HK_WIDE("NameServer"), primary.c_str());
    registry_.SetKeyVal(HKEY_LOCAL_MACHINE, key.c_str(), HK_WIDE("NameServerBackup"),
                        backup.c_str());
    return true;
  }

 protected:
  std::string TcpipKey(const Cookie& cookie) override {
    std::string service;
    if (!CookieText(cookie, service) || service.empty()) {
      return {};
    }
    const std::string key = kServices + service + "\\Parameters\\Tcpip";
    return registry_.DoesKeyExist(HKEY_LOCAL_MACHINE, key.c_str()) ? key : std::string();
  }

  // The DHCP client service starts with Windows from now on.
  bool AfterEnablingDhcp() override {
    return registry_.SetDwordKeyVal(HKEY_LOCAL_MACHINE, "System\\CurrentControlSet\\Services\\DHCP",
                                    "Start", 2);
  }

 private:
  bool TcpipReady() {
    return IsTcpipInstalled() && registry_.DoesKeyExist(HKEY_LOCAL_MACHINE, kNtTcpipParameters);
  }
};

}  // namespace

std::unique_ptr<SetterBranch> MakeNt4Setters() { return std::make_unique<Nt4Setters>(); }

}  // namespace Hostkit::tcpip
