// ConfigureIE: the current user's Internet Explorer proxies, exceptions, automatic
// configuration and detection, and the browser's presence, version, home page and connection
// wizard, and the current user's Favorites. Every call reads the registry (or the Favorites
// folder) afresh and writes at once; nothing is kept between calls.
#pragma once

#include <vector>

#include "hostkit/export.h"
#include "hostkit/shell.h"
#include "hostkit/win_types.h"

namespace Hostkit {

class ConfigureIE_impl;

class HOSTKIT_API ConfigureIE {
 public:
  // A shortcut in the Favorites folder: its address and its name relative to the folder,
  // without extension, sub-folders separated by "\" ("News\Daily").
  struct FavoriteLink {
    wstring url;
    wstring name;
  };

  ConfigureIE();
  ConfigureIE(const ConfigureIE& other);
  ConfigureIE& operator=(const ConfigureIE& other);
  ~ConfigureIE();

  // One proxy for every protocol, "server:port"; an empty server switches the proxy off.
  bool UseProxyServer(const wstring& server, int port);
  // The protocol's entry "protocol=server:port" in the proxy list; an empty server removes it.
  bool UseHTTPProxyServer(wstring server, int port);
  bool UseHTTPSProxyServer(wstring server, int port);
  bool UseFTPProxyServer(wstring server, int port);
  bool UseGopherProxyServer(wstring server, int port);
  bool UseSocksProxyServer(wstring server, int port);
  bool GetHTTPProxyServer(wstring& server, int& port);
  bool GetHTTPSProxyServer(wstring& server, int& port);
  bool GetFTPProxyServer(wstring& server, int& port);
  bool GetGopherProxyServer(wstring& server, int& port);
  bool GetSocksProxyServer(wstring& server, int& port);

  // The hosts that bypass the proxy, ";"-separated; "<local>" stands for local addresses.
  bool SetProxyExceptions(const wstring& list);
  bool EnableLocalBypass(bool enable);

  bool UseAutoConfigurationScript(const wstring& url);
  bool GetAutoConfigurationScript(wstring& url);
  bool EnableAutomaticSettingDetection(bool enable);

  bool IsInstalled();
  bool GetProgramPath(wstring& path);
  bool GetVersionString(wstring& version);
  bool GetMajorVersion(int& major);
  bool GetMinorVersion(int& minor);
  bool GetHomePage(wstring& url);
  bool SetHomePage(const wstring& url);
  // Marks the Internet Connection Wizard as completed so that it does not start on first use.
  bool DisableConnectionWizard();

  // Writes the shortcut "Favorites\<name>.URL", creating its sub-folders.
  bool AddFavorite(const FavoriteLink& link);
  // Appends every shortcut of the Favorites folder and its sub-folders to `links`; returns the
  // number appended.
  int GetFavorites(std::vector<FavoriteLink>& links);

 private:
  Pimpl<ConfigureIE_impl> impl_;
};

}  // namespace Hostkit
