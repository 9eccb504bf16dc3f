// hostkit proxy / hostkit ie: the current user's browser settings through the library's
// ConfigureIE, read and changed on the loaded machine.
#include <array>
#include <ostream>
#include <string>
#include <vector>

#include "commands.h"
#include "hostkit/configure_ie.h"
#include "hostkit/regwiz.h"
#include "hostkit/strings.h"

namespace hostkit_tool {

namespace {

using Hostkit::ConfigureIE;
using Hostkit::wstring;

struct Protocol {
  const char* keyword;
  bool (ConfigureIE::*use)(wstring, int);
  bool (ConfigureIE::*get)(wstring&, int&);
};

const std::array<Protocol, 5> kProtocols{{
    {"http", &ConfigureIE::UseHTTPProxyServer, &ConfigureIE::GetHTTPProxyServer},
    {"https", &ConfigureIE::UseHTTPSProxyServer, &ConfigureIE::GetHTTPSProxyServer},
    {"ftp", &ConfigureIE::UseFTPProxyServer, &ConfigureIE::GetFTPProxyServer},
    {"gopher", &ConfigureIE::UseGopherProxyServer, &ConfigureIE::GetGopherProxyServer},
    {"socks", &ConfigureIE::UseSocksProxyServer, &ConfigureIE::GetSocksProxyServer},
}};

const Protocol* FindProtocol(const std::string& keyword) {
  for (const Protocol& protocol : kProtocols) {
    if (keyword == protocol.keyword) {
      return &protocol;
    }
  }
  return nullptr;
}

bool ParsePort(const std::string& text, int& port) {
  try {
    std::size_t used = 0;
    port = std::stoi(text, &used);
    return used == text.size();
  } catch (...) {
    return false;
  }
}

const char* const kSettings = "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";

}  // namespace

int RunProxyShow(std::ostream& out, std::ostream& /*err*/) {
  ConfigureIE ie;
  Hostkit::RegWiz reg;
  std::string list;
  unsigned long enable = 0;
  out << "proxy list:    "
      << (reg.GetKeyVal(HKEY_CURRENT_USER, kSettings, "ProxyServer", list) ? list : "(none)")
      << "\n";
  out << "proxy enabled: "
      << (reg.GetDwordKeyVal(HKEY_CURRENT_USER, kSettings, "ProxyEnable", enable)
              ? (enable != 0 ? "yes" : "no")
              : "(not set)")
      << "\n";
  for (const Protocol& protocol : kProtocols) {
    wstring server;
    int port = 0;
    out << "  " << protocol.keyword << std::string(8 - std::string(protocol.keyword).size(), ' ')
        << ((ie.*protocol.get)(server, port) ? Narrow(server) + ":" + std::to_string(port)
                                             : std::string("-"))
        << "\n";
  }
  std::string exceptions;
  out << "exceptions:    "
      << (reg.GetKeyVal(HKEY_CURRENT_USER, kSettings, "ProxyOverride", exceptions) ? exceptions
                                                                                   : "(none)")
      << "\n";
  wstring script;
  out << "auto config:   " << (ie.GetAutoConfigurationScript(script) ? Narrow(script) : "(none)")
      << "\n";
  return 0;
}

int RunProxySet(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  if (args.size() != 2 && args.size() != 3) {
    err << "hostkit: proxy set takes [PROTOCOL] HOST PORT\n";
    return 1;
  }
  const bool single = args.size() == 2;
  const Protocol* protocol = single ? nullptr : FindProtocol(args[0]);
  if (!single && protocol == nullptr) {
    err << "hostkit: unknown protocol " << args[0] << " (http, https, ftp, gopher or socks)\n";
    return 1;
  }
  int port = 0;
  if (!ParsePort(args.back(), port)) {
    err << "hostkit: bad port " << args.back() << "\n";
    return 1;
  }
  const std::string& host = args[args.size() - 2];
  if (host.empty()) {
    err << "hostkit: empty host (use proxy clear)\n";
    return 1;
  }
  ConfigureIE ie;
  const bool ok =
      single ? ie.UseProxyServer(Wide(host), port) : (ie.*protocol->use)(Wide(host), port);
  return Done(ok, "set the " + std::string(single ? "" : args[0] + " ") + "proxy", out, err);
}

int RunProxyClear(const std::string& protocol, std::ostream& out, std::ostream& err) {
  ConfigureIE ie;
  if (protocol.empty()) {
    return Done(ie.UseProxyServer(wstring(), 0), "clear the proxy", out, err);
  }
  const Protocol* entry = FindProtocol(protocol);
  if (entry == nullptr) {
    err << "hostkit: unknown protocol " << protocol << " (http, https, ftp, gopher or socks)\n";
    return 1;
  }
  return Done((ie.*entry->use)(wstring(), 0), "clear the " + protocol + " proxy", out, err);
}

int RunProxyExceptions(const std::vector<std::string>& list, const std::string& local,
                       std::ostream& out, std::ostream& err) {
  ConfigureIE ie;
  if (!list.empty() || local.empty()) {
    std::string joined;
    for (const std::string& host : list) {
      joined += (joined.empty() ? "" : ";") + host;
    }
    if (Done(ie.SetProxyExceptions(Wide(joined)), "set the proxy exceptions", out, err) != 0) {
      return 1;
    }
  }
  if (local.empty()) {
    return 0;
  }
  if (local != "on" && local != "off") {
    err << "hostkit: --local takes on or off\n";
    return 1;
  }
  return Done(ie.EnableLocalBypass(local == "on"), "switch local bypass " + local, out, err);
}

int RunIeShow(std::ostream& out, std::ostream& /*err*/) {
  ConfigureIE ie;
  wstring text;
  int major = 0;
  int minor = 0;
  out << "installed:    " << (ie.IsInstalled() ? "yes" : "no") << "\n";
  out << "version:      " << (ie.GetVersionString(text) ? Narrow(text) : "(none)") << "\n";
  out << "major, minor: " << (ie.GetMajorVersion(major) ? std::to_string(major) : "-") << ", "
      << (ie.GetMinorVersion(minor) ? std::to_string(minor) : "-") << "\n";
  out << "program path: " << (ie.GetProgramPath(text) ? Narrow(text) : "(none)") << "\n";
  out << "home page:    " << (ie.GetHomePage(text) ? Narrow(text) : "(none)") << "\n";
  return 0;
}

int RunIeHomePage(const std::string& url, std::ostream& out, std::ostream& err) {
  return Done(ConfigureIE().SetHomePage(Wide(url)), "set the home page", out, err);
}

int RunIeWizardOff(std::ostream& out, std::ostream& err) {
  return Done(ConfigureIE().DisableConnectionWizard(), "mark the connection wizard completed", out,
              err);
}

}  // namespace hostkit_tool
