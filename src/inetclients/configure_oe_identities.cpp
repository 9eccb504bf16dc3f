// Outlook Express identities: finding one by name, making a new one with its first accounts,
// removing one, and tidying the shared account list after accounts moved into an identity.
#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "hostkit/regwiz.h"
#include "hostkit/strings.h"
#include "inetclients/configure_oe_impl.h"
#include "platform/com.h"

namespace Hostkit {

namespace oe_keys {

wstring SubKey(wstring path, const wstring& name) {
  path += u'\\';
  path += name;
  return path;
}

wstring IdentityPath(const wstring& id) { return SubKey(kIdentities, id); }

bool FindIdentity(const wstring& name, wstring& id) {
  RegWiz reg;
  std::vector<wstring> ids;
  if (!reg.GetSubKeyNames(HKEY_CURRENT_USER, kIdentities, ids)) {
    return false;
  }
  for (const wstring& candidate : ids) {
    wstring username;
    if (reg.GetKeyVal(HKEY_CURRENT_USER, IdentityPath(candidate).c_str(), kUsername, username) &&
        username == name) {
      id = candidate;
      return true;
    }
  }
  return false;
}

wstring FindAccount(const wstring& accountsPath, const wstring& name) {
  RegWiz reg;
  std::vector<wstring> keys;
  reg.GetSubKeyNames(HKEY_CURRENT_USER, accountsPath.c_str(), keys);
  for (const wstring& key : keys) {
    wstring path = SubKey(accountsPath, key);
    wstring accountName;
    if (reg.GetKeyVal(HKEY_CURRENT_USER, path.c_str(), kAccountName, accountName) &&
        accountName == name) {
      return path;
    }
  }
  return {};
}

wstring NewIdentityId() {
  GUID guid{};
  if (platform::CoCreateGuid(&guid) != S_OK) {
    return {};
  }
  // The third group is lower-case hexadecimal, the others upper-case: the form Outlook Express
  // identities are known by.
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "{%08lX-%04X-%04x-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                static_cast<unsigned long>(guid.Data1), guid.Data2, guid.Data3, guid.Data4[0],
                guid.Data4[1], guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5],
                guid.Data4[6], guid.Data4[7]);
  wstring id;
  ConvertANSIToUnicode(text.data(), id);
  return id;
}

}  // namespace oe_keys

using namespace oe_keys;

bool ConfigureOE_impl::CreateIdentity(const AccountInfo& info) {
  const wstring id = NewIdentityId();
  RegWiz reg;
  if (id.empty()) {
    return false;
  }
  // Without an "Identities" key the counter and the pointers below are not written: only the
  // creation of the identity's own key makes "Identities", as its parent.
  unsigned long ordinal = 0;
  reg.GetDwordKeyVal(HKEY_CURRENT_USER, kIdentities, HK_WIDE("Identity Ordinal"), ordinal);
  reg.SetDwordKeyVal(HKEY_CURRENT_USER, kIdentities, HK_WIDE("Identity Ordinal"), ordinal + 1);
  for (const WCHAR* name :
       {HK_WIDE("Last User ID"), HK_WIDE("Default User ID"), HK_WIDE("Start As")}) {
    reg.SetKeyVal(HKEY_CURRENT_USER, kIdentities, name, id.c_str());
  }
  reg.SetKeyVal(HKEY_CURRENT_USER, kIdentities, HK_WIDE("Last Username"), info.userName.c_str());

  const wstring identity = IdentityPath(id);
  reg.CreateKey(HKEY_CURRENT_USER, identity.c_str());
  reg.SetKeyVal(HKEY_CURRENT_USER, identity.c_str(), HK_WIDE("User ID"), id.c_str());
  reg.SetKeyVal(HKEY_CURRENT_USER, identity.c_str(), kUsername, info.userName.c_str());
  reg.SetDwordKeyVal(HKEY_CURRENT_USER, identity.c_str(), HK_WIDE("Identity Ordinal"), ordinal);
  const wstring software = identity + HK_WIDE("\\Software");
  const wstring microsoft = software + HK_WIDE("\\Microsoft");
  managerPath_ = identity + kManagerBelowIdentity;
  accountsPath_ = managerPath_ + kAccounts;
  for (const wstring& key : {software, microsoft, managerPath_}) {
    reg.CreateKey(HKEY_CURRENT_USER, key.c_str());
  }
  const WCHAR* manager = managerPath_.c_str();

  if (!info.nntpServer.empty()) {
    reg.SetDwordKeyVal(HKEY_CURRENT_USER, manager, HK_WIDE("Default News Account"), 2);
    reg.CreateKey(HKEY_CURRENT_USER, accountsPath_.c_str());
    const wstring news = accountsPath_ + HK_WIDE("\\00000002");
    reg.CreateKey(HKEY_CURRENT_USER, news.c_str());
    WriteNewsAccount(news, info);
  }
  reg.SetDwordKeyVal(HKEY_CURRENT_USER, manager, kAccountName, 2);
  reg.SetDwordKeyVal(HKEY_CURRENT_USER, manager, HK_WIDE("Default Mail Account"), 1);
  if (!info.newsOnly) {
    reg.CreateKey(HKEY_CURRENT_USER, accountsPath_.c_str());
    const wstring mail = accountsPath_ + HK_WIDE("\\00000001");
    reg.CreateKey(HKEY_CURRENT_USER, mail.c_str());
    const WCHAR* key = mail.c_str();
    reg.SetKeyVal(HKEY_CURRENT_USER, key, kAccountName, info.accountName.c_str());
    reg.SetDwordKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("Connection Type"), 3);
    reg.SetDwordKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("POP3 Prompt for Password"), 1);
    reg.SetKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("POP3 Server"), info.pop3Server.c_str());
    reg.SetDwordKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("POP3 Use Sicily"), 0);
    reg.SetKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("POP3 User Name"), info.pop3UserName.c_str());
    reg.SetKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("SMTP Display Name"), info.displayName.c_str());
    reg.SetKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("SMTP Email Address"), info.emailAddress.c_str());
    reg.SetKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("SMTP Server"), info.smtpServer.c_str());
    ApplyConnection(mail, info.connectoid);
  }
  const wstring express = microsoft + HK_WIDE("\\Outlook Express");
  const wstring version = express + HK_WIDE("\\5.0");
  reg.CreateKey(HKEY_CURRENT_USER, express.c_str());
  reg.CreateKey(HKEY_CURRENT_USER, version.c_str());
  reg.SetDwordKeyVal(HKEY_CURRENT_USER, version.c_str(), HK_WIDE("Migration Done"), 1);
  return true;
}

// Once an account lives under an identity, a shared account of the same name is a stale copy
// (typically what the identity's account was set up from before identities existed): Outlook
// Express would offer it again, and the user would see the account twice. So after SetAccount
// placed accounts under an identity, the shared list loses every account whose "Account Name"
// equals one of the names just placed that the identity's accounts key now really holds, and
// a shared "Default Mail Account" or "Default News Account" naming a removed key is removed
// with it. Accounts of other names and other identities are left alone.
void ConfigureOE_impl::TidySharedList(const wstring& id, const AccountInfo& info) {
  std::vector<wstring> placed;
  if (!info.newsOnly) {
    placed.push_back(info.accountName);
  }
  if (!info.nntpServer.empty()) {
    placed.push_back(info.nntpServer);
  }
  const wstring identityAccounts = IdentityPath(id) + kManagerBelowIdentity + kAccounts;
  const wstring sharedAccounts = wstring(kSharedManager) + kAccounts;
  RegWiz reg;
  for (const wstring& name : placed) {
    if (FindAccount(identityAccounts, name).empty()) {
      continue;
    }
    for (wstring stale = FindAccount(sharedAccounts, name); !stale.empty();
         stale = FindAccount(sharedAccounts, name)) {
      if (!reg.DeleteKey(HKEY_CURRENT_USER, stale.c_str()) ||
          reg.DoesKeyExist(HKEY_CURRENT_USER, stale.c_str())) {
        break;
      }
      const wstring keyName = stale.substr(stale.rfind(u'\\') + 1);
      for (const WCHAR* value :
           {HK_WIDE("Default Mail Account"), HK_WIDE("Default News Account")}) {
        wstring current;
        if (reg.GetKeyVal(HKEY_CURRENT_USER, kSharedManager, value, current) &&
            current == keyName) {
          reg.DeleteKeyVal(HKEY_CURRENT_USER, kSharedManager, value);
        }
      }
    }
  }
}

// Only the identity's key goes, with everything below it. The "Identities" values that named
// it stay as they are, as does the ordinal counter.
bool ConfigureOE_impl::RemoveIdentity(const wstring& identityName) {
  wstring id;
  return FindIdentity(identityName, id) &&
         RegWiz().DeleteKey(HKEY_CURRENT_USER, IdentityPath(id).c_str());
}

}  // namespace Hostkit
