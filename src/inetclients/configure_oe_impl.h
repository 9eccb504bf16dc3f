// ConfigureOE_impl: Outlook Express accounts and identities behind the ConfigureOE shell. Between
// the steps of one call it keeps where the accounts in use live and the highest-numbered
// account key found there.
#pragma once

#include <vector>

#include "hostkit/configure_oe.h"
#include "hostkit/win_types.h"

namespace Hostkit {

class ConfigureOE_impl {
 public:
  using AccountInfo = ConfigureOE::AccountInfo;

  bool SetAccount(const AccountInfo& info);
  bool GetAccountInfo(std::vector<AccountInfo>& list);
  bool RemoveAccount(const AccountInfo& info);
  bool RemoveAccountNamed(const wstring& accountName);
  bool RemoveIdentity(const wstring& identityName);

 private:
  // Points the paths below at the accounts of the default identity, or at the shared list when
  // there is no default identity, `useIdentity` is false or `forceShared` is set; then numbers
  // the accounts there. False when the accounts key is missing (and not forced shared).
  bool ChooseAccounts(bool useIdentity, bool forceShared);
  // Points the paths at the identity `id`'s accounts and numbers them.
  void UseIdentityAccounts(const wstring& id);
  // Remembers the highest-numbered account key of the accounts in use.
  void NumberAccounts();
  // Finds the account named `name` in the accounts in use, or creates the next-numbered key,
  // writes the mail or news account there and, for `info.isDefault`, names it the default.
  bool PlaceAccount(const AccountInfo& info, bool news);
  bool CreateIdentity(const AccountInfo& info);
  // Removes from the shared list what now lives under the identity `id`.
  void TidySharedList(const wstring& id, const AccountInfo& info);

  wstring lastAccount_;   // name of the highest-numbered account key found
  wstring managerPath_;   // the account-manager key in use
  wstring accountsPath_;  // the accounts key in use
};

}  // namespace Hostkit

namespace Hostkit::oe_keys {

// Key paths below HKEY_CURRENT_USER.
inline const WCHAR* const kIdentities = HK_WIDE("Identities");
inline const WCHAR* const kSharedManager = HK_WIDE("Software\\Microsoft\\Internet Account Manager");
inline const WCHAR* const kManagerBelowIdentity =
    HK_WIDE("\\Software\\Microsoft\\Internet Account Manager");
inline const WCHAR* const kAccounts = HK_WIDE("\\Accounts");
inline const WCHAR* const kAccountName = HK_WIDE("Account Name");
inline const WCHAR* const kUsername = HK_WIDE("Username");

// "path\name".
wstring SubKey(wstring path, const wstring& name);
// "Identities\<id>".
wstring IdentityPath(const wstring& id);
// The id of the identity whose "Username" is exactly `name`; false when there is none.
bool FindIdentity(const wstring& name, wstring& id);
// The path of the first account key (in subkey order) below `accountsPath` whose
// "Account Name" is exactly `name`; empty when there is none.
wstring FindAccount(const wstring& accountsPath, const wstring& name);
// "{XXXXXXXX-XXXX-xxxx-XXXX-XXXXXXXXXXXX}" from a new GUID; empty when none can be made.
wstring NewIdentityId();

// The account writers: each acts only on an existing key and answers whether it exists.
bool WriteMailAccount(const wstring& path, const ConfigureOE::AccountInfo& info);
bool WriteNewsAccount(const wstring& path, const ConfigureOE::AccountInfo& info);
// Dial-up when `connectoid` is set ("Connection Type" 2 and the name), else the LAN (3, and no
// "Connectoid").
void ApplyConnection(const wstring& path, const wstring& connectoid);

}  // namespace Hostkit::oe_keys
