// Stored TCP/IP settings on Windows 2000 and XP: everything in the adapter's interface key,
// named by the instance identifier the cookie holds; WINS servers in NetBT's key of the
// interface.
#include "hostkit/strings.h"
#include "tcpip_static/setters_nt.h"

namespace Hostkit::tcpip {

namespace {

constexpr const char* kInterfaces =
    "System\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces\\";
constexpr const char* kNetBtInterfaces =
    "System\\CurrentControlSet\\Services\\NetBT\\Parameters\\Interfaces\\Tcpip_";

class Win2000XpSetters : public NtSetters {
 public:
  bool SetNameServers(const Cookie& cookie, const std::vector<std::string>& servers) override {
    const std::string key = TcpipKey(cookie);
    return !key.empty() && TcpipReady() && WriteText(key, "NameServer", JoinServers(servers, ","));
  }

  bool SetDomainName(const Cookie& cookie, const std::string& domain) override {
    const std::string key = TcpipKey(cookie);
    return !key.empty() && TcpipReady() && WriteText(key, "Domain", domain);
  }

  // NetBT has no state of its own: WINS is on exactly while "NameServerList" has servers. On
  // keeps the servers there are; off and "from DHCP" (which the NT family cannot express)
  // empty the list. Like the servers' setter, true once the cookie names an interface, whether
  // or not NetBT has a key for it.
  bool SetWinsState(const Cookie& cookie, WinsState state) override {
    const std::string key = NetBtKey(cookie);
    if (key.empty()) {
      return false;
    }
    std::vector<std::string> servers;
    if (state == StaticTcpipInfo::WINS_ENABLED) {
      registry_.GetMultiStringKeyVal(HKEY_LOCAL_MACHINE, key.c_str(), "NameServerList", servers);
    }
    WriteList(key, "NameServerList", servers);
    return true;
  }

  bool SetWinsServers(const Cookie& cookie, const std::vector<std::string>& servers) override {
    const std::string key = NetBtKey(cookie);
    if (key.empty()) {
      return false;
    }
    WriteList(key, "NameServerList", servers);
    return true;
  }

 protected:
  std::string TcpipKey(const Cookie& cookie) override {
    std::string id;
    if (!CookieText(cookie, id) || id.empty()) {
      return {};
    }
    const std::string key = kInterfaces + id;
    return registry_.DoesKeyExist(HKEY_LOCAL_MACHINE, key.c_str()) ? key : std::string();
  }

 private:
  // NetBT's key of the interface, whether or not it or the TCP/IP interface key exists; empty
  // only for a cookie that names no interface at all.
  static std::string NetBtKey(const Cookie& cookie) {
    std::string id;
    if (!CookieText(cookie, id) || id.empty()) {
      return {};
    }
    return kNetBtInterfaces + id;
  }

  // DNS settings need TCP/IP installed and its parameters key in place, as on the other families.
  bool TcpipReady() {
    return IsTcpipInstalled() && registry_.DoesKeyExist(HKEY_LOCAL_MACHINE, kNtTcpipParameters);
  }
};

}  // namespace

std::unique_ptr<SetterBranch> MakeWin2000XpSetters() {
  return std::make_unique<Win2000XpSetters>();
}

}  // namespace Hostkit::tcpip
