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
  app.fallthrough();  // --machine and --save may also follow the command
  std::string machine;
  app.add_option("--machine", machine,
                 "machine profile (JSON) to run on instead of the built-in Windows XP home PC");
  app.require_subcommand(1);
  CLI::App* os = app.add_subcommand("os", "release, version, language and administrator facts");
  CLI::App* hardware =
      app.add_subcommand("hardware", "processors, speed, vendor, memory and drives");
  std::string saveFile;
  app.add_option("--save", saveFile,
                 "after a successful command, write the machine to this profile (and a .reg "
                 "beside it)");
  CLI::App* adapter = app.add_subcommand(
      "adapter",
      "change one adapter: dhcp | static IP MASK [GATEWAY] | dns SERVER... | domain "
      "NAME | wins SERVER...|off");
  std::string adapterName;
  std::string adapterAction;
  std::vector<std::string> adapterArgs;
  adapter->add_option("ADAPTER", adapterName, "cookie or number from `hostkit adapters`")
      ->required();
  adapter->add_option("ACTION", adapterAction, "what to change")
      ->required()
      ->check(CLI::IsMember({"dhcp", "static", "dns", "domain", "wins"}));
  adapter->add_option("ARGS", adapterArgs, "the action's addresses or name");
  CLI::App* hostname = app.add_subcommand("hostname", "print or set the TCP/IP host name");
  std::string hostName;
  hostname->add_option("NAME", hostName, "the new host name");
  CLI::App* summary =
      app.add_subcommand("summary", "adapter counts, primary adapter, TCP/IP installation");
  CLI::App* adapters =
      app.add_subcommand("adapters", "stored TCP/IP settings of every network adapter");
  bool adaptersJson = false;
  adapters->add_flag("--json", adaptersJson, "print the adapters as JSON");
  CLI::App* live = app.add_subcommand("live", "TCP/IP state every adapter uses now");
  bool liveJson = false;
  live->add_flag("--json", liveJson, "print the adapters as JSON");
  CLI::App* dns = app.add_subcommand("dns", "DNS servers, domain and search list in use");
  std::string dhcpAdapter;
  bool dhcpAll = false;
  CLI::App* release = app.add_subcommand("release", "give up an adapter's DHCP lease");
  CLI::App* renew = app.add_subcommand("renew", "renew an adapter's DHCP lease");
  for (CLI::App* command : {release, renew}) {
    CLI::Option* all = command->add_flag("--all", dhcpAll, "every adapter on DHCP");
    command->add_option("ADAPTER", dhcpAdapter, "hardware address or number from `hostkit live`")
        ->excludes(all);
    command->require_option(1);
  }
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

  CLI::App* tweak = app.add_subcommand("tweak", "TCP/IP tuning");
  tweak->require_subcommand(1);
  CLI::App* tweakBroadband =
      tweak->add_subcommand("broadband", "tune TCP/IP and the browser for broadband Ethernet");
  CLI::App* lan = app.add_subcommand("lan", "the LAN switch (automatic dialling off or on)");
  std::string lanAction;
  lan->add_option("ACTION", lanAction, "on, off or status")
      ->required()
      ->check(CLI::IsMember({"on", "off", "status"}));
  CLI::App* sharing = app.add_subcommand("sharing", "Windows 9x file and print sharing");
  sharing->require_subcommand(1);
  CLI::App* sharingStatus = sharing->add_subcommand("status", "whether each half is on");
  CLI::App* sharingOff = sharing->add_subcommand("off", "switch file and print sharing off");
  CLI::App* cabs = app.add_subcommand("cabs", "the Windows 9x set-up source folder");
  cabs->require_subcommand(1);
  CLI::App* cabsSet = cabs->add_subcommand("set", "point Windows set-up at FOLDER");
  std::string cabsFolder;
  cabsSet->add_option("FOLDER", cabsFolder, "e.g. C:\\WINDOWS\\OPTIONS\\CABS")->required();
  CLI::App* cabsRestore = cabs->add_subcommand("restore", "put back the previous folder");

  CLI::App* windows = app.add_subcommand("windows", "other programs' windows (WindowController)");
  windows->require_subcommand(1);
  hostkit_tool::WindowArgs windowArgs;
  CLI::App* windowsList = windows->add_subcommand("list", "top-level windows and their controls");
  CLI::App* windowsWait = windows->add_subcommand("wait", "wait for a window to appear or go");
  CLI::App* windowsClick = windows->add_subcommand("click", "click a button or radio button");
  CLI::App* windowsClose = windows->add_subcommand("close", "post WM_CLOSE to a window");
  for (CLI::App* command : {windowsWait, windowsClick, windowsClose}) {
    command->add_option("TITLE", windowArgs.title, "window-title pattern")->required();
    command->add_option("CONTROL", windowArgs.control, "control-title pattern")
        ->required(command == windowsClick);
  }
  windowsWait->add_option("--timeout", windowArgs.timeout, "seconds (0: no practical limit)");
  windowsWait->add_option("--interval", windowArgs.interval, "milliseconds between checks");
  windowsWait->add_flag("--gone", windowArgs.gone, "wait for the window to disappear");
  windowsWait->add_flag("--include-hidden", windowArgs.includeHidden, "hidden windows count");
  windowsClick->add_option("--radio", windowArgs.radio, "on or off: click a radio button")
      ->check(CLI::IsMember({"on", "off"}));

  CLI::App* dialup = app.add_subcommand("dialup", "Windows 9x dial-up components, autodial");
  dialup->require_subcommand(1);
  CLI::App* dialupStatus = dialup->add_subcommand("status", "components and dial-up adapters");
  CLI::App* dialupInstall =
      dialup->add_subcommand("install", "install dial-up adapters (and the VPN component)");
  int dialupAdapters = 1;
  bool dialupVpn = false;
  dialupInstall->add_option("--adapters", dialupAdapters, "dial-up adapters wanted (default 1)");
  dialupInstall->add_flag("--vpn", dialupVpn, "install the VPN component as well");
  CLI::App* dialupAutodial =
      dialup->add_subcommand("autodial", "switch automatic dialling on for a phonebook entry");
  std::string dialupEntry;
  dialupAutodial->add_option("ENTRY", dialupEntry, "the phonebook entry to dial");

  CLI::App* devices = app.add_subcommand("devices", "devices by class with their resources");
  std::string deviceClass;
  bool devicesFree = false;
  devices->add_option("CLASS", deviceClass,
                      "network, modem, usb, display, sound, ports, disk or cdrom (default: all)");
  devices->add_flag("--free", devicesFree, "the free interrupts and DMA channels instead");

  CLI::App* ras = app.add_subcommand("ras", "dial-up phonebook, devices, dialling and errors");
  ras->require_subcommand(1);
  CLI::App* rasEntries = ras->add_subcommand("entries", "the phonebook entries");
  CLI::App* rasDevices = ras->add_subcommand("devices", "the dial-up devices and connections");
  CLI::App* rasDial = ras->add_subcommand("dial", "dial an entry and wait for the connection");
  CLI::App* rasHangUp = ras->add_subcommand("hangup", "hang up an entry's connection");
  CLI::App* rasError = ras->add_subcommand("error", "the text of a Remote Access error code");
  std::string rasEntry;
  unsigned long rasTimeout = 60;
  unsigned long rasCode = 0;
  rasDial->add_option("ENTRY", rasEntry, "the phonebook entry")->required();
  rasDial->add_option("--timeout", rasTimeout, "seconds to wait (default 60)");
  rasHangUp->add_option("ENTRY", rasEntry, "the phonebook entry")->required();
  rasError->add_option("CODE", rasCode, "the error code")->required();

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
    return hostkit_tool::FinishCommand(hostkit_tool::RunOs(std::cout, std::cerr), saveFile,
                                       std::cerr);
  }
  if (hardware->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunHardware(std::cout, std::cerr), saveFile,
                                       std::cerr);
  }
  if (adapter->parsed()) {
    return hostkit_tool::FinishCommand(
        hostkit_tool::RunAdapterChange(adapterName, adapterAction, adapterArgs, std::cout,
                                       std::cerr),
        saveFile, std::cerr);
  }
  if (hostname->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunHostName(hostName, std::cout, std::cerr),
                                       saveFile, std::cerr);
  }
  if (summary->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunSummary(std::cout, std::cerr), saveFile,
                                       std::cerr);
  }
  if (adapters->parsed()) {
    return hostkit_tool::FinishCommand(
        hostkit_tool::RunAdapters(adaptersJson, std::cout, std::cerr), saveFile, std::cerr);
  }
  if (live->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunLive(liveJson, std::cout, std::cerr),
                                       saveFile, std::cerr);
  }
  if (dns->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunDns(std::cout, std::cerr), saveFile,
                                       std::cerr);
  }
  if (release->parsed() || renew->parsed()) {
    return hostkit_tool::FinishCommand(
        hostkit_tool::RunDhcp(renew->parsed(), dhcpAdapter, dhcpAll, std::cout, std::cerr),
        saveFile, std::cerr);
  }
  if (query->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunRegQuery(key, std::cout, std::cerr),
                                       saveFile, std::cerr);
  }
  if (proxyShow->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunProxyShow(std::cout, std::cerr), saveFile,
                                       std::cerr);
  }
  if (proxySet->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunProxySet(proxyArgs, std::cout, std::cerr),
                                       saveFile, std::cerr);
  }
  if (proxyClear->parsed()) {
    return hostkit_tool::FinishCommand(
        hostkit_tool::RunProxyClear(proxyProtocol, std::cout, std::cerr), saveFile, std::cerr);
  }
  if (proxyExceptions->parsed()) {
    return hostkit_tool::FinishCommand(
        hostkit_tool::RunProxyExceptions(exceptionList, localBypass, std::cout, std::cerr),
        saveFile, std::cerr);
  }
  if (ieShow->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunIeShow(std::cout, std::cerr), saveFile,
                                       std::cerr);
  }
  if (ieHomePage->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunIeHomePage(homePage, std::cout, std::cerr),
                                       saveFile, std::cerr);
  }
  if (ieWizard->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunIeWizardOff(std::cout, std::cerr), saveFile,
                                       std::cerr);
  }
  if (favoritesList->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunFavoritesList(std::cout, std::cerr),
                                       saveFile, std::cerr);
  }
  if (favoritesAdd->parsed()) {
    return hostkit_tool::FinishCommand(
        hostkit_tool::RunFavoritesAdd(favoriteName, favoriteUrl, std::cout, std::cerr), saveFile,
        std::cerr);
  }
  if (mailList->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunMailList(std::cout, std::cerr), saveFile,
                                       std::cerr);
  }
  if (mailAdd->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunMailAdd(mailArgs, std::cout, std::cerr),
                                       saveFile, std::cerr);
  }
  if (mailRemove->parsed()) {
    return hostkit_tool::FinishCommand(
        hostkit_tool::RunMailRemove(mailRemoveName, mailRemoveIdentity, std::cout, std::cerr),
        saveFile, std::cerr);
  }
  if (identityRemove->parsed()) {
    return hostkit_tool::FinishCommand(
        hostkit_tool::RunIdentityRemove(identityName, std::cout, std::cerr), saveFile, std::cerr);
  }
  if (tweakBroadband->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunTweakBroadband(std::cout, std::cerr),
                                       saveFile, std::cerr);
  }
  if (lan->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunLan(lanAction, std::cout, std::cerr),
                                       saveFile, std::cerr);
  }
  if (sharingStatus->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunSharingStatus(std::cout, std::cerr),
                                       saveFile, std::cerr);
  }
  if (sharingOff->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunSharingOff(std::cout, std::cerr), saveFile,
                                       std::cerr);
  }
  if (cabsSet->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunCabsSet(cabsFolder, std::cout, std::cerr),
                                       saveFile, std::cerr);
  }
  if (cabsRestore->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunCabsRestore(std::cout, std::cerr), saveFile,
                                       std::cerr);
  }
  if (windowsList->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunWindowsList(std::cout, std::cerr), saveFile,
                                       std::cerr);
  }
  if (windowsWait->parsed()) {
    return hostkit_tool::FinishCommand(
        hostkit_tool::RunWindowsWait(windowArgs, std::cout, std::cerr), saveFile, std::cerr);
  }
  if (windowsClick->parsed()) {
    return hostkit_tool::FinishCommand(
        hostkit_tool::RunWindowsClick(windowArgs, std::cout, std::cerr), saveFile, std::cerr);
  }
  if (windowsClose->parsed()) {
    return hostkit_tool::FinishCommand(
        hostkit_tool::RunWindowsClose(windowArgs, std::cout, std::cerr), saveFile, std::cerr);
  }
  if (dialupStatus->parsed()) {
    return hostkit_tool::FinishCommand(hostkit_tool::RunDialupStatus(std::cout, std::cerr),
                                       saveFile, std::cerr);
  }
  if (dialupInstall->parsed()) {
    return hostkit_tool::FinishCommand(
        hostkit_tool::RunDialupInstall(dialupAdapters, dialupVpn, std::cout, std::cerr), saveFile,
        std::cerr);
  }
  if (dialupAutodial->parsed()) {
    return hostkit_tool::FinishCommand(
        hostkit_tool::RunDialupAutodial(dialupEntry, std::cout, std::cerr), saveFile, std::cerr);
  }
  if (devices->parsed()) {
    return hostkit_tool::FinishCommand(
        hostkit_tool::RunDevices(deviceClass, devicesFree, std::cout, std::cerr), saveFile,
        std::cerr);
  }
  if (rasEntries->parsed() || rasDevices->parsed() || rasDial->parsed() || rasHangUp->parsed() ||
      rasError->parsed()) {
    const int status =
        rasEntries->parsed()   ? hostkit_tool::RunRasEntries(std::cout, std::cerr)
        : rasDevices->parsed() ? hostkit_tool::RunRasDevices(std::cout, std::cerr)
        : rasDial->parsed()   ? hostkit_tool::RunRasDial(rasEntry, rasTimeout, std::cout, std::cerr)
        : rasHangUp->parsed() ? hostkit_tool::RunRasHangUp(rasEntry, std::cout, std::cerr)
                              : hostkit_tool::RunRasError(rasCode, std::cout, std::cerr);
    return hostkit_tool::FinishCommand(status, saveFile, std::cerr);
  }
  if (backup->parsed()) {
    return hostkit_tool::FinishCommand(
        hostkit_tool::RunBackup(backupKeys, backupFile, std::cout, std::cerr), saveFile, std::cerr);
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
