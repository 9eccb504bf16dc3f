// ConfigureOE: the shell that forwards to ConfigureOE_impl.
#include "hostkit/configure_oe.h"

#include "foundation/shell_impl.h"
#include "inetclients/configure_oe_impl.h"

namespace Hostkit {

template class Pimpl<ConfigureOE_impl>;

ConfigureOE::ConfigureOE() = default;
ConfigureOE::ConfigureOE(const ConfigureOE& other) = default;
ConfigureOE& ConfigureOE::operator=(const ConfigureOE& other) = default;
ConfigureOE::~ConfigureOE() = default;

bool ConfigureOE::SetAccount(const AccountInfo& info) {
  return Forward(impl_, false, [&](ConfigureOE_impl& impl) { return impl.SetAccount(info); });
}
bool ConfigureOE::GetAccountInfo(std::vector<AccountInfo>& list) {
  return Forward(impl_, false, [&](ConfigureOE_impl& impl) { return impl.GetAccountInfo(list); });
}
bool ConfigureOE::RemoveAccount(const AccountInfo& info) {
  return Forward(impl_, false, [&](ConfigureOE_impl& impl) { return impl.RemoveAccount(info); });
}
// The interface takes the name by value.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool ConfigureOE::RemoveAccount(wstring accountName) {
  return Forward(impl_, false,
                 [&](ConfigureOE_impl& impl) { return impl.RemoveAccountNamed(accountName); });
}
bool ConfigureOE::RemoveIdentity(const AccountInfo& info) {
  return Forward(impl_, false,
                 [&](ConfigureOE_impl& impl) { return impl.RemoveIdentity(info.userName); });
}
// The interface takes the name by value.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool ConfigureOE::RemoveIdentity(wstring identityName) {
  return Forward(impl_, false,
                 [&](ConfigureOE_impl& impl) { return impl.RemoveIdentity(identityName); });
}

}  // namespace Hostkit
