// hostkit proxy / hostkit ie: the current user's browser settings through the library's
// ConfigureIE, read and changed on the loaded machine.
#include <array>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "command_line.h"
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

// A port number from 1 to 65535.
bool ParsePort(const std::string& text, int& port) {
  if (text.empty() || text.size() > 5 ||
      text.find_first_not_of("0123456789") != std::string::npos) {
    return false;
  }
  port = std::stoi(text);
  return port >= 1 && port <= 65535;
}

const char* const kSettings = "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";
const char* const kSettingsReason = "the current user's Internet Settings key is missing";

}  // namespace

int RunProxyShow(std::ostream& out, std::ostream& /*err*/) {
  ConfigureIE ie;
  Hostkit::RegWiz reg;
  std::string list;
  unsigned long enable = 0;
  Report report;
  report.Add("proxyList", "proxy list",
             reg.GetKeyVal(HKEY_CURRENT_USER, kSettings, "ProxyServer", list)
                 ? nlohmann::ordered_json(FromAnsi(list))
                 : nlohmann::ordered_json());
  report.Add("proxyEnabled", "proxy enabled",
             reg.GetDwordKeyVal(HKEY_CURRENT_USER, kSettings, "ProxyEnable", enable)
                 ? nlohmann::ordered_json(enable != 0)
                 : nlohmann::ordered_json());
  for (const Protocol& protocol : kProtocols) {
    wstring server;
    int port = 0;
    report.Add(protocol.keyword, std::string("  ") + protocol.keyword,
               (ie.*protocol.get)(server, port)
                   ? nlohmann::ordered_json(Narrow(server) + ":" + std::to_string(port))
                   : nlohmann::ordered_json());
  }
  std::string exceptions;
  report.Add("exceptions", "exceptions",
             reg.GetKeyVal(HKEY_CURRENT_USER, kSettings, "ProxyOverride", exceptions)
                 ? nlohmann::ordered_json(FromAnsi(exceptions))
                 : nlohmann::ordered_json());
  wstring script;
  report.Add("autoConfigScript", "auto config",
             ie.GetAutoConfigurationScript(script) ? nlohmann::ordered_json(Narrow(script))
                                                   : nlohmann::ordered_json());
  report.Print(out);
  return kDone;
}

int RunProxySet(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  const bool single = args.size() == 2;
  const Protocol* protocol = single ? nullptr : FindProtocol(args[0]);
  if (!single && protocol == nullptr) {
    return UsageError("unknown protocol " + args[0] + " (http, https, ftp, gopher or socks)", err);
  }
  int port = 0;
  if (!ParsePort(args.back(), port)) {
    return UsageError("\"" + args.back() + "\" is not a port (1 to 65535)", err);
  }
  const std::string& host = args[args.size() - 2];
  if (host.empty()) {
    return UsageError("empty host (use proxy clear)", err);
  }
  ConfigureIE ie;
  const bool ok =
      single ? ie.UseProxyServer(Wide(host), port) : (ie.*protocol->use)(Wide(host), port);
  return Done(
      ok,
      "set the " + std::string(single ? "" : args[0] + " ") + "proxy " + host + ":" + args.back(),
      kSettingsReason, out, err);
}

int RunProxyClear(const std::string& protocol, std::ostream& out, std::ostream& err) {
  ConfigureIE ie;
  if (protocol.empty()) {
    return Done(ie.UseProxyServer(wstring(), 0), "clear the proxy", kSettingsReason, out, err);
  }
  const Protocol* entry = FindProtocol(protocol);
  return Done((ie.*entry->use)(wstring(), 0), "clear the " + protocol + " proxy", kSettingsReason,
              out, err);
}

int RunProxyExceptions(const std::vector<std::string>& list, const std::string& local,
                       std::ostream& out, std::ostream& err) {
  ConfigureIE ie;
  if (!list.empty() || local.empty()) {
    std::string joined;
    for (const std::string& host : list) {
      joined += (joined.empty() ? "" : ";") + host;
    }
    if (Done(ie.SetProxyExceptions(Wide(joined)), "set the proxy exceptions", kSettingsReason, out,
             err) != kDone) {
      return kFailed;
    }
  }
  if (local.empty()) {
    return kDone;
  }
  return Done(ie.EnableLocalBypass(local == "on"), "switch local bypass " + local, kSettingsReason,
              out, err);
}

int RunIeShow(std::ostream& out, std::ostream& /*err*/) {
  ConfigureIE ie;
  const auto text = [](bool known, const wstring& value) {
    return known ? nlohmann::ordered_json(Narrow(value)) : nlohmann::ordered_json();
  };
  wstring version;
  wstring program;
  wstring home;
  int major = 0;
  int minor = 0;
  Report report;
  report.Add("installed", "installed", ie.IsInstalled());
  report.Add("version", "version", text(ie.GetVersionString(version), version));
  report.Add("majorVersion", "major version",
             ie.GetMajorVersion(major) ? nlohmann::ordered_json(major) : nlohmann::ordered_json());
  report.Add("minorVersion", "minor version",
             ie.GetMinorVersion(minor) ? nlohmann::ordered_json(minor) : nlohmann::ordered_json());
  report.Add("programPath", "program path", text(ie.GetProgramPath(program), program));
  report.Add("homePage", "home page", text(ie.GetHomePage(home), home));
  report.Print(out);
  return kDone;
}

int RunIeHomePage(const std::string& url, std::ostream& out, std::ostream& err) {
  return Done(ConfigureIE().SetHomePage(Wide(url)), "set the home page to " + url,
              "the current user's Internet Explorer Main key is missing", out, err);
}

int RunIeWizardOff(std::ostream& out, std::ostream& err) {
  return Done(ConfigureIE().DisableConnectionWizard(), "mark the connection wizard completed",
              "the Internet Connection Wizard keys are missing", out, err);
}

void AddBrowserCommands(CLI::App& app, CommandTable& run, std::ostream& out, std::ostream& err) {
  struct Args {
    std::vector<std::string> proxy;
    std::string protocol;
    std::vector<std::string> exceptions;
    std::string local;
    std::string homePage;
    std::string wizard;
    std::string favoriteName;
    std::string favoriteUrl;
  };
  auto args = std::make_shared<Args>();
  CLI::App* proxy = app.add_subcommand("proxy", "the current user's browser proxies");
  proxy->require_subcommand(1);
  run[AddCommand(*proxy, "show", "the proxy list, exceptions and script", "hostkit proxy show")] =
      [&] { return RunProxyShow(out, err); };
  CLI::App* set = AddCommand(*proxy, "set", "set the proxy: [PROTOCOL] HOST PORT",
                             "hostkit proxy set proxy.example.net 8080");
  set->add_option("ARGS", args->proxy, "[http|https|ftp|gopher|socks] HOST PORT (1 to 65535)")
      ->required()
      ->expected(2, 3);
  run[set] = [args, &out, &err] { return RunProxySet(args->proxy, out, err); };
  CLI::App* clear =
      AddCommand(*proxy, "clear", "clear the proxy or one protocol's entry", "hostkit proxy clear");
  clear->add_option("PROTOCOL", args->protocol, "http, https, ftp, gopher or socks")
      ->check(CLI::IsMember({"http", "https", "ftp", "gopher", "socks"}));
  run[clear] = [args, &out, &err] { return RunProxyClear(args->protocol, out, err); };
  CLI::App* exceptions =
      AddCommand(*proxy, "exceptions", "set the hosts that bypass the proxy",
                 "hostkit proxy exceptions intranet.example \"*.local\" --local on");
  exceptions->add_option("HOSTS", args->exceptions, "hosts; none clears the list");
  exceptions->add_option("--local", args->local, "on or off: bypass for local addresses")
      ->check(CLI::IsMember({"on", "off"}));
  run[exceptions] = [args, &out, &err] {
    return RunProxyExceptions(args->exceptions, args->local, out, err);
  };

  CLI::App* ie = app.add_subcommand("ie", "Internet Explorer: presence, version, home page");
  ie->require_subcommand(1);
  run[AddCommand(*ie, "show", "presence, version, program path, home page", "hostkit ie show")] =
      [&] { return RunIeShow(out, err); };
  CLI::App* homePage = AddCommand(*ie, "homepage", "set the current user's home page",
                                  "hostkit ie homepage http://www.example.com/");
  homePage->add_option("URL", args->homePage, "the start page")->required();
  run[homePage] = [args, &out, &err] { return RunIeHomePage(args->homePage, out, err); };
  CLI::App* wizard =
      AddCommand(*ie, "wizard", "the Internet Connection Wizard", "hostkit ie wizard off");
  wizard->add_option("STATE", args->wizard, "off: mark it completed")
      ->required()
      ->check(CLI::IsMember({"off"}));
  run[wizard] = [&] { return RunIeWizardOff(out, err); };

  CLI::App* favorites = app.add_subcommand("favorites", "the current user's Favorites");
  favorites->require_subcommand(1);
  run[AddCommand(*favorites, "list", "every shortcut and its address", "hostkit favorites list")] =
      [&] { return RunFavoritesList(out, err); };
  CLI::App* add = AddCommand(*favorites, "add", "add a shortcut: NAME URL",
                             "hostkit favorites add \"News\\Daily\" http://news.example.com/");
  add->add_option("NAME", args->favoriteName, "e.g. News\\Daily")->required();
  add->add_option("URL", args->favoriteUrl, "the address")->required();
  run[add] = [args, &out, &err] {
    return RunFavoritesAdd(args->favoriteName, args->favoriteUrl, out, err);
  };
}

}  // namespace hostkit_tool
