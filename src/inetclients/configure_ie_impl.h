// ConfigureIE_impl: the browser settings behind the ConfigureIE shell. Stateless: every member
// reads the registry afresh and writes at once.
#pragma once

#include <vector>

#include "hostkit/configure_ie.h"
#include "hostkit/win_types.h"

namespace Hostkit {

class ConfigureIE_impl {
 public:
  // Proxies and connection settings (proxy_settings.cpp, connection_settings.cpp).
  bool UseProxyServer(const wstring& server, int port);
  bool UseProtocolProxyServer(const wstring& protocol, const wstring& server, int port);
  bool GetProtocolProxyServer(const wstring& protocol, wstring& server, int& port);
  bool SetProxyExceptions(const wstring& list);
  bool EnableLocalBypass(bool enable);
  bool UseAutoConfigurationScript(const wstring& url);
  bool GetAutoConfigurationScript(wstring& url);
  bool EnableAutomaticSettingDetection(bool enable);

  // Presence, version, home page and wizard (browser_info.cpp).
  bool IsInstalled();
  bool GetProgramPath(wstring& path);
  bool GetVersionString(wstring& version);
  bool GetMajorVersion(int& major);
  bool GetMinorVersion(int& minor);
  bool GetHomePage(wstring& url);
  bool SetHomePage(const wstring& url);
  bool DisableConnectionWizard();

  // Favorites (favorites.cpp).
  bool AddFavorite(const ConfigureIE::FavoriteLink& link);
  int GetFavorites(std::vector<ConfigureIE::FavoriteLink>& links);
};

// Reads a string value into `value`, which is left untouched when the read fails.
bool ReadInto(HKEY root, const WCHAR* path, const WCHAR* name, wstring& value);

namespace ie_text {

// The value of the leading decimal number of `text`, as the C library's text-to-integer
// conversion reads it: blanks skipped, an optional sign, digits up to the first non-digit; 0
// when there are none.
int LeadingDecimal(const wstring& text);

// `value` in decimal, a negative value with a leading "-".
wstring Decimal(int value);

}  // namespace ie_text

}  // namespace Hostkit
