// hostkit mail / identity: the current user's Outlook Express accounts and identities through
// the library's ConfigureOE, on the loaded machine.
#include <ostream>
#include <string>
#include <vector>

#include "commands.h"
#include "hostkit/configure_oe.h"
#include "hostkit/strings.h"

namespace hostkit_tool {

namespace {}  // namespace

int RunMailList(std::ostream& out, std::ostream& err) {
  std::vector<Hostkit::ConfigureOE::AccountInfo> accounts;
  if (!Hostkit::ConfigureOE().GetAccountInfo(accounts)) {
    err << "hostkit: the machine has no identities\n";
    return 1;
  }
  for (const auto& account : accounts) {
    out << Narrow(account.userName) << "\t" << Narrow(account.accountName) << "\t";
    if (account.nntpServer.empty()) {
      out << "mail pop3=" << Narrow(account.pop3Server) << " smtp=" << Narrow(account.smtpServer)
          << " user=" << Narrow(account.pop3UserName);
    } else {
      out << "news nntp=" << Narrow(account.nntpServer);
    }
    out << " from=\"" << Narrow(account.displayName) << "\" <" << Narrow(account.emailAddress)
        << ">";
    if (!account.connectoid.empty()) {
      out << " dial-up=" << Narrow(account.connectoid);
    }
    out << "\n";
  }
  return 0;
}

int RunMailAdd(const MailAccountArgs& args, std::ostream& out, std::ostream& err) {
  Hostkit::ConfigureOE::AccountInfo info;
  info.accountName = Wide(args.name);
  info.pop3Server = Wide(args.pop3);
  info.smtpServer = Wide(args.smtp);
  info.pop3UserName = Wide(args.user);
  info.displayName = Wide(args.displayName);
  info.emailAddress = Wide(args.email);
  info.nntpServer = Wide(args.nntp);
  info.connectoid = Wide(args.connectoid);
  info.userName = Wide(args.identity);
  info.isDefault = args.isDefault;
  info.newsOnly = args.newsOnly;
  info.useIdentity = args.identity.empty();
  return Done(Hostkit::ConfigureOE().SetAccount(info), "add the account " + args.name, out, err);
}

int RunMailRemove(const std::string& name, const std::string& identity, std::ostream& out,
                  std::ostream& err) {
  Hostkit::ConfigureOE oe;
  bool ok = false;
  if (identity.empty()) {
    ok = oe.RemoveAccount(Wide(name));
  } else {
    Hostkit::ConfigureOE::AccountInfo info;
    info.accountName = Wide(name);
    info.userName = Wide(identity);
    ok = oe.RemoveAccount(info);
  }
  return Done(ok, "remove the account " + name, out, err);
}

int RunIdentityRemove(const std::string& name, std::ostream& out, std::ostream& err) {
  return Done(Hostkit::ConfigureOE().RemoveIdentity(Wide(name)), "remove the identity " + name, out,
              err);
}

}  // namespace hostkit_tool
