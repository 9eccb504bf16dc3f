// Outlook Express mail and news accounts: where they live (the default identity's accounts or
// the shared list), their numbering, the writers, and the operations of ConfigureOE.
#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "hostkit/regwiz.h"
#include "inetclients/configure_ie_impl.h"
#include "inetclients/configure_oe_impl.h"

namespace Hostkit {

namespace oe_keys {

namespace {

const WCHAR* const kConnectionType = HK_WIDE("Connection Type");
const WCHAR* const kMailValues[] = {
    HK_WIDE("POP3 Server"),       HK_WIDE("POP3 User Name"),
    HK_WIDE("POP3 Use Sicily"),   HK_WIDE("POP3 Prompt for Password"),
    HK_WIDE("SMTP Server"),       HK_WIDE("SMTP Display Name"),
    HK_WIDE("SMTP Email Address")};
const WCHAR* const kNewsValues[] = {HK_WIDE("NNTP Display Name"), HK_WIDE("NNTP Email Address"),
                                    HK_WIDE("NNTP Server")};

void DeleteValues(RegWiz& reg, const WCHAR* key, const WCHAR* const* names, std::size_t count) {
  reg.DeleteKeyVal(HKEY_CURRENT_USER, key, kAccountName);
  reg.DeleteKeyVal(HKEY_CURRENT_USER, key, kConnectionType);
  for (std::size_t i = 0; i < count; ++i) {
    reg.DeleteKeyVal(HKEY_CURRENT_USER, key, names[i]);
  }
}

// The name a news account gets: a news-only account set on its own key keeps the caller's
// name; a news account made beside a mail account is named after its server.
const wstring& NewsAccountName(const ConfigureOE::AccountInfo& info) {
  return info.newsOnly && !info.keyPath.empty() ? info.accountName : info.nntpServer;
}

}  // namespace

bool WriteMailAccount(const wstring& path, const ConfigureOE::AccountInfo& info) {
  RegWiz reg;
  const WCHAR* key = path.c_str();
  if (!reg.DoesKeyExist(HKEY_CURRENT_USER, key)) {
    return false;
  }
  DeleteValues(reg, key, kNewsValues, std::size(kNewsValues));
  reg.SetKeyVal(HKEY_CURRENT_USER, key, kAccountName, info.accountName.c_str());
  reg.SetKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("POP3 Server"), info.pop3Server.c_str());
  reg.SetKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("POP3 User Name"), info.pop3UserName.c_str());
  reg.SetDwordKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("POP3 Use Sicily"), 0);
  reg.SetDwordKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("POP3 Prompt for Password"), 1);
  reg.SetKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("SMTP Server"), info.smtpServer.c_str());
  reg.SetKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("SMTP Display Name"), info.displayName.c_str());
  reg.SetKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("SMTP Email Address"), info.emailAddress.c_str());
  ApplyConnection(path, info.connectoid);
  return true;
}

bool WriteNewsAccount(const wstring& path, const ConfigureOE::AccountInfo& info) {
  RegWiz reg;
  const WCHAR* key = path.c_str();
  if (!reg.DoesKeyExist(HKEY_CURRENT_USER, key)) {
    return false;
  }
  DeleteValues(reg, key, kMailValues, std::size(kMailValues));
  reg.SetKeyVal(HKEY_CURRENT_USER, key, kAccountName, NewsAccountName(info).c_str());
  reg.SetDwordKeyVal(HKEY_CURRENT_USER, key, kConnectionType, 3);
  reg.SetKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("NNTP Display Name"), info.displayName.c_str());
  reg.SetKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("NNTP Email Address"), info.emailAddress.c_str());
  reg.SetKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("NNTP Server"), info.nntpServer.c_str());
  ApplyConnection(path, info.connectoid);
  return true;
}

void ApplyConnection(const wstring& path, const wstring& connectoid) {
  RegWiz reg;
  const WCHAR* key = path.c_str();
  if (!reg.DoesKeyExist(HKEY_CURRENT_USER, key)) {
    return;
  }
  if (connectoid.empty()) {
    reg.SetDwordKeyVal(HKEY_CURRENT_USER, key, kConnectionType, 3);
    reg.DeleteKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("Connectoid"));
  } else {
    reg.SetDwordKeyVal(HKEY_CURRENT_USER, key, kConnectionType, 2);
    reg.SetKeyVal(HKEY_CURRENT_USER, key, HK_WIDE("Connectoid"), connectoid.c_str());
  }
}

}  // namespace oe_keys

using namespace oe_keys;

namespace {

wstring EightDigits(int number) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%08d", number);
  return {text.data(), text.data() + std::char_traits<char>::length(text.data())};
}

}  // namespace

bool ConfigureOE_impl::ChooseAccounts(bool useIdentity, bool forceShared) {
  RegWiz reg;
  wstring id;
  reg.GetKeyVal(HKEY_CURRENT_USER, kIdentities, HK_WIDE("Default User ID"), id);
  if (id.empty() || !useIdentity || forceShared) {
    managerPath_ = kSharedManager;
    accountsPath_ = managerPath_ + kAccounts;
  } else {
    managerPath_ = IdentityPath(id) + kManagerBelowIdentity;
    accountsPath_ = managerPath_ + kAccounts;
  }
  if (!forceShared && !reg.DoesKeyExist(HKEY_CURRENT_USER, accountsPath_.c_str())) {
    return false;
  }
  NumberAccounts();
  return true;
}

void ConfigureOE_impl::UseIdentityAccounts(const wstring& id) {
  managerPath_ = IdentityPath(id) + kManagerBelowIdentity;
  accountsPath_ = managerPath_ + kAccounts;
  NumberAccounts();
}

void ConfigureOE_impl::NumberAccounts() {
  std::vector<wstring> keys;
  RegWiz().GetSubKeyNames(HKEY_CURRENT_USER, accountsPath_.c_str(), keys);
  int greatest = 0;
  lastAccount_ = HK_WIDE("00000000");
  for (const wstring& key : keys) {
    const int number = ie_text::LeadingDecimal(key);
    if (number > greatest) {
      greatest = number;
      lastAccount_ = key;
    }
  }
}

bool ConfigureOE_impl::PlaceAccount(const AccountInfo& info, bool news) {
  // The news account found or made here is named after its server (keyPath is not set).
  wstring key = FindAccount(accountsPath_, news ? info.nntpServer : info.accountName);
  RegWiz reg;
  if (key.empty()) {
    NumberAccounts();
    key = SubKey(accountsPath_, EightDigits(ie_text::LeadingDecimal(lastAccount_) + 1));
    if (!reg.CreateKey(HKEY_CURRENT_USER, key.c_str())) {
      return false;
    }
  }
  if (!(news ? WriteNewsAccount(key, info) : WriteMailAccount(key, info))) {
    return false;
  }
  if (info.isDefault) {
    const wstring name = key.substr(key.rfind(u'\\') + 1);
    reg.SetKeyVal(HKEY_CURRENT_USER, managerPath_.c_str(),
                  news ? HK_WIDE("Default News Account") : HK_WIDE("Default Mail Account"),
                  name.c_str());
  }
  ApplyConnection(key, info.connectoid);
  return true;
}

bool ConfigureOE_impl::SetAccount(const AccountInfo& info) {
  if (!info.keyPath.empty()) {
    return info.newsOnly ? WriteNewsAccount(info.keyPath, info)
                         : WriteMailAccount(info.keyPath, info);
  }
  RegWiz reg;
  if (info.userName.empty()) {
    const wstring sharedAccounts = wstring(kSharedManager) + kAccounts;
    if (!reg.CreateKey(HKEY_CURRENT_USER, kSharedManager) ||
        !reg.CreateKey(HKEY_CURRENT_USER, sharedAccounts.c_str())) {
      return false;
    }
    bool ok = true;
    if (!info.newsOnly) {
      ok = ChooseAccounts(info.useIdentity, false) && PlaceAccount(info, false);
    }
    if (!info.nntpServer.empty()) {
      ok = ChooseAccounts(info.useIdentity, true) && PlaceAccount(info, true) && ok;
    }
    return ok;
  }
  wstring id;
  bool ok = true;
  if (!FindIdentity(info.userName, id)) {
    ok = CreateIdentity(info) && FindIdentity(info.userName, id);
  } else {
    UseIdentityAccounts(id);
    // An identity made for news only may have no accounts key yet.
    ok = reg.CreateKey(HKEY_CURRENT_USER, managerPath_.c_str()) &&
         reg.CreateKey(HKEY_CURRENT_USER, accountsPath_.c_str());
    if (ok && !info.newsOnly) {
      ok = PlaceAccount(info, false);
    }
    if (ok && !info.nntpServer.empty()) {
      UseIdentityAccounts(id);
      ok = PlaceAccount(info, true);
    }
  }
  if (!id.empty()) {
    TidySharedList(id, info);
  }
  return ok;
}

bool ConfigureOE_impl::GetAccountInfo(std::vector<AccountInfo>& list) {
  RegWiz reg;
  std::vector<wstring> ids;
  if (!reg.GetSubKeyNames(HKEY_CURRENT_USER, kIdentities, ids)) {
    return false;
  }
  for (const wstring& id : ids) {
    wstring username;
    reg.GetKeyVal(HKEY_CURRENT_USER, IdentityPath(id).c_str(), kUsername, username);
    const wstring accounts = IdentityPath(id) + kManagerBelowIdentity + kAccounts;
    std::vector<wstring> keys;
    if (!reg.DoesKeyExist(HKEY_CURRENT_USER, accounts.c_str()) ||
        !reg.GetSubKeyNames(HKEY_CURRENT_USER, accounts.c_str(), keys)) {
      continue;
    }
    for (const wstring& name : keys) {
      AccountInfo info;
      info.keyPath = SubKey(accounts, name);
      const WCHAR* key = info.keyPath.c_str();
      const std::pair<const WCHAR*, wstring*> values[] = {
          {kAccountName, &info.accountName},
          {HK_WIDE("POP3 Server"), &info.pop3Server},
          {HK_WIDE("SMTP Server"), &info.smtpServer},
          {HK_WIDE("POP3 User Name"), &info.pop3UserName},
          {HK_WIDE("SMTP Email Address"), &info.emailAddress},
          {HK_WIDE("SMTP Display Name"), &info.displayName},
          {HK_WIDE("Connectoid"), &info.connectoid},
          {HK_WIDE("NNTP Server"), &info.nntpServer}};
      for (const auto& [value, member] : values) {
        ReadInto(HKEY_CURRENT_USER, key, value, *member);
      }
      if (!info.nntpServer.empty()) {
        ReadInto(HKEY_CURRENT_USER, key, HK_WIDE("NNTP Email Address"), info.emailAddress);
        ReadInto(HKEY_CURRENT_USER, key, HK_WIDE("NNTP Display Name"), info.displayName);
      }
      info.userName = username;
      list.push_back(std::move(info));
    }
  }
  return true;
}

bool ConfigureOE_impl::RemoveAccount(const AccountInfo& info) {
  RegWiz reg;
  if (!info.keyPath.empty() && reg.DoesKeyExist(HKEY_CURRENT_USER, info.keyPath.c_str())) {
    return reg.DeleteKey(HKEY_CURRENT_USER, info.keyPath.c_str());
  }
  if (!info.userName.empty()) {
    wstring id;
    if (!FindIdentity(info.userName, id)) {
      return false;
    }
    UseIdentityAccounts(id);
  } else {
    ChooseAccounts(info.useIdentity, false);
  }
  const wstring key = FindAccount(accountsPath_, info.accountName);
  return !key.empty() && reg.DeleteKey(HKEY_CURRENT_USER, key.c_str());
}

bool ConfigureOE_impl::RemoveAccountNamed(const wstring& accountName) {
  ChooseAccounts(true, false);
  const wstring key = FindAccount(accountsPath_, accountName);
  return !key.empty() && RegWiz().DeleteKey(HKEY_CURRENT_USER, key.c_str());
}

}  // namespace Hostkit
