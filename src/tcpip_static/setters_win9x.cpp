// Stored TCP/IP settings on Windows 95, 98 and Me: addresses and WINS in the adapter's TCP/IP
// binding key, found from the device whose description is the cookie; DNS in the machine-wide
// MSTCP key.
#include <string>

#include "tcpip_static/enumeration.h"
#include "tcpip_static/setters.h"

namespace Hostkit::tcpip {

namespace {

constexpr const char* kMstcp = "System\\CurrentControlSet\\Services\\VxD\\MSTCP";
constexpr int kBindingDepth = 5;
constexpr int kWinsServerSlots = 10;

const char* ValueName(AddressValue which) {
  switch (which) {
    case AddressValue::IpAddress:
      return "IPAddress";
    case AddressValue::SubnetMask:
      return "IPMask";
    case AddressValue::DefaultGateway:
      return "DefaultGateway";
  }
  return "";
}

std::string WinsServerName(int number) { return "NameServer" + std::to_string(number); }

class Win9xSetters : public SetterBranch {
 public:
  bool SetAddress(const Cookie& cookie, AddressValue which, const std::string& text) override {
    const std::string binding = BindingKey(cookie);
    return !binding.empty() && Write(binding, ValueName(which), text);
  }

  bool EnableDhcp(const Cookie& cookie, bool enable) override {
    const std::string binding = BindingKey(cookie);
    if (binding.empty()) {
      return false;
    }
    if (!enable) {
      return DisableDhcp(binding);
    }
    return Write(kMstcp, "IPAddress", "0.0.0.0") && Write(kMstcp, "IPMask", "0.0.0.0") &&
           Write(binding, "IPAddress", "0.0.0.0") && Write(binding, "IPMask", "0.0.0.0") &&
           Write(binding, "DefaultGateway", "");
  }

  bool MakeDnsStatic(const Cookie& cookie, bool isStatic) override {
    if (BindingKey(cookie).empty()) {
      return false;
    }
    if (isStatic) {
      return Write(kMstcp, "EnableDNS", "1");
    }
    if (!Write(kMstcp, "EnableDNS", "0")) {
      return false;
    }
    for (const char* name : {"SearchList", "NameServer", "HostName", "Domain"}) {
      registry_.DeleteKeyVal(HKEY_LOCAL_MACHINE, kMstcp, name);
    }
    return true;
  }

  bool SetNameServers(const Cookie& cookie, const std::vector<std::string>& servers) override {
    return IsTcpipInstalled() && !BindingKey(cookie).empty() &&
           Write(kMstcp, "NameServer", JoinServers(servers, ","));
  }

  bool SetDomainName(const Cookie& cookie, const std::string& domain) override {
    return IsTcpipInstalled() && !BindingKey(cookie).empty() && Write(kMstcp, "Domain", domain);
  }

  bool SetWinsState(const Cookie& cookie, WinsState state) override {
    const std::string binding = BindingKey(cookie);
    if (binding.empty()) {
      return false;
    }
    switch (state) {
      case StaticTcpipInfo::WINS_ENABLED:
        return Write(binding, "NodeType", "8");
      case StaticTcpipInfo::WINS_DISABLED:
        if (!Write(binding, "NodeType", "1")) {
          return false;
        }
        break;
      case StaticTcpipInfo::WINS_USE_DHCP:
        registry_.DeleteKeyVal(HKEY_LOCAL_MACHINE, binding.c_str(), "NodeType");
        break;
      default:
        return false;
    }
    for (int number = 0; number < kWinsServerSlots; ++number) {
      registry_.DeleteKeyVal(HKEY_LOCAL_MACHINE, binding.c_str(), WinsServerName(number).c_str());
    }
    return true;
  }

  bool SetWinsServers(const Cookie& cookie, const std::vector<std::string>& servers) override {
    const std::string binding = BindingKey(cookie);
    if (binding.empty()) {
      return false;
    }
    for (size_t i = 0; i < servers.size(); ++i) {
      if (!Write(binding, WinsServerName(static_cast<int>(i) + 1).c_str(), servers[i])) {
        return false;
      }
    }
    return true;
  }

 private:
  // The TCP/IP binding key of the first network device (in search order) whose description is
  // the cookie's text; empty when there is none.
  std::string BindingKey(const Cookie& cookie) {
    std::string description;
    if (!CookieText(cookie, description)) {
      return {};
    }
    for (const std::string& device :
         registry_.GetAllSubKeys(HKEY_LOCAL_MACHINE, "Enum", "Class", "^Net$")) {
      std::string found;
      if (registry_.GetKeyVal(HKEY_LOCAL_MACHINE, device.c_str(), "DeviceDesc", found) &&
          found == description) {
        return FindTcpipBindingKey(registry_, device, kBindingDepth);
      }
    }
    return {};
  }

  // The adapter reads as a DHCP adapter while its "IPAddress" is "0.0.0.0". Leaving DHCP removes
  // the placeholders EnableDhcp(true) wrote, so that the adapter reads as static with no address
  // until one is set; addresses already set are kept.
  bool DisableDhcp(const std::string& binding) {
    for (const char* name : {"IPAddress", "IPMask"}) {
      std::string value;
      if (registry_.GetKeyVal(HKEY_LOCAL_MACHINE, binding.c_str(), name, value) &&
          value == "0.0.0.0" &&
          !registry_.DeleteKeyVal(HKEY_LOCAL_MACHINE, binding.c_str(), name)) {
        return false;
      }
    }
    return true;
  }

  bool Write(const std::string& key, const char* name, const std::string& value) {
    return registry_.SetKeyVal(HKEY_LOCAL_MACHINE, key.c_str(), name, value.c_str());
  }

  RegWiz registry_;
};

}  // namespace

std::unique_ptr<SetterBranch> MakeWin9xSetters() { return std::make_unique<Win9xSetters>(); }

}  // namespace Hostkit::tcpip
