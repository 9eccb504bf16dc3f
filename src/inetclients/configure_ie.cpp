// ConfigureIE: the shell that forwards to ConfigureIE_impl. The five per-protocol members only
// supply their protocol's keyword.
#include "hostkit/configure_ie.h"

#include <utility>

#include "foundation/shell_impl.h"
#include "inetclients/configure_ie_impl.h"

namespace Hostkit {

template class Pimpl<ConfigureIE_impl>;

ConfigureIE::ConfigureIE() = default;
ConfigureIE::ConfigureIE(const ConfigureIE& other) = default;
ConfigureIE& ConfigureIE::operator=(const ConfigureIE& other) = default;
ConfigureIE::~ConfigureIE() = default;

namespace {

bool UseProtocol(const Pimpl<ConfigureIE_impl>& impl, const WCHAR* protocol, const wstring& server,
                 int port) {
  return Forward(impl, false, [&](ConfigureIE_impl& ie) {
    return ie.UseProtocolProxyServer(protocol, server, port);
  });
}

bool GetProtocol(const Pimpl<ConfigureIE_impl>& impl, const WCHAR* protocol, wstring& server,
                 int& port) {
  return Forward(impl, false, [&](ConfigureIE_impl& ie) {
    return ie.GetProtocolProxyServer(protocol, server, port);
  });
}

}  // namespace

bool ConfigureIE::UseProxyServer(const wstring& server, int port) {
  return Forward(impl_, false,
                 [&](ConfigureIE_impl& impl) { return impl.UseProxyServer(server, port); });
}
// The interface takes the server by value.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool ConfigureIE::UseHTTPProxyServer(wstring server, int port) {
  return UseProtocol(impl_, HK_WIDE("http"), server, port);
}
// The interface takes the server by value.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool ConfigureIE::UseHTTPSProxyServer(wstring server, int port) {
  return UseProtocol(impl_, HK_WIDE("https"), server, port);
}
// The interface takes the server by value.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool ConfigureIE::UseFTPProxyServer(wstring server, int port) {
  return UseProtocol(impl_, HK_WIDE("ftp"), server, port);
}
// The interface takes the server by value.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool ConfigureIE::UseGopherProxyServer(wstring server, int port) {
  return UseProtocol(impl_, HK_WIDE("gopher"), server, port);
}
// The interface takes the server by value.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool ConfigureIE::UseSocksProxyServer(wstring server, int port) {
  return UseProtocol(impl_, HK_WIDE("socks"), server, port);
}
bool ConfigureIE::GetHTTPProxyServer(wstring& server, int& port) {
  return GetProtocol(impl_, HK_WIDE("http"), server, port);
}
bool ConfigureIE::GetHTTPSProxyServer(wstring& server, int& port) {
  return GetProtocol(impl_, HK_WIDE("https"), server, port);
}
bool ConfigureIE::GetFTPProxyServer(wstring& server, int& port) {
  return GetProtocol(impl_, HK_WIDE("ftp"), server, port);
}
bool ConfigureIE::GetGopherProxyServer(wstring& server, int& port) {
  return GetProtocol(impl_, HK_WIDE("gopher"), server, port);
}
bool ConfigureIE::GetSocksProxyServer(wstring& server, int& port) {
  return GetProtocol(impl_, HK_WIDE("socks"), server, port);
}

bool ConfigureIE::SetProxyExceptions(const wstring& list) {
  return Forward(impl_, false,
                 [&](ConfigureIE_impl& impl) { return impl.SetProxyExceptions(list); });
}
bool ConfigureIE::EnableLocalBypass(bool enable) {
  return Forward(impl_, false,
                 [&](ConfigureIE_impl& impl) { return impl.EnableLocalBypass(enable); });
}
bool ConfigureIE::UseAutoConfigurationScript(const wstring& url) {
  return Forward(impl_, false,
                 [&](ConfigureIE_impl& impl) { return impl.UseAutoConfigurationScript(url); });
}
bool ConfigureIE::GetAutoConfigurationScript(wstring& url) {
  return Forward(impl_, false,
                 [&](ConfigureIE_impl& impl) { return impl.GetAutoConfigurationScript(url); });
}
bool ConfigureIE::EnableAutomaticSettingDetection(bool enable) {
  return Forward(impl_, false, [&](ConfigureIE_impl& impl) {
    return impl.EnableAutomaticSettingDetection(enable);
  });
}

bool ConfigureIE::IsInstalled() {
  return Forward(impl_, false, [&](ConfigureIE_impl& impl) { return impl.IsInstalled(); });
}
bool ConfigureIE::GetProgramPath(wstring& path) {
  return Forward(impl_, false, [&](ConfigureIE_impl& impl) { return impl.GetProgramPath(path); });
}
bool ConfigureIE::GetVersionString(wstring& version) {
  return Forward(impl_, false,
                 [&](ConfigureIE_impl& impl) { return impl.GetVersionString(version); });
}
bool ConfigureIE::GetMajorVersion(int& major) {
  return Forward(impl_, false, [&](ConfigureIE_impl& impl) { return impl.GetMajorVersion(major); });
}
bool ConfigureIE::GetMinorVersion(int& minor) {
  return Forward(impl_, false, [&](ConfigureIE_impl& impl) { return impl.GetMinorVersion(minor); });
}
bool ConfigureIE::GetHomePage(wstring& url) {
  return Forward(impl_, false, [&](ConfigureIE_impl& impl) { return impl.GetHomePage(url); });
}
bool ConfigureIE::SetHomePage(const wstring& url) {
  return Forward(impl_, false, [&](ConfigureIE_impl& impl) { return impl.SetHomePage(url); });
}
bool ConfigureIE::DisableConnectionWizard() {
  return Forward(impl_, false,
                 [&](ConfigureIE_impl& impl) { return impl.DisableConnectionWizard(); });
}

bool ConfigureIE::AddFavorite(const FavoriteLink& link) {
  return Forward(impl_, false, [&](ConfigureIE_impl& impl) { return impl.AddFavorite(link); });
}
int ConfigureIE::GetFavorites(std::vector<FavoriteLink>& links) {
  return Forward(impl_, 0, [&](ConfigureIE_impl& impl) { return impl.GetFavorites(links); });
}

}  // namespace Hostkit
