/// \file
/// ConfigureOE: the current user's Outlook Express mail and news accounts and the identities
/// that own them, kept in HKEY_CURRENT_USER.
#pragma once

#include <vector>

#include "hostkit/export.h"
#include "hostkit/shell.h"
#include "hostkit/win_types.h"

namespace Hostkit {

class ConfigureOE_impl;

/// Outlook Express mail and news accounts and identities of the current user.
class HOSTKIT_API ConfigureOE {
 public:
  /// One account as callers exchange it. `keyPath` is the account key's path below
  /// HKEY_CURRENT_USER; GetAccountInfo fills it, and when it is set SetAccount and RemoveAccount
  /// act on that key directly.
  struct AccountInfo {
    /// incoming mail server
    wstring pop3Server;
    /// outgoing mail server
    wstring smtpServer;
    /// mailbox user name
    wstring pop3UserName;
    wstring reserved;  ///< carried, never read or written (accounts prompt for the password)
    /// the account's name, by which accounts are found
    wstring accountName;
    /// the sender's name
    wstring displayName;
    /// the sender's address
    wstring emailAddress;
    bool isDefault = false;    ///< make it the default mail (and news) account
    bool useIdentity = false;  ///< under the default identity rather than the shared list
    bool newsOnly = false;     ///< no mail account, only the news account
    wstring nntpServer;        ///< empty: no news account
    wstring connectoid;        ///< dial-up connection; empty: the LAN
    wstring userName;          ///< the identity owning the account
    /// the account key's path (see above)
    wstring keyPath;
  };

  ///@{
  /// Creates, copies (each copy owns its own implementation object) and destroys
  /// the object.
  ConfigureOE();
  ConfigureOE(const ConfigureOE& other);
  ConfigureOE& operator=(const ConfigureOE& other);
  ~ConfigureOE();
  ///@}

  /// Creates or updates the account, and the identity `userName` when it does not exist yet.
  bool SetAccount(const AccountInfo& info);
  /// Appends the accounts of every identity to `list`.
  bool GetAccountInfo(std::vector<AccountInfo>& list);
  ///@{
  /// Removes the account named by `info` (by `keyPath` when it is set, else by its name).
  bool RemoveAccount(const AccountInfo& info);
  bool RemoveAccount(wstring accountName);
  ///@}
  ///@{
  /// Removes the identity named by `info.userName`, with its accounts.
  bool RemoveIdentity(const AccountInfo& info);
  bool RemoveIdentity(wstring identityName);
  ///@}

 private:
  Pimpl<ConfigureOE_impl> impl_;
};

}  // namespace Hostkit
