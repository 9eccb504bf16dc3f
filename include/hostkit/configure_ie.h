/// \file
/// ConfigureIE: the current user's Internet Explorer proxies, exceptions, automatic
/// configuration and detection, and the browser's presence, version, home page and connection
/// wizard, and the current user's Favorites. Every call reads the registry (or the Favorites
/// folder) afresh and writes at once; nothing is kept between calls.
#pragma once

#include <vector>

#include "hostkit/export.h"
#include "hostkit/shell.h"
#include "hostkit/win_types.h"

namespace Hostkit {

class ConfigureIE_impl;

/// The current user's Internet Explorer settings: proxy servers and exceptions, automatic
/// configuration, home page, connection wizard, version and favorites.
class HOSTKIT_API ConfigureIE {
 public:
  /// A shortcut in the Favorites folder: its address and its name relative to the folder,
  /// without extension, sub-folders separated by a backslash (`News\Daily`).
  struct FavoriteLink {
    wstring url;   ///< the address the shortcut opens
    wstring name;  ///< the shortcut's name below the Favorites folder, without ".url"
  };

  ///@{
  /// Creates, copies (each copy owns its own implementation object) and destroys
  /// the object.
  ConfigureIE();
  ConfigureIE(const ConfigureIE& other);
  ConfigureIE& operator=(const ConfigureIE& other);
  ~ConfigureIE();
  ///@}

  /// One proxy for every protocol, "server:port"; an empty server switches the proxy off.
  bool UseProxyServer(const wstring& server, int port);
  ///@{
  /// The protocol's entry "protocol=server:port" in the proxy list (http, https, ftp, gopher,
  /// socks); an empty server removes it. Writing an entry switches the proxy on. False when a
  /// write fails.
  bool UseHTTPProxyServer(wstring server, int port);
  bool UseHTTPSProxyServer(wstring server, int port);
  bool UseFTPProxyServer(wstring server, int port);
  bool UseGopherProxyServer(wstring server, int port);
  bool UseSocksProxyServer(wstring server, int port);
  ///@}
  ///@{
  /// Reads the protocol's entry of the proxy list ("http=proxy" gives port 0). False, outputs
  /// untouched, when there is no proxy list or no entry for the protocol; a single proxy for
  /// every protocol (no "=") is not reported here.
  bool GetHTTPProxyServer(wstring& server, int& port);
  bool GetHTTPSProxyServer(wstring& server, int& port);
  bool GetFTPProxyServer(wstring& server, int& port);
  bool GetGopherProxyServer(wstring& server, int& port);
  bool GetSocksProxyServer(wstring& server, int& port);
  ///@}

  /// Replaces the hosts that bypass the proxy (";"-separated), keeping "<local>" if it was
  /// there.
  bool SetProxyExceptions(const wstring& list);
  /// Adds or removes "<local>": whether local addresses bypass the proxy.
  bool EnableLocalBypass(bool enable);

  /// Writes the automatic configuration script's address; an empty `url` removes it.
  bool UseAutoConfigurationScript(const wstring& url);
  /// Reads the automatic configuration script's address; false when there is none.
  bool GetAutoConfigurationScript(wstring& url);
  /// Switches automatic proxy detection in the connection settings record; false, creating
  /// nothing, when the record does not exist.
  bool EnableAutomaticSettingDetection(bool enable);

  /// Whether Internet Explorer's registry key exists.
  bool IsInstalled();
  /// The browser's program folder; false when the set-up keys name none.
  bool GetProgramPath(wstring& path);
  /// The version text as stored ("6.0.2900.2180"); false when not installed.
  bool GetVersionString(wstring& version);
  /// The number before the version's first dot; false when not installed or not found.
  bool GetMajorVersion(int& major);
  /// The number between the version's first and second dots; false when not installed or the
  /// text has fewer than two dots.
  bool GetMinorVersion(int& minor);
  /// The current user's home page; false when it cannot be read.
  bool GetHomePage(wstring& url);
  /// Writes the current user's home page; false when not installed or the write fails.
  bool SetHomePage(const wstring& url);

  /// Marks the Internet Connection Wizard as completed so that it does not start on first use.
  bool DisableConnectionWizard();

  /// Writes the shortcut "Favorites\<name>.URL", creating its sub-folders.
  bool AddFavorite(const FavoriteLink& link);
  /// Appends every shortcut of the Favorites folder and its sub-folders to `links`; returns the
  /// number appended.
  int GetFavorites(std::vector<FavoriteLink>& links);

 private:
  Pimpl<ConfigureIE_impl> impl_;
};

}  // namespace Hostkit
