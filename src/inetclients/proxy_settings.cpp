// The current user's proxy list: one proxy for every protocol, or entries "protocol=host:port"
// joined by ";", with the exception list beside it.
#include <limits>

#include "hostkit/regwiz.h"
#include "inetclients/configure_ie_impl.h"

namespace Hostkit {

namespace {

// The settings key is written with its trailing backslash, as the browser's own set-up does.
const WCHAR* const kSettings =
    HK_WIDE("Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings\\");
const WCHAR* const kProxyServer = HK_WIDE("ProxyServer");
const WCHAR* const kProxyEnable = HK_WIDE("ProxyEnable");
const WCHAR* const kProxyOverride = HK_WIDE("ProxyOverride");
const WCHAR* const kAutoConfigUrl = HK_WIDE("AutoConfigURL");
const wstring kLocal = HK_WIDE("<local>");

bool ReadSetting(const WCHAR* name, wstring& text) {
  return RegWiz().GetKeyVal(HKEY_CURRENT_USER, kSettings, name, text);
}

bool WriteSetting(const WCHAR* name, const wstring& text) {
  return RegWiz().SetKeyVal(HKEY_CURRENT_USER, kSettings, name, text.c_str());
}

bool DeleteSetting(const WCHAR* name) {
  return RegWiz().DeleteKeyVal(HKEY_CURRENT_USER, kSettings, name);
}

// Writes the proxy list and, once it is stored, switches the proxy on.
bool WriteProxyList(const wstring& text) {
  return WriteSetting(kProxyServer, text) &&
         RegWiz().SetDwordKeyVal(HKEY_CURRENT_USER, kSettings, kProxyEnable, 1);
}

wstring Entry(const wstring& protocol, const wstring& server, int port) {
  return protocol + HK_WIDE("=") + server + HK_WIDE(":") + ie_text::Decimal(port);
}

// Erases the protocol's entry, found at `start`: the count erased is the index where the entry
// ends, not its length, so an entry that is not first also takes up to `start` characters
// behind it. This surgery is deliberate and kept exactly: callers rely on the lists it leaves.
void EraseEntry(wstring& text, std::size_t start) {
  std::size_t end = text.find(u';', start);
  if (end == wstring::npos) {
    end = text.size();
  }
  text.erase(start, end);
}

bool HasLocalBypass(const wstring& exceptions) { return exceptions.find(kLocal) != wstring::npos; }

}  // namespace

namespace ie_text {

int LeadingDecimal(const wstring& text) {
  std::size_t i = 0;
  while (i < text.size() && (text[i] == u' ' || (text[i] >= u'\t' && text[i] <= u'\r'))) {
    ++i;
  }
  bool negative = false;
  if (i < text.size() && (text[i] == u'-' || text[i] == u'+')) {
    negative = text[i] == u'-';
    ++i;
  }
  long long value = 0;
  for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i) {
    value = value * 10 + (text[i] - u'0');
    if (value > std::numeric_limits<int>::max()) {
      value = std::numeric_limits<int>::max() + 1LL;  // saturates at the int range
    }
  }
  if (negative) {
    value = -value;
  }
  if (value > std::numeric_limits<int>::max()) {
    return std::numeric_limits<int>::max();
  }
  return static_cast<int>(value);
}

wstring Decimal(int value) {
  const std::string digits = std::to_string(value);
  return wstring(digits.begin(), digits.end());
}

}  // namespace ie_text

bool ConfigureIE_impl::UseProxyServer(const wstring& server, int port) {
  if (server.empty() && RegWiz().SetDwordKeyVal(HKEY_CURRENT_USER, kSettings, kProxyEnable, 0)) {
    DeleteSetting(kProxyServer);
    return !RegWiz().DoesValNameExist(HKEY_CURRENT_USER, kSettings, kProxyServer);
  }
  return WriteProxyList(server + HK_WIDE(":") + ie_text::Decimal(port));
}

bool ConfigureIE_impl::UseProtocolProxyServer(const wstring& protocol, const wstring& server,
                                              int port) {
  wstring text;
  if (!ReadSetting(kProxyServer, text)) {
    return server.empty() || WriteProxyList(Entry(protocol, server, port));
  }
  const std::size_t start = text.find(protocol + HK_WIDE("="));
  if (server.empty()) {
    if (start == wstring::npos) {
      return true;
    }
    EraseEntry(text, start);
    if (!text.empty() && text.front() == u';') {
      text.erase(0, 1);
    }
    if (!text.empty() && text.back() == u';') {
      text.pop_back();
    }
    // The proxy stays switched on even when no entry is left.
    return WriteSetting(kProxyServer, text);
  }
  if (start == wstring::npos) {
    if (!text.empty()) {
      text += u';';
    }
  } else {
    // The separator that followed the old entry stays where it was and the new entry is joined
    // to the end of what is left, as the browser's own tools rewrite the list.
    EraseEntry(text, start);
  }
  return WriteProxyList(text + Entry(protocol, server, port));
}

bool ConfigureIE_impl::GetProtocolProxyServer(const wstring& protocol, wstring& server, int& port) {
  wstring text;
  if (!ReadSetting(kProxyServer, text)) {
    return false;
  }
  const wstring key = protocol + HK_WIDE("=");
  std::size_t start = text.find(key);
  if (start == wstring::npos) {
    return false;
  }
  start += key.size();
  std::size_t colon = text.find(u':', start);
  if (colon == wstring::npos) {
    colon = text.size();
  }
  std::size_t end = text.find(u';', colon);
  if (end == wstring::npos) {
    end = text.size();
  }
  server = text.substr(start, colon - start);
  port = colon + 1 <= text.size() ? ie_text::LeadingDecimal(text.substr(colon + 1, end)) : 0;
  return true;
}

bool ConfigureIE_impl::SetProxyExceptions(const wstring& list) {
  wstring current;
  ReadSetting(kProxyOverride, current);
  const bool bypass = HasLocalBypass(current);
  if (!list.empty()) {
    return WriteSetting(kProxyOverride, bypass ? list + HK_WIDE(";") + kLocal : list);
  }
  if (bypass) {
    return WriteSetting(kProxyOverride, current.substr(current.find(kLocal)));
  }
  return DeleteSetting(kProxyOverride);
}

bool ConfigureIE_impl::EnableLocalBypass(bool enable) {
  wstring current;
  ReadSetting(kProxyOverride, current);
  const bool bypass = HasLocalBypass(current);
  if (enable == bypass) {
    return true;
  }
  if (enable) {
    return WriteSetting(kProxyOverride, current.empty() ? kLocal : current + HK_WIDE(";") + kLocal);
  }
  // Everything from the separator before "<local>" on goes, entries behind it included.
  std::size_t at = current.find(kLocal);
  if (at != 0) {
    --at;
  }
  current.erase(at);
  return current.empty() ? DeleteSetting(kProxyOverride) : WriteSetting(kProxyOverride, current);
}

bool ConfigureIE_impl::UseAutoConfigurationScript(const wstring& url) {
  if (!url.empty()) {
    return WriteSetting(kAutoConfigUrl, url);
  }
  if (RegWiz().DoesValNameExist(HKEY_CURRENT_USER, kSettings, kAutoConfigUrl)) {
    return DeleteSetting(kAutoConfigUrl);
  }
  return true;
}

bool ConfigureIE_impl::GetAutoConfigurationScript(wstring& url) {
  return ReadInto(HKEY_CURRENT_USER, kSettings, kAutoConfigUrl, url);
}

}  // namespace Hostkit
