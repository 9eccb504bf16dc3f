// Address and DHCP setters shared by Windows NT 4, 2000 and XP.
#include "tcpip_static/setters_nt.h"

namespace Hostkit::tcpip {

namespace {

const char* ValueName(AddressValue which) {
  switch (which) {
    case AddressValue::IpAddress:
      return "IPAddress";
    case AddressValue::SubnetMask:
      return "SubnetMask";
    case AddressValue::DefaultGateway:
      return "DefaultGateway";
  }
  return "";
}

}  // namespace

bool NtSetters::SetAddress(const Cookie& cookie, AddressValue which, const std::string& text) {
  const std::string key = TcpipKey(cookie);
  return !key.empty() && WriteList(key, ValueName(which), {text});
}

// Switching DHCP on resets the static addresses to what the enumeration reads as "no address":
// "0.0.0.0" for address and mask, no gateway. The DHCP client replaces the two Dhcp values when
// it gets a lease.
bool NtSetters::EnableDhcp(const Cookie& cookie, bool enable) {
  const std::string key = TcpipKey(cookie);
  if (key.empty()) {
    return false;
  }
  if (!enable) {
    if (!registry_.SetDwordKeyVal(HKEY_LOCAL_MACHINE, key.c_str(), "EnableDHCP", 0)) {
      return false;
    }
    return DeleteIfPresent(key, "DhcpIPAddress") && DeleteIfPresent(key, "DhcpSubnetMask");
  }
  return WriteList(key, "SubnetMask", {"0.0.0.0"}) && WriteList(key, "IPAddress", {"0.0.0.0"}) &&
         WriteList(key, "DefaultGateway", {}) &&
         registry_.SetDwordKeyVal(HKEY_LOCAL_MACHINE, key.c_str(), "EnableDHCP", 1) &&
         WriteText(key, "DhcpIPAddress", "0.0.0.0") &&
         WriteText(key, "DhcpSubnetMask", "255.0.0.0") && AfterEnablingDhcp();
}

// The NT family has no DNS switch: DNS is static while the adapter has servers set.
bool NtSetters::MakeDnsStatic(const Cookie& cookie, bool isStatic) {
  if (TcpipKey(cookie).empty()) {
    return false;
  }
  return isStatic || SetNameServers(cookie, {});
}

// A value that is not there needs no deleting; a deletion the registry refuses is a failed write.
bool NtSetters::DeleteIfPresent(const std::string& key, const char* name) {
  return !registry_.DoesValNameExist(HKEY_LOCAL_MACHINE, key.c_str(), name) ||
         registry_.DeleteKeyVal(HKEY_LOCAL_MACHINE, key.c_str(), name);
}

bool NtSetters::WriteText(const std::string& key, const char* name, const std::string& value) {
  return registry_.SetKeyVal(HKEY_LOCAL_MACHINE, key.c_str(), name, value.c_str());
}

bool NtSetters::WriteList(const std::string& key, const char* name,
                          const std::vector<std::string>& list) {
  return registry_.SetMultiStringKeyVal(HKEY_LOCAL_MACHINE, key.c_str(), name, list);
}

}  // namespace Hostkit::tcpip
