// hostkit: runs the library's queries on a machine and prints what they answer.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "commands.h"

namespace {

int Run(int argc, char** argv) {
  CLI::App app{"hostkit: asks the Hostkit3 library about a Windows machine"};
  std::string machine;
  app.add_option("--machine", machine,
                 "machine profile (JSON) to run on instead of the built-in Windows XP home PC");
  app.require_subcommand(1);
  CLI::App* os = app.add_subcommand("os", "release, version, language and administrator facts");
  CLI::App* hardware =
      app.add_subcommand("hardware", "processors, speed, vendor, memory and drives");
  CLI::App* adapters =
      app.add_subcommand("adapters", "stored TCP/IP settings of every network adapter");
  bool adaptersJson = false;
  adapters->add_flag("--json", adaptersJson, "print the adapters as JSON");
  CLI::App* reg = app.add_subcommand("reg", "registry commands");
  reg->require_subcommand(1);
  CLI::App* query = reg->add_subcommand("query", "list a key's values and subkeys");
  std::string key;
  query->add_option("KEY", key, "the key, e.g. HKLM\\SOFTWARE\\Microsoft")->required();

  CLI::App* proxy = app.add_subcommand("proxy", "the current user's browser proxies");
  proxy->require_subcommand(1);
  CLI::App* proxyShow = proxy->add_subcommand("show", "the proxy list, exceptions and script");
  CLI::App* proxySet = proxy->add_subcommand("set", "set the proxy: [PROTOCOL] HOST PORT");
  std::vector<std::string> proxyArgs;
  proxySet->add_option("ARGS", proxyArgs, "[http|https|ftp|gopher|socks] HOST PORT")->required();
  CLI::App* proxyClear = proxy->add_subcommand("clear", "clear the proxy or one protocol's entry");
  std::string proxyProtocol;
  proxyClear->add_option("PROTOCOL", proxyProtocol, "http, https, ftp, gopher or socks");
  CLI::App* proxyExceptions =
      proxy->add_subcommand("exceptions", "set the hosts that bypass the proxy");
  std::vector<std::string> exceptionList;
  std::string localBypass;
  proxyExceptions->add_option("HOSTS", exceptionList, "hosts; none clears the list");
  proxyExceptions->add_option("--local", localBypass, "on or off: bypass for local addresses");
  CLI::App* ie = app.add_subcommand("ie", "Internet Explorer: presence, version, home page");
  ie->require_subcommand(1);
  CLI::App* ieShow = ie->add_subcommand("show", "presence, version, program path, home page");
  CLI::App* ieHomePage = ie->add_subcommand("homepage", "set the current user's home page");
  std::string homePage;
  ieHomePage->add_option("URL", homePage, "the start page")->required();
  CLI::App* ieWizard = ie->add_subcommand("wizard", "the Internet Connection Wizard");
  std::string wizardState;
  ieWizard->add_option("STATE", wizardState, "off: mark it completed")
      ->required()
      ->check(CLI::IsMember({"off"}));
  CLI::App* backup = app.add_subcommand("backup", "save registry keys to a .reg file");
  std::vector<std::string> backupKeys;
  std::string backupFile;
  backup->add_option("KEY", backupKeys, "keys to save, e.g. HKCU\\Software\\Vendor")->required();
  backup->add_option("-o,--output", backupFile, "the .reg file to write")->required();

  CLI::App* favorites = app.add_subcommand("favorites", "the current user's Favorites");
  favorites->require_subcommand(1);
  CLI::App* favoritesList = favorites->add_subcommand("list", "every shortcut and its address");
  CLI::App* favoritesAdd = favorites->add_subcommand("add", "add a shortcut: NAME URL");
  std::string favoriteName;
  std::string favoriteUrl;
  favoritesAdd->add_option("NAME", favoriteName, "e.g. News\\Daily")->required();
  favoritesAdd->add_option("URL", favoriteUrl, "the address")->required();
  CLI::App* mail = app.add_subcommand("mail", "Outlook Express mail and news accounts");
  mail->require_subcommand(1);
  CLI::App* mailList = mail->add_subcommand("list", "the accounts of every identity");
  CLI::App* mailAdd = mail->add_subcommand("add", "create or update an account");
  hostkit_tool::MailAccountArgs mailArgs;
  mailAdd->add_option("NAME", mailArgs.name, "the account name")->required();
  mailAdd->add_option("--pop3", mailArgs.pop3, "incoming mail server");
  mailAdd->add_option("--smtp", mailArgs.smtp, "outgoing mail server");
  mailAdd->add_option("--user", mailArgs.user, "mailbox user name");
  mailAdd->add_option("--display-name", mailArgs.displayName, "sender's name");
  mailAdd->add_option("--email", mailArgs.email, "sender's address");
  mailAdd->add_option("--nntp", mailArgs.nntp, "news server: adds a news account");
  mailAdd->add_option("--dial-up", mailArgs.connectoid, "dial-up connection to use");
  mailAdd->add_option("--identity", mailArgs.identity, "identity owning it (made if missing)");
  mailAdd->add_flag("--default", mailArgs.isDefault, "make it the default account");
  mailAdd->add_flag("--news-only", mailArgs.newsOnly, "no mail account, only the news account");
  CLI::App* mailRemove = mail->add_subcommand("remove", "remove an account by name");
  std::string mailRemoveName;
  std::string mailRemoveIdentity;
  mailRemove->add_option("NAME", mailRemoveName, "the account name")->required();
  mailRemove->add_option("--identity", mailRemoveIdentity, "the identity holding it");
  CLI::App* identity = app.add_subcommand("identity", "Outlook Express identities");
  identity->require_subcommand(1);
  CLI::App* identityRemove = identity->add_subcommand("remove", "remove an identity by name");
  std::string identityName;
  identityRemove->add_option("NAME", identityName, "the identity's user name")->required();

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app.exit(e) == 0 ? 0 : 1;
  }

  std::string error;
  if (!hostkit_tool::UseMachine(machine, error)) {
    std::cerr << "hostkit: " << error << "\n";
    return 1;
  }
  if (os->parsed()) {
    return hostkit_tool::RunOs(std::cout, std::cerr);
  }
  if (hardware->parsed()) {
    return hostkit_tool::RunHardware(std::cout, std::cerr);
  }
  if (adapters->parsed()) {
    return hostkit_tool::RunAdapters(adaptersJson, std::cout, std::cerr);
  }
  if (query->parsed()) {
    return hostkit_tool::RunRegQuery(key, std::cout, std::cerr);
  }
  if (proxyShow->parsed()) {
    return hostkit_tool::RunProxyShow(std::cout, std::cerr);
  }
  if (proxySet->parsed()) {
    return hostkit_tool::RunProxySet(proxyArgs, std::cout, std::cerr);
  }
  if (proxyClear->parsed()) {
    return hostkit_tool::RunProxyClear(proxyProtocol, std::cout, std::cerr);
  }
  if (proxyExceptions->parsed()) {
    return hostkit_tool::RunProxyExceptions(exceptionList, localBypass, std::cout, std::cerr);
  }
  if (ieShow->parsed()) {
    return hostkit_tool::RunIeShow(std::cout, std::cerr);
  }
  if (ieHomePage->parsed()) {
    return hostkit_tool::RunIeHomePage(homePage, std::cout, std::cerr);
  }
  if (ieWizard->parsed()) {
    return hostkit_tool::RunIeWizardOff(std::cout, std::cerr);
  }
  if (favoritesList->parsed()) {
    return hostkit_tool::RunFavoritesList(std::cout, std::cerr);
  }
  if (favoritesAdd->parsed()) {
    return hostkit_tool::RunFavoritesAdd(favoriteName, favoriteUrl, std::cout, std::cerr);
  }
  if (mailList->parsed()) {
    return hostkit_tool::RunMailList(std::cout, std::cerr);
  }
  if (mailAdd->parsed()) {
    return hostkit_tool::RunMailAdd(mailArgs, std::cout, std::cerr);
  }
  if (mailRemove->parsed()) {
    return hostkit_tool::RunMailRemove(mailRemoveName, mailRemoveIdentity, std::cout, std::cerr);
  }
  if (identityRemove->parsed()) {
    return hostkit_tool::RunIdentityRemove(identityName, std::cout, std::cerr);
  }
  if (backup->parsed()) {
    return hostkit_tool::RunBackup(backupKeys, backupFile, std::cout, std::cerr);
  }
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& e) {
    std::cerr << "hostkit: " << e.what() << "\n";
  } catch (...) {
    std::cerr << "hostkit: unexpected failure\n";
  }
  return 1;
}
