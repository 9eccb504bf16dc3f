// hostkit mail / identity: the current user's Outlook Express accounts and identities through
// the library's ConfigureOE, on the loaded machine.
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "command_line.h"
#include "commands.h"
#include "hostkit/configure_oe.h"
#include "hostkit/regwiz.h"
#include "hostkit/strings.h"

namespace hostkit_tool {

namespace {

using Account = Hostkit::ConfigureOE::AccountInfo;

// The accounts of the list every identity shares, which ConfigureOE does not enumerate.
std::vector<Account> SharedAccounts() {
  const Hostkit::wstring accounts =
      HK_WIDE("Software\\Microsoft\\Internet Account Manager\\Accounts");
  Hostkit::RegWiz reg;
  std::vector<Hostkit::wstring> keys;
  std::vector<Account> list;
  reg.GetSubKeyNames(HKEY_CURRENT_USER, accounts.c_str(), keys);
  for (const Hostkit::wstring& name : keys) {
    Account info;
    info.keyPath = accounts + HK_WIDE("\\") + name;
    const std::pair<const char*, Hostkit::wstring*> values[] = {
        {"Account Name", &info.accountName},        {"POP3 Server", &info.pop3Server},
        {"SMTP Server", &info.smtpServer},          {"POP3 User Name", &info.pop3UserName},
        {"SMTP Email Address", &info.emailAddress}, {"SMTP Display Name", &info.displayName},
        {"Connectoid", &info.connectoid},           {"NNTP Server", &info.nntpServer}};
    for (const auto& [value, field] : values) {
      reg.GetKeyVal(HKEY_CURRENT_USER, info.keyPath.c_str(), Wide(value).c_str(), *field);
    }
    if (!info.accountName.empty()) {
      list.push_back(info);
    }
  }
  return list;
}

nlohmann::ordered_json AccountJson(const Account& account, bool shared) {
  return {{"identity",
           shared ? nlohmann::ordered_json() : nlohmann::ordered_json(Narrow(account.userName))},
          {"account", Narrow(account.accountName)},
          {"kind", account.nntpServer.empty() ? "mail" : "news"},
          {"pop3Server", Narrow(account.pop3Server)},
          {"smtpServer", Narrow(account.smtpServer)},
          {"user", Narrow(account.pop3UserName)},
          {"nntpServer", Narrow(account.nntpServer)},
          {"displayName", Narrow(account.displayName)},
          {"email", Narrow(account.emailAddress)},
          {"dialUp", Narrow(account.connectoid)}};
}

void PrintAccount(const nlohmann::ordered_json& a, std::ostream& out) {
  const auto text = [&](const char* key) { return a[key].get<std::string>(); };
  out << (a["identity"].is_null() ? "(shared)" : text("identity")) << "\t" << text("account")
      << "\t";
  if (text("kind") == "mail") {
    out << "mail pop3=" << text("pop3Server") << " smtp=" << text("smtpServer")
        << " user=" << text("user");
  } else {
    out << "news nntp=" << text("nntpServer");
  }
  out << " from=\"" << text("displayName") << "\" <" << text("email") << ">";
  if (!text("dialUp").empty()) {
    out << " dial-up=" << text("dialUp");
  }
  out << "\n";
}

}  // namespace

int RunMailList(std::ostream& out, std::ostream& /*err*/) {
  std::vector<Account> accounts;
  Hostkit::ConfigureOE().GetAccountInfo(accounts);
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const Account& account : SharedAccounts()) {
    list.push_back(AccountJson(account, true));
  }
  for (const Account& account : accounts) {
    list.push_back(AccountJson(account, false));
  }
  if (JsonOutput()) {
    PrintJson(list, out);
    return kDone;
  }
  for (const auto& account : list) {
    PrintAccount(account, out);
  }
  if (list.empty()) {
    out << "no accounts\n";
  }
  return kDone;
}

int RunMailAdd(const MailAccountArgs& args, std::ostream& out, std::ostream& err) {
  Account info;
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
  return Done(Hostkit::ConfigureOE().SetAccount(info), "add the account " + args.name,
              "the Internet Account Manager or Identities keys cannot be written", out, err);
}

int RunMailRemove(const std::string& name, const std::string& identity, std::ostream& out,
                  std::ostream& err) {
  Hostkit::ConfigureOE oe;
  bool ok = false;
  if (identity.empty()) {
    ok = oe.RemoveAccount(Wide(name));
  } else {
    Account info;
    info.accountName = Wide(name);
    info.userName = Wide(identity);
    ok = oe.RemoveAccount(info);
  }
  return Done(ok, "remove the account " + name,
              "no account of that name" +
                  (identity.empty() ? std::string() : " in the identity " + identity),
              out, err);
}

int RunIdentityRemove(const std::string& name, std::ostream& out, std::ostream& err) {
  return Done(Hostkit::ConfigureOE().RemoveIdentity(Wide(name)), "remove the identity " + name,
              "no identity has that user name", out, err);
}

void AddMailCommands(CLI::App& app, CommandTable& run, std::ostream& out, std::ostream& err) {
  struct Args {
    MailAccountArgs account;
    std::string removeName;
    std::string removeIdentity;
    std::string identityName;
  };
  auto args = std::make_shared<Args>();
  CLI::App* mail = app.add_subcommand("mail", "Outlook Express mail and news accounts");
  mail->require_subcommand(1);
  run[AddCommand(*mail, "list", "the shared accounts and those of every identity",
                 "hostkit mail list")] = [&] { return RunMailList(out, err); };
  CLI::App* add = AddCommand(*mail, "add", "create or update an account",
                             "hostkit mail add Home --pop3 pop.example.net --smtp "
                             "smtp.example.net --user ann --email ann@example.net");
  MailAccountArgs& a = args->account;
  add->add_option("NAME", a.name, "the account name")->required();
  add->add_option("--pop3", a.pop3, "incoming mail server");
  add->add_option("--smtp", a.smtp, "outgoing mail server");
  add->add_option("--user", a.user, "mailbox user name");
  add->add_option("--display-name", a.displayName, "sender's name");
  add->add_option("--email", a.email, "sender's address");
  add->add_option("--nntp", a.nntp, "news server: adds a news account");
  add->add_option("--dial-up", a.connectoid, "dial-up connection to use");
  add->add_option("--identity", a.identity, "identity owning it (made if missing)");
  add->add_flag("--default", a.isDefault, "make it the default account");
  add->add_flag("--news-only", a.newsOnly, "no mail account, only the news account");
  run[add] = [args, &out, &err] { return RunMailAdd(args->account, out, err); };
  CLI::App* remove =
      AddCommand(*mail, "remove", "remove an account by name", "hostkit mail remove Home");
  remove->add_option("NAME", args->removeName, "the account name")->required();
  remove->add_option("--identity", args->removeIdentity, "the identity holding it");
  run[remove] = [args, &out, &err] {
    return RunMailRemove(args->removeName, args->removeIdentity, out, err);
  };
  CLI::App* identity = app.add_subcommand("identity", "Outlook Express identities");
  identity->require_subcommand(1);
  CLI::App* identityRemove = AddCommand(*identity, "remove", "remove an identity by name",
                                        "hostkit identity remove \"Main Identity\"");
  identityRemove->add_option("NAME", args->identityName, "the identity's user name")->required();
  run[identityRemove] = [args, &out, &err] {
    return RunIdentityRemove(args->identityName, out, err);
  };
}

}  // namespace hostkit_tool
