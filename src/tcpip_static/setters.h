// Changing the stored TCP/IP settings of one adapter: one branch per Windows family, each
// finding the adapter's keys from its cookie as that family stores them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "hostkit/regwiz.h"
#include "hostkit/static_tcpip.h"
#include "tcpip_static/enumeration.h"

namespace Hostkit::tcpip {

using Cookie = StaticTcpipInfo::Cookie;
using WinsState = StaticTcpipInfo::WINS_STATE;

enum class AddressValue { IpAddress, SubnetMask, DefaultGateway };

// Every setter returns false without writing when the cookie names no adapter of the family;
// the NT 4 DNS setters act on the machine-wide parameters and need no adapter.
class SetterBranch {
 public:
  virtual ~SetterBranch() = default;
  virtual bool SetAddress(const Cookie& cookie, AddressValue which, const std::string& text) = 0;
  virtual bool EnableDhcp(const Cookie& cookie, bool enable) = 0;
  virtual bool MakeDnsStatic(const Cookie& cookie, bool isStatic) = 0;
  virtual bool SetNameServers(const Cookie& cookie, const std::vector<std::string>& servers) = 0;
  virtual bool SetDomainName(const Cookie& cookie, const std::string& domain) = 0;
  virtual bool SetWinsState(const Cookie& cookie, WinsState state) = 0;
  virtual bool SetWinsServers(const Cookie& cookie, const std::vector<std::string>& servers) = 0;
};

// The branch of the running family (Windows 9x, then 2000 or XP, then NT 4); null elsewhere.
std::unique_ptr<SetterBranch> SettersForRunningFamily();

std::unique_ptr<SetterBranch> MakeWin9xSetters();
std::unique_ptr<SetterBranch> MakeWin2000XpSetters();
std::unique_ptr<SetterBranch> MakeNt4Setters();

// TCP/IP is installed: the family's TCP/IP key exists (always on XP).
bool IsTcpipInstalled();

// The servers joined by `separator`, nothing before the first or after the last.
std::string JoinServers(const std::vector<std::string>& servers, const char* separator);

// The cookie's text in the ANSI code page; false when it does not convert.
bool CookieText(const Cookie& cookie, std::string& text);

}  // namespace Hostkit::tcpip

namespace Hostkit::tcpip {

// The machine's host name and DHCP identification (the computer name).
bool SetStaticHostName(const std::string& name);
bool GetStaticHostName(std::string& name);
bool SetDhcpIdentification(const std::string& name);
bool GetDhcpIdentification(std::string& name);

}  // namespace Hostkit::tcpip
