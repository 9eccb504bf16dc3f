// What the NT-family setter branches share: addresses as one-entry multi-strings in the
// adapter's TCP/IP key, and the DHCP switch.
#pragma once

#include <string>

#include "tcpip_static/setters.h"

namespace Hostkit::tcpip {

class NtSetters : public SetterBranch {
 public:
  bool SetAddress(const Cookie& cookie, AddressValue which, const std::string& text) override;
  bool EnableDhcp(const Cookie& cookie, bool enable) override;
  bool MakeDnsStatic(const Cookie& cookie, bool isStatic) override;

 protected:
  // The adapter's TCP/IP key: the interface key on 2000 and XP, the service's "Tcpip" key on
  // NT 4; empty when the cookie names no adapter with one.
  virtual std::string TcpipKey(const Cookie& cookie) = 0;
  // Runs after the DHCP values were written by EnableDhcp(true).
  virtual bool AfterEnablingDhcp() { return true; }

  bool WriteText(const std::string& key, const char* name, const std::string& value);
  bool WriteList(const std::string& key, const char* name, const std::vector<std::string>& list);
  bool DeleteIfPresent(const std::string& key, const char* name);

  RegWiz registry_;
};

}  // namespace Hostkit::tcpip
